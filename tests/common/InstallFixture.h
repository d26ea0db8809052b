#pragma once
/// The commands of the host program in a test's own registry view.

#include "tests/common/ClientFixture.h"
#include "tests/common/TestPrinter.h"

#include <string>
#include <vector>

/// How a command ended.
struct CommandEnd
{
    int iExitCode;
    std::string strError; ///< the line of a command that could not do its work
};

/// A client in whose registry view nothing of this driver is installed yet. The spooler's files go to the driver folder
/// of the prefix, as always: what lay there is put back at the end.
class InstallFixture : public ClientFixture
{
public:
    InstallFixture();
    ~InstallFixture();
    InstallFixture(const InstallFixture&) = delete;
    InstallFixture& operator=(const InstallFixture&) = delete;

    /// Runs a command in this process.
    static CommandEnd Run(const std::vector<std::string>& arguments);
    /// Runs install with this test's client folder, printer and port.
    CommandEnd Install(const std::vector<std::string>& more = {}) const;

    const std::wstring& PrinterName() const { return m_strPrinter; }
    /// A file that is the printer's port.
    std::wstring PortFile() const { return folder.File(L"port.ps"); }
    /// Where install makes the client's folders.
    std::wstring Root() const { return folder.File(L"Client"); }
    /// Full path of a file in the spooler's folder.
    static std::wstring Spooled(const std::wstring& strName);
    /// A file name that no other test has.
    static std::wstring OwnName(const std::wstring& strWord, const std::wstring& strEnd);

private:
    SpoolerTurn m_turn;
    std::wstring m_strPrinter;
    std::vector<std::pair<std::wstring, std::string>> m_before; ///< files of the spooler's folder
};
