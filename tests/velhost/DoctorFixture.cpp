#include "tests/velhost/DoctorFixture.h"

#include "tools/velhost/host/Spooler.h"

#include <catch2/catch_test_macros.hpp>

namespace
{

constexpr wchar_t kDriversKey[] =
    L"System\\CurrentControlSet\\Control\\Print\\Environments\\Windows x64\\Drivers\\Version-3";
constexpr wchar_t kPrintersKey[] = L"System\\CurrentControlSet\\Control\\Print\\Printers";
constexpr wchar_t kRenderingData[] = L"VelDoctorTest.ppd";
constexpr const wchar_t* kTools[] = {L"velup.exe", L"veldel.exe"};

/// Deletes all keys below one but that of a name: what else is installed on the machine is none of the test's.
void KeepOnly(const wchar_t* pszKey, const std::wstring& strName)
{
    HKEY hKey = nullptr;
    REQUIRE(RegOpenKeyExW(HKEY_LOCAL_MACHINE, pszKey, 0, KEY_ALL_ACCESS, &hKey) == ERROR_SUCCESS);
    std::vector<std::wstring> others;
    wchar_t szName[256] = {};
    for (DWORD i = 0; RegEnumKeyW(hKey, i, szName, 256) == ERROR_SUCCESS; ++i)
    {
        if (strName != szName)
        {
            others.push_back(szName);
        }
    }
    for (const std::wstring& strOther : others)
    {
        RegDeleteTreeW(hKey, strOther.c_str());
    }
    RegCloseKey(hKey);
}

} // namespace

void PlaceStayingStandIn(const std::wstring& strPath)
{
    PlaceStandIn(strPath);
    WriteFileBytes(strPath + L".stay", "");
}

void WriteSparseFile(const std::wstring& strPath, LONGLONG llBytes)
{
    const VelHost::FileHandle file(strPath, GENERIC_WRITE, 0, CREATE_ALWAYS);
    LARGE_INTEGER size = {};
    size.QuadPart = llBytes;
    REQUIRE(SetFilePointerEx(file.Get(), size, nullptr, FILE_BEGIN));
    REQUIRE(SetEndOfFile(file.Get()));
}

DoctorPrinter::DoctorPrinter(ClientFixture& client) : m_client(client), m_view(client.registry), m_printer(client)
{
    m_strDriver = VelHost::DescribePrinter(Name()).strDriver;
    KeepOnly(kDriversKey, m_strDriver);
    KeepOnly(kPrintersKey, Name());
    REQUIRE(PathExists(DriverFile(L"wineps.drv"))); // Wine puts it there
    WriteFileBytes(DriverFile(kRenderingData), "*PPD-Adobe: \"4.3\"\n");
    SetDriverValue(L"Driver", L"wineps.drv");
    SetDriverValue(L"Data File", kRenderingData);
    for (const wchar_t* pszTool : kTools)
    {
        PlaceStandIn(DriverFile(pszTool));
    }
}

DoctorPrinter::~DoctorPrinter()
{
    // As the spooler had them: it deletes what a driver names when the driver goes.
    SetDriverValue(L"Driver", L"VelUI.dll");
    SetDriverValue(L"Data File", L"VelUI.dll");
    DeleteFileW(DriverFile(kRenderingData).c_str());
    for (const wchar_t* pszTool : kTools)
    {
        DeleteFileW(DriverFile(pszTool).c_str());
    }
}

std::wstring DoctorPrinter::DriverFile(const std::wstring& strName)
{
    wchar_t szFolder[MAX_PATH] = {};
    DWORD cbNeeded = 0;
    REQUIRE(GetPrinterDriverDirectoryW(nullptr, nullptr, 1, reinterpret_cast<BYTE*>(szFolder), sizeof(szFolder),
                                       &cbNeeded));
    return std::wstring(szFolder) + L"\\3\\" + strName;
}

void DoctorPrinter::SetDriverValue(const std::wstring& strValue, const std::wstring& strText) const
{
    m_client.registry.SetText(std::wstring(kDriversKey) + L"\\" + m_strDriver, strValue, strText);
}

std::wstring DoctorPrinter::PrinterKey() const
{
    return std::wstring(kPrintersKey) + L"\\" + Name();
}

DoctorClient::DoctorClient(ClientFixture& client, const wchar_t* pszName)
{
    const std::wstring strPrograms = client.folder.File(L"Program Files");
    const std::wstring strFolder = strPrograms + L"\\Vel-soft\\Client";
    MakeFolders(strFolder);
    client.registry.SetText(L"Software\\Microsoft\\Windows\\CurrentVersion", L"ProgramFilesDir", strPrograms);
    m_strProgram = strFolder + L"\\" + pszName;
    PlaceStayingStandIn(m_strProgram);
}

DoctorClient::~DoctorClient()
{
    Stop();
}

void DoctorClient::Start()
{
    m_pProcess = std::make_unique<ChildProcess>(m_strProgram, std::vector<std::wstring>());
    REQUIRE_FALSE(WaitForRun(m_strProgram).empty());
}

void DoctorClient::Stop()
{
    if (m_pProcess)
    {
        m_pProcess->Terminate();
        m_pProcess->Wait(INFINITE);
        m_pProcess.reset();
    }
}
