#pragma once
/// What the user can type: the commands with their options and flags, and what --help tells of them. CLI11 reads it,
/// and no other file sees that library: it is inline code throughout, and whoever includes it compiles it.

#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace CLI
{
class App;
class Option;
} // namespace CLI

namespace VelHost
{

/// What was typed is not what a command takes. what() says so for the user.
class UsageError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// An option or a flag of a command; a copy stands for the same one. The program object outlives it.
class OptionSyntax
{
public:
    explicit OptionSyntax(CLI::Option* pOption) noexcept : m_pOption(pOption) {}

    /// What help calls the value.
    OptionSyntax Type(const char* pszType) const;
    /// Help tells the value that the option has when it is not given.
    OptionSyntax ShowDefault() const;
    OptionSyntax Required() const;
    OptionSyntax Excludes(const OptionSyntax& other) const;
    OptionSyntax OneOf(const std::vector<std::string>& words) const;
    /// @param iLeast and iMost belong to the range.
    OptionSyntax Range(int iLeast, int iMost) const;
    /// Takes names for numbers, in any case.
    OptionSyntax Names(const std::map<std::string, int>& names) const;
    /// @return whether it was given; known when the command runs.
    bool IsGiven() const;

private:
    CLI::Option* m_pOption;
};

/// A command, or the program with its commands; a copy stands for the same one. The program object outlives it.
class CommandSyntax
{
public:
    explicit CommandSyntax(CLI::App* pApp) noexcept : m_pApp(pApp) {}

    CommandSyntax AddCommand(const char* pszName, const char* pszText);
    /// A command with commands of its own, one of which must be given.
    void NeedCommand();
    /// Adds an option; a name without dashes in front makes it one that is told by its place.
    /// @param value gets what is given, and outlives the program object: a text, a number, or an std::optional of one.
    ///              Syntax.cpp has the types.
    template <typename Value>
    OptionSyntax AddOption(const char* pszName, Value& value, const std::string& strText);
    OptionSyntax AddFlag(const char* pszName, bool& bGiven, const char* pszText);
    OptionSyntax AddFlag(const char* pszName, const char* pszText);
    /// Sets the text below the options' in help.
    void SetFooter(const std::string& strText);
    /// Sets what runs when the command is chosen.
    void OnRun(const std::function<void()>& run);

protected:
    CLI::App* m_pApp;
};

/// The program with all that can be typed behind its name.
class ProgramSyntax : public CommandSyntax
{
public:
    /// @param pszText what help begins with.
    explicit ProgramSyntax(const char* pszText);
    ~ProgramSyntax();
    ProgramSyntax(const ProgramSyntax&) = delete;
    ProgramSyntax& operator=(const ProgramSyntax&) = delete;

    /// Reads what was typed, in UTF-8 and without the program's name, and runs the command. Throws UsageError when it
    /// is none, and whatever the command throws.
    /// @return false when help was asked for, which runs nothing.
    bool Run(const std::vector<std::string>& arguments);
    /// @return the text of help: of the command that was read, or else of the program.
    std::string Help() const;

private:
    std::unique_ptr<CLI::App> m_pProgram;
};

} // namespace VelHost
