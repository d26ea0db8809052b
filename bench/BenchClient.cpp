#include "bench/BenchClient.h"

#include "support/ProcessUtilities.h"
#include "tools/velhost/host/Files.h"

#include <chrono>
#include <filesystem>
#include <stdexcept>

namespace
{

constexpr wchar_t kWinlogonKey[] = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon";

/// The user whose files are read.
constexpr wchar_t kUser[] = L"mei";
constexpr wchar_t kDomain[] = L"OFFICE";

std::wstring UserFile(const BenchClient& client, const wchar_t* pszName)
{
    return client.folder.File(std::wstring(kUser) + L"@" + kDomain + L"_" + pszName);
}

/// Gives a file a time that has long passed, each time another one. Windows reads a profile file anew at each call
/// while its last change is a moment ago; later it does so only when the time has changed.
void Age(const std::wstring& strPath)
{
    static int s_iMinutes = 0;
    const auto age = std::chrono::hours(24) + std::chrono::minutes(++s_iMinutes);
    std::filesystem::last_write_time(strPath, std::filesystem::file_time_type::clock::now() - age);
}

} // namespace

BenchClient::BenchClient()
{
    registry.SetText(kWinlogonKey, L"DefaultUserName", kUser);
    registry.SetText(kWinlogonKey, L"DefaultDomainName", kDomain);
    registry.SetText(L"Software\\Microsoft\\Windows\\CurrentVersion", L"ProgramFilesDir",
                     folder.File(L"Program Files"));
    const std::wstring strDefSetting = UserFile(*this, L"defsetting.ini");
    WriteFileBytes(strDefSetting, "[PrintSetting]\r\nDefaultNoWaterPrint=1\r\n");
    Age(strDefSetting);
    UseSample();
}

void BenchClient::UseSample() const
{
    CopyFileW(VelHost::BesideProgram(L"sample\\Config.ini").c_str(), ConfigFile().c_str(), FALSE);
    Age(ConfigFile());
}

void BenchClient::UsePapers(int iPapers) const
{
    // The lists in the order in which a snapshot is written.
    std::vector<std::pair<std::wstring, std::wstring>> keys;
    const auto add = [&keys](const wchar_t* pszKey, int i, const std::wstring& strValue) {
        keys.emplace_back(pszKey + std::to_wstring(i), strValue);
    };
    const std::wstring strCount = std::to_wstring(iPapers);
    keys.emplace_back(L"PaperNamesCount", strCount);
    for (int i = 0; i < iPapers; ++i)
    {
        add(L"PaperNames", i, L"Paper " + std::to_wstring(i));
    }
    keys.emplace_back(L"PapersCount", strCount);
    for (int i = 0; i < iPapers; ++i)
    {
        add(L"Papers", i, std::to_wstring(i + 1));
    }
    keys.emplace_back(L"PaperSizeCount", strCount);
    for (int i = 0; i < iPapers; ++i)
    {
        add(L"PaperSizeX", i, std::to_wstring(1000 + 10 * i));
        add(L"PaperSizeY", i, std::to_wstring(2000 + 10 * i));
    }
    WriteCaps(keys);
    Age(ConfigFile());
}

void BenchClient::StoreRecord(bool bStored) const
{
    const std::wstring strPath = UserFile(*this, L"DevMode.dat");
    DeleteFileW(strPath.c_str());
    if (bStored)
    {
        const stuDrvDevmode record = RecordOfPaper(DMPAPER_A4);
        WriteFileBytes(strPath, std::string(reinterpret_cast<const char*>(&record.stuDevmode), kDevmodeSize));
    }
}

stuDrvDevmode RecordOfPaper(short sPaperSize)
{
    stuDrvDevmode record = {};
    record.stuDevmode.dmSize = kDevmodeSize;
    record.stuDevmode.dmDriverExtra = kDriverExtra;
    record.stuDevmode.dmPaperSize = sPaperSize;
    return record;
}

ResidentStandIn::ResidentStandIn(const BenchClient& client)
{
    const std::filesystem::path path = client.ResidentPath();
    std::filesystem::create_directories(path.parent_path());
    CopyFileW(VelHost::BesideProgram(L"benchclient.exe").c_str(), path.c_str(), FALSE);
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

BenchModule::BenchModule() : HostModule(VelHost::ModulePath("")) {}
