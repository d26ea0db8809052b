#include "bench/BenchClient.h"

#include "settings/DriverDevmode.h"
#include "support/ProcessUtilities.h"

#include <chrono>
#include <fstream>
#include <stdexcept>

namespace
{

constexpr wchar_t kViews[] = L"Software\\VelUIBench";
constexpr wchar_t kClientKey[] = L"Software\\Vel-soft\\Client";
constexpr wchar_t kWinlogonKey[] = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon";
constexpr wchar_t kComputerKey[] = L"System\\CurrentControlSet\\Control\\ComputerName";

/// The user whose files are read.
constexpr wchar_t kUser[] = L"mei";
constexpr wchar_t kDomain[] = L"OFFICE";
constexpr char kDefSetting[] = "[PrintSetting]\r\nDefaultNoWaterPrint=1\r\n";

std::filesystem::path NewFolder()
{
    wchar_t szTemp[MAX_PATH] = {};
    GetTempPathW(MAX_PATH, szTemp);
    const auto folder = std::filesystem::path(szTemp) / (L"velbench" + std::to_wstring(GetCurrentProcessId()));
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    return folder;
}

HKEY CreateKey(HKEY hParent, const wchar_t* pszKey)
{
    HKEY hKey = nullptr;
    RegCreateKeyExW(hParent, pszKey, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &hKey, nullptr);
    return hKey;
}

/// The computer's name is looked for in the view by the platform itself.
void CopyComputerName(HKEY hRoot)
{
    HKEY hSource = nullptr;
    RegOpenKeyExW(HKEY_LOCAL_MACHINE, kComputerKey, 0, KEY_READ, &hSource);
    const HKEY hTarget = CreateKey(hRoot, kComputerKey);
    RegCopyTreeW(hSource, nullptr, hTarget);
    RegCloseKey(hTarget);
    RegCloseKey(hSource);
}

void AppendKey(std::wstring& strText, const std::wstring& strKey, const std::wstring& strValue)
{
    strText += strKey + L"=" + strValue + L"\r\n";
}

void AppendPaper(std::wstring& strText, const wchar_t* pszBaseKey, int i, const std::wstring& strValue)
{
    AppendKey(strText, pszBaseKey + std::to_wstring(i), strValue);
}

/// The lists in the order in which a snapshot is written.
std::wstring PapersText(int iPapers)
{
    std::wstring strText = L"\xFEFF[DeviceCapabilities]\r\n";
    const std::wstring strCount = std::to_wstring(iPapers);
    AppendKey(strText, L"PaperNamesCount", strCount);
    for (int i = 0; i < iPapers; ++i)
    {
        AppendPaper(strText, L"PaperNames", i, L"Paper " + std::to_wstring(i));
    }
    AppendKey(strText, L"PapersCount", strCount);
    for (int i = 0; i < iPapers; ++i)
    {
        AppendPaper(strText, L"Papers", i, std::to_wstring(i + 1));
    }
    AppendKey(strText, L"PaperSizeCount", strCount);
    for (int i = 0; i < iPapers; ++i)
    {
        AppendPaper(strText, L"PaperSizeX", i, std::to_wstring(1000 + 10 * i));
        AppendPaper(strText, L"PaperSizeY", i, std::to_wstring(2000 + 10 * i));
    }
    return strText;
}

void WriteBytes(const std::wstring& strPath, const void* pBytes, size_t cbBytes)
{
    std::ofstream(std::filesystem::path(strPath), std::ios::binary)
        .write(static_cast<const char*>(pBytes), static_cast<std::streamsize>(cbBytes));
}

/// Gives a file a time that has long passed, each time another one. The platform reads a profile file anew at each call
/// while its last change is a moment ago; later it does so only when the time has changed.
void Age(const std::wstring& strPath)
{
    static int s_iMinutes = 0;
    const auto age = std::chrono::hours(24) + std::chrono::minutes(++s_iMinutes);
    std::filesystem::last_write_time(strPath, std::filesystem::file_time_type::clock::now() - age);
}

template <typename Function>
void Find(HMODULE hModule, const char* pszName, Function& pfn)
{
    pfn = reinterpret_cast<Function>(
        reinterpret_cast<void*>(hModule != nullptr ? GetProcAddress(hModule, pszName) : nullptr));
}

} // namespace

std::wstring Beside(const wchar_t* pszName)
{
    wchar_t szPath[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, szPath, MAX_PATH);
    return std::filesystem::path(szPath).replace_filename(pszName).wstring();
}

BenchClient::BenchClient() : m_folder(NewFolder())
{
    RegDeleteTreeW(HKEY_CURRENT_USER, kViews);
    m_hRoot = CreateKey(HKEY_CURRENT_USER, kViews);
    CopyComputerName(m_hRoot);
    for (const wchar_t* pszValue : {L"InstallDir", L"DataDir", L"TempDir"})
    {
        SetText(kClientKey, pszValue, m_folder.wstring());
    }
    SetText(kWinlogonKey, L"DefaultUserName", kUser);
    SetText(kWinlogonKey, L"DefaultDomainName", kDomain);
    SetText(L"Software\\Microsoft\\Windows\\CurrentVersion", L"ProgramFilesDir", File(L"Program Files"));
    const std::wstring strDefSetting = File(std::wstring(kUser) + L"@" + kDomain + L"_defsetting.ini");
    WriteBytes(strDefSetting, kDefSetting, sizeof(kDefSetting) - 1);
    Age(strDefSetting);
    UseSample();
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, m_hRoot);
}

BenchClient::~BenchClient()
{
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    RegCloseKey(m_hRoot);
    RegDeleteTreeW(HKEY_CURRENT_USER, kViews);
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
}

void BenchClient::SetText(const wchar_t* pszKey, const wchar_t* pszValue, const std::wstring& strText) const
{
    const HKEY hKey = CreateKey(m_hRoot, pszKey);
    RegSetValueExW(hKey, pszValue, 0, REG_SZ, reinterpret_cast<const BYTE*>(strText.c_str()),
                   static_cast<DWORD>((strText.size() + 1) * sizeof(wchar_t)));
    RegCloseKey(hKey);
}

void BenchClient::UseSample() const
{
    CopyFileW(Beside(L"sample\\Config.ini").c_str(), File(L"Config.ini").c_str(), FALSE);
    Age(File(L"Config.ini"));
}

void BenchClient::UsePapers(int iPapers) const
{
    const std::wstring strText = PapersText(iPapers);
    WriteBytes(File(L"Config.ini"), strText.data(), strText.size() * sizeof(wchar_t));
    Age(File(L"Config.ini"));
}

void BenchClient::StoreRecord(bool bStored) const
{
    const std::wstring strPath = File(std::wstring(kUser) + L"@" + kDomain + L"_DevMode.dat");
    DeleteFileW(strPath.c_str());
    if (bStored)
    {
        DEVMODEW stuDevmode = {};
        stuDevmode.dmSize = kDevmodeSize;
        stuDevmode.dmDriverExtra = kDriverExtra;
        stuDevmode.dmPaperSize = DMPAPER_A4;
        WriteBytes(strPath, &stuDevmode, sizeof(stuDevmode));
    }
}

ResidentStandIn::ResidentStandIn(const BenchClient& client)
{
    const std::filesystem::path path = client.ResidentPath();
    std::filesystem::create_directories(path.parent_path());
    CopyFileW(Beside(L"benchclient.exe").c_str(), path.c_str(), FALSE);
    std::wstring strCommand = L"\"" + path.wstring() + L"\" " + std::to_wstring(GetCurrentProcessId());
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    CreateProcessW(path.c_str(), strCommand.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &m_process);
    // The module must find it by its walk, or it would start another one.
    for (int i = 0; !Win32::IsProcessHostingModule(Pid(), path.wstring()); ++i)
    {
        if (i == 500)
        {
            throw std::runtime_error("the stand-in of the resident client does not run");
        }
        Sleep(10);
    }
}

ResidentStandIn::~ResidentStandIn()
{
    TerminateProcess(m_process.hProcess, 0);
    WaitForSingleObject(m_process.hProcess, 5000); // its file is deleted next
    CloseHandle(m_process.hThread);
    CloseHandle(m_process.hProcess);
}

UserScope::UserScope(const wchar_t* pszUser)
{
    GetEnvironmentVariableW(L"WINEUSERNAME", m_szBefore, 257);
    SetEnvironmentVariableW(L"WINEUSERNAME", pszUser);
}

UserScope::~UserScope()
{
    SetEnvironmentVariableW(L"WINEUSERNAME", m_szBefore);
}

BenchModule::BenchModule() : handle(LoadLibraryW(Beside(L"VelUI.dll").c_str()))
{
    Find(handle, "DrvDeviceCapabilities", pfnCaps);
    Find(handle, "DrvConvertDevMode", pfnConvert);
    Find(handle, "DrvDocumentPropertySheets", pfnDocument);
}

BenchModule::~BenchModule()
{
    if (handle != nullptr)
    {
        FreeLibrary(handle);
    }
}
