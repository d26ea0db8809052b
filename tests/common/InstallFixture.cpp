#include "tests/common/InstallFixture.h"

#include "tools/velhost/commands/Commands.h"
#include "tools/velhost/host/Files.h"
#include "tools/velhost/host/Spooler.h"
#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/Encoding.h"

#include <catch2/catch_test_macros.hpp>

using namespace VelHost;

namespace
{

constexpr wchar_t kPrintKey[] = L"System\\CurrentControlSet\\Control\\Print";
constexpr wchar_t kPortsKey[] = L"Software\\Microsoft\\Windows NT\\CurrentVersion\\Ports";

/// Deletes a key of the view with all below it.
void Forget(const std::wstring& strKey)
{
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, strKey.c_str());
}

} // namespace

InstallFixture::InstallFixture() : m_strPrinter(OwnName(L"VelTestPrinter", L""))
{
    registry.CopyFromMachine(kPrintKey);
    registry.CopyFromMachine(kPortsKey);
    // Tells where win.ini's section of devices is, in which Windows looks for a printer before it makes a device of it.
    registry.CopyFromMachine(L"Software\\Microsoft\\Windows NT\\CurrentVersion\\IniFileMapping");
    // Whatever is installed in the prefix.
    Forget(std::wstring(kPrintKey) + L"\\Printers\\VelPrinter");
    Forget(std::wstring(kPrintKey) + L"\\Environments\\Windows x64\\Drivers\\Version-3\\VelUI Printer Driver");
    registry.SetText(kPortsKey, PortFile(), L"");
    WriteFileBytes(PortFile(), "");
    for (const wchar_t* const pszName : {L"VelUI.dll", L"VelPrinter.ppd"})
    {
        if (PathExists(Spooled(pszName)))
        {
            m_before.emplace_back(Spooled(pszName), ReadFileBytes(Spooled(pszName)));
            DeleteFileW(Spooled(pszName).c_str());
        }
    }
}

InstallFixture::~InstallFixture()
{
    std::wstring strName = m_strPrinter;
    HANDLE hPrinter = nullptr;
    PRINTER_DEFAULTSW defaults = {nullptr, nullptr, PRINTER_ALL_ACCESS};
    if (OpenPrinterW(strName.data(), &hPrinter, &defaults))
    {
        DeletePrinter(hPrinter);
        ClosePrinter(hPrinter);
    }
    for (const wchar_t* const pszName : {L"VelUI.dll", L"VelPrinter.ppd"})
    {
        DeleteFileW(Spooled(pszName).c_str());
    }
    for (const auto& [strFile, strBytes] : m_before)
    {
        WriteFileBytes(strFile, strBytes);
    }
}

CommandEnd InstallFixture::Run(const std::vector<std::string>& arguments)
{
    int iExitCode = kExitGood;
    ProgramSyntax program("");
    AddCommands(program, iExitCode);
    try
    {
        program.Run(arguments);
    }
    catch (const UsageError& error)
    {
        return {kExitUsage, error.what()};
    }
    catch (const CommandError& error)
    {
        return {kExitFailed, error.what()};
    }
    return {iExitCode, ""};
}

CommandEnd InstallFixture::Install(const std::vector<std::string>& more) const
{
    std::vector<std::string> arguments = {
        "install", "--root", ToUtf8(Root()), "--printer", ToUtf8(m_strPrinter), "--port", ToUtf8(PortFile())};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return Run(arguments);
}

std::wstring InstallFixture::Spooled(const std::wstring& strName)
{
    return PathIn(SpoolerDriverFolder(), strName);
}

std::wstring InstallFixture::OwnName(const std::wstring& strWord, const std::wstring& strEnd)
{
    return strWord + std::to_wstring(GetCurrentProcessId()) + strEnd;
}
