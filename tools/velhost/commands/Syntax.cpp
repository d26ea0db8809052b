#include "tools/velhost/commands/Syntax.h"

#include <CLI/CLI.hpp>

#include <windows.h>

#include <optional>

namespace VelHost
{

OptionSyntax OptionSyntax::Type(const char* pszType) const
{
    m_pOption->type_name(pszType);
    return *this;
}

OptionSyntax OptionSyntax::ShowDefault() const
{
    m_pOption->capture_default_str();
    return *this;
}

OptionSyntax OptionSyntax::Required() const
{
    m_pOption->required();
    return *this;
}

OptionSyntax OptionSyntax::Excludes(const OptionSyntax& other) const
{
    m_pOption->excludes(other.m_pOption);
    return *this;
}

OptionSyntax OptionSyntax::OneOf(const std::vector<std::string>& words) const
{
    m_pOption->check(CLI::IsMember(words));
    return *this;
}

OptionSyntax OptionSyntax::Range(int iLeast, int iMost) const
{
    m_pOption->check(CLI::Range(iLeast, iMost));
    return *this;
}

OptionSyntax OptionSyntax::Names(const std::map<std::string, int>& names) const
{
    m_pOption->transform(CLI::Transformer(names, CLI::ignore_case));
    return *this;
}

bool OptionSyntax::IsGiven() const
{
    return m_pOption->count() != 0;
}

CommandSyntax CommandSyntax::AddCommand(const char* pszName, const char* pszText)
{
    return CommandSyntax(m_pApp->add_subcommand(pszName, pszText));
}

void CommandSyntax::NeedCommand()
{
    m_pApp->require_subcommand(1);
}

template <typename Value>
OptionSyntax CommandSyntax::AddOption(const char* pszName, Value& value, const std::string& strText)
{
    return OptionSyntax(m_pApp->add_option(pszName, value, strText));
}

template OptionSyntax CommandSyntax::AddOption(const char*, std::string&, const std::string&);
template OptionSyntax CommandSyntax::AddOption(const char*, int&, const std::string&);
template OptionSyntax CommandSyntax::AddOption(const char*, size_t&, const std::string&);
template OptionSyntax CommandSyntax::AddOption(const char*, WORD&, const std::string&);
template OptionSyntax CommandSyntax::AddOption(const char*, DWORD&, const std::string&);
template OptionSyntax CommandSyntax::AddOption(const char*, std::optional<WORD>&, const std::string&);
template OptionSyntax CommandSyntax::AddOption(const char*, std::optional<LONG>&, const std::string&);

OptionSyntax CommandSyntax::AddFlag(const char* pszName, bool& bGiven, const char* pszText)
{
    return OptionSyntax(m_pApp->add_flag(pszName, bGiven, pszText));
}

OptionSyntax CommandSyntax::AddFlag(const char* pszName, const char* pszText)
{
    const std::string strText = pszText; // of what is not const the library takes it for what gets the value
    return OptionSyntax(m_pApp->add_flag(pszName, strText));
}

void CommandSyntax::SetFooter(const std::string& strText)
{
    m_pApp->footer(strText);
}

void CommandSyntax::OnRun(const std::function<void()>& run)
{
    m_pApp->callback(run);
}

ProgramSyntax::ProgramSyntax(const char* pszText)
    : CommandSyntax(nullptr), m_pProgram(std::make_unique<CLI::App>(pszText, "velhost"))
{
    m_pApp = m_pProgram.get();
    // A path may begin with '/'.
    m_pProgram->allow_windows_style_options(false);
}

ProgramSyntax::~ProgramSyntax() = default;

bool ProgramSyntax::Run(const std::vector<std::string>& arguments)
{
    std::vector<std::string> lastFirst(arguments.rbegin(), arguments.rend()); // as the library takes them
    try
    {
        m_pProgram->parse(lastFirst);
    }
    catch (const CLI::ParseError& error)
    {
        if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success))
        {
            return false;
        }
        const bool bUnknown = m_pProgram->get_subcommands().empty() && !arguments.empty() && arguments[0][0] != '-';
        throw UsageError(bUnknown ? "there is no command \"" + arguments[0] + "\"" : error.what());
    }
    return true;
}

std::string ProgramSyntax::Help() const
{
    return m_pProgram->help();
}

} // namespace VelHost
