// Each platform function that the module's work calls fails once, at its first call, its second, and so on until a run
// has no failure left; then again with all calls behind the first failing too. Every run must end with a documented
// result, and leave no handle, no lock and nothing behind its room.

#include "settings/DefaultRecord.h"
#include "settings/PaperCatalogue.h"
#include "state/CapabilitySnapshot.h"
#include "state/ConfigFile.h"
#include "state/CurrentUser.h"
#include "state/DataFiles.h"
#include "state/MessageFiles.h"
#include "state/UserIniFiles.h"
#include "tests/driver/SheetCalls.h"
#include "tests/faults/FaultFixture.h"

#include <cstring>

using namespace VelUtility;

namespace
{

const FaultyFunctions kFunctions = {
    FAULTY(RegOpenKeyExW, ERROR_ACCESS_DENIED, ERROR_ACCESS_DENIED),
    FAULTY(RegQueryValueExW, ERROR_FILE_NOT_FOUND, ERROR_FILE_NOT_FOUND),
    FAULTY(GetComputerNameW, FALSE, ERROR_ACCESS_DENIED),
    FAULTY(GetPrivateProfileStringW, 0, ERROR_FILE_NOT_FOUND),
    FAULTY(WritePrivateProfileStringW, FALSE, ERROR_DISK_FULL),
    FAULTY(CreateMutexW, nullptr, ERROR_ACCESS_DENIED),
    FAULTY(WaitForSingleObject, WAIT_FAILED, ERROR_INVALID_HANDLE),
    FAULTY(_wfopen, nullptr, ERROR_TOO_MANY_OPEN_FILES),
    FAULTY(fread, 0, ERROR_READ_FAULT),
    FAULTY(fwrite, 0, ERROR_DISK_FULL),
    FAULTY(fflush, EOF, ERROR_DISK_FULL),
    FAULTY(DeleteFileW, FALSE, ERROR_SHARING_VIOLATION),
    FAULTY(LoadStringW, 0, ERROR_RESOURCE_NAME_NOT_FOUND),
    FAULTY(GetUserNameW, FALSE, ERROR_NO_SUCH_LOGON_SESSION),
    FAULTY(_wfullpath, nullptr, ERROR_INVALID_NAME),
    FAULTY(malloc, nullptr, ERROR_NOT_ENOUGH_MEMORY),
    FAULTY(calloc, nullptr, ERROR_NOT_ENOUGH_MEMORY),
};

/// Whose file an operation works with: a user's needs the user's name as well as the folder.
enum class Owner
{
    Machine,
    User
};

/// Keys in a section of a profile file.
int KeysIn(const std::wstring& strFile, const wchar_t* pszSection)
{
    wchar_t szKeys[1024] = {};
    GetPrivateProfileSectionW(pszSection, szKeys, 1024, strFile.c_str());
    int iKeys = 0;
    for (const wchar_t* psz = szKeys; *psz != L'\0'; psz += wcslen(psz) + 1)
    {
        ++iKeys;
    }
    return iKeys;
}

struct StoreFaults : FaultFixture
{
    template <typename Work>
    void Inject(const char* pszWork, Work work)
    {
        FaultFixture::Inject(pszWork, kFunctions, work);
    }
    /// For a writer: work gives the status, and check tells, without a failure then, whether the file is as it must be.
    template <typename Work, typename Check>
    void InjectWriter(const char* pszWork, Owner owner, Work work, Check check, const char* pszNoFailure = "")
    {
        DWORD dwStatus = PSERR_FAILED;
        FaultFixture::Inject(
            pszWork, kFunctions,
            [&] {
                dwStatus = PSERR_FAILED; // what an exception counts as
                dwStatus = work();
                return Fits(dwStatus, owner, pszNoFailure);
            },
            [&] { return check(dwStatus == PSERR_OK); });
    }
    /// For any operation whose status tells all: work gives it.
    template <typename Work>
    void InjectStatus(const char* pszWork, Owner owner, Work work, const char* pszNoFailure = "")
    {
        Inject(pszWork, [&] { return Fits(work(), owner, pszNoFailure); });
    }
    /// Whether a status is the one that belongs to the function that has failed. Without the folder, the file or a
    /// write an operation fails. It goes on without the lock, with defaults for what can't be read of an ini file, and
    /// when there was nothing to delete.
    /// @param pszNoFailure a function whose failure this operation does not report.
    bool Fits(DWORD dwStatus, Owner owner, const char* pszNoFailure = "") const
    {
        bool bFails = false;
        for (const char* const pszFunction :
             {"RegOpenKeyExW", "RegQueryValueExW", "WritePrivateProfileStringW", "_wfopen", "fread", "fwrite"})
        {
            bFails = bFails || (Failed(pszFunction) && std::strcmp(pszFunction, pszNoFailure) != 0);
        }
        // The first key is that of the user's name, which is hard-coded without it.
        const bool bNameAlone = owner == Owner::User && Failed("RegOpenKeyExW") && FaultScope::FirstFailing() == 1 &&
                                !FaultScope::FailsOnwards();
        return dwStatus == (bFails && !bNameAlone ? PSERR_FAILED : PSERR_OK);
    }
    std::string Bytes(const wchar_t* pszFile) const { return ReadFileBytes(folder.File(pszFile)); }

    const BuiltModule module;
    const TextsFrom texts{module.handle};
};

} // namespace

TEST_CASE_METHOD(StoreFaults, "capability queries survive each failure", "[faults]")
{
    Inject("GetComputerCaps, number", [] {
        const DWORD dwReturn = GetComputerCaps(DC_DUPLEX, nullptr);
        return dwReturn == 1 || dwReturn == kNoAnswer;
    });
    Inject("GetComputerCaps, names", [] {
        wchar_t aszNames[4][64] = {};
        const DWORD dwReturn = GetComputerCaps(DC_PAPERNAMES, aszNames);
        return dwReturn == 4 || dwReturn == kNoAnswer;
    });
    Inject("DrvDeviceCapabilities", [] {
        WORD papers[4] = {};
        const DWORD dwReturn = DrvDeviceCapabilities(nullptr, nullptr, DC_PAPERS, papers, nullptr);
        return dwReturn == 4 || dwReturn == kNoAnswer;
    });
    Inject("DrvSplDeviceCaps", [] {
        wchar_t aszNames[4][64] = {};
        const DWORD dwReturn = DrvSplDeviceCaps(nullptr, nullptr, DC_PAPERNAMES, aszNames, 256, nullptr);
        return dwReturn == 4 || dwReturn == kNoAnswer;
    });
}

TEST_CASE_METHOD(StoreFaults, "records survive each failure", "[faults]")
{
    Inject("SubSetDevMode", [] {
        stuDrvDevmode record = {};
        return SubSetDevMode(&record) == 1 && record.stuDevmode.dmSize == 220;
    });
    Inject("DrvConvertDevMode, default", [] {
        stuDrvDevmode record = {};
        LONG cbNeeded = sizeof(record);
        return DrvConvertDevMode(nullptr, nullptr, &record.stuDevmode, &cbNeeded, CDM_DRIVER_DEFAULT) == 1 &&
               cbNeeded == 232 && record.stuDevmode.dmSize == 220;
    });
    Inject("DrvDocumentPropertySheets, record", [] {
        stuDrvDevmode record = PlainRecord();
        DOCUMENTPROPERTYHEADER header = {};
        header.pdmOut = &record.stuDevmode;
        header.fMode = DM_OUT_BUFFER;
        return DrvDocumentPropertySheets(nullptr, reinterpret_cast<LPARAM>(&header)) == 1;
    });
    Inject("GetPaperInfoList", [this] {
        stuPaperInfo papers[5] = {};
        const DWORD dwReturn = GetPaperInfoList(papers, 4);
        return dwReturn == kNoAnswer ? Failed("calloc") : dwReturn <= 4 && papers[dwReturn].wPaper == DMPAPER_USER;
    });
}

TEST_CASE_METHOD(StoreFaults, "a sheet's opening and end survive each failure", "[faults]")
{
    // What its own blocks do without memory, two of them by a fault, has tests of its own.
    FaultyFunctions functions = kFunctions;
    functions.pop_back();
    functions.push_back(FAULTY(CreatePropertySheetPageW, nullptr, ERROR_NOT_ENOUGH_MEMORY));
    FaultFixture::Inject("DrvDocumentPropertySheets, sheet", functions, [this] {
        DocumentCalls calls(&DrvDocumentPropertySheets);
        stuDrvDevmode in = PlainRecord();
        calls.header.pdmIn = &in.stuDevmode;
        if (calls.Call(PROPSHEETUI_REASON_INIT) != 1)
        {
            return Failed("CreatePropertySheetPageW");
        }
        return calls.taker.pages.size() == 3 && calls.Call(PROPSHEETUI_REASON_DESTROY) == 1;
    });
    FaultFixture::Inject("DrvDevicePropertySheets, sheet", functions, [this] {
        DeviceCalls calls(&DrvDevicePropertySheets);
        const LONG lReturn = calls.Call(PROPSHEETUI_REASON_INIT);
        return lReturn == 1 ? calls.taker.pages.size() == 1
                            : lReturn == -1 && (Failed("malloc") || Failed("CreatePropertySheetPageW"));
    });
}

TEST_CASE_METHOD(StoreFaults, "the store's writers survive each failure", "[faults]")
{
    bool bAppended = false;
    const std::string strOldRecord = BytesOf(PlainRecord().stuDevmode);
    DEVMODEW record = PlainRecord().stuDevmode;
    record.dmPaperSize = 8;
    InjectWriter(
        "SetDevDef", Owner::User, [&] { return SetDevDef(&record); },
        [&](bool bWritten) {
            // A full disk returns 0.
            const std::string strWritten = Failed("fwrite") ? std::string() : BytesOf(record);
            return ReadFileBytes(DevModeFile()) == (bWritten ? strWritten : strOldRecord);
        },
        "fwrite");
    InjectWriter(
        "MakeDefSetting", Owner::User,
        [] {
            const DWORD dwValue = 1;
            return MakeDefSetting(&dwValue);
        },
        [this](bool bWritten) {
            // A failed write returns 0 and leaves the old value.
            const bool bNew = bWritten && !Failed("WritePrivateProfileStringW");
            return Bytes(L"QPS@VEL_defsetting.ini") == (bNew ? "[PrintSetting]\r\nDefaultNoWaterPrint=1\r\n"
                                                             : "[PrintSetting]\r\nDefaultNoWaterPrint=0\r\n");
        },
        "WritePrivateProfileStringW");
    InjectWriter(
        "MakeAutoLogonInfo", Owner::User, [] { return MakeAutoLogonInfo(reinterpret_cast<const BYTE*>("abc"), 3); },
        [this](bool bWritten) {
            const std::string strLeft = Failed("fwrite") ? "" : "pass";
            return Bytes(L"QPS@VEL_passport.dat") == (bWritten ? "abc" : strLeft);
        });
    // What a failed flush gives has a test of its own (tests/state/).
    FaultFixture::Inject(
        "AppendUserMessageFile", kFunctions,
        [&] {
            bAppended = false; // what an exception counts as
            const DWORD dwStatus = AppendUserMessageFile(L"lin", reinterpret_cast<const BYTE*>("abc"), 3);
            bAppended = dwStatus == PSERR_OK;
            return Failed("fflush") || Fits(dwStatus, Owner::Machine);
        },
        [&] {
            // A failed flush leaves the stream's bytes to its close.
            return Bytes(L"lin_Message.dat") == (bAppended || Failed("fflush") ? "oldabc" : "old");
        });
    // A write that fails leaves the keys in front of it and makes none behind it.
    const auto hasKeys = [this](const wchar_t* pszFile, const wchar_t* pszSection, int iAll, bool bWritten) {
        const int iInFront = Failed("WritePrivateProfileStringW") ? FaultScope::FirstFailing() - 1 : 0;
        return KeysIn(folder.File(pszFile), pszSection) == (bWritten ? iAll : iInFront);
    };
    InjectWriter(
        "MakeServerConfig", Owner::Machine,
        [] {
            const ServerConfigInfo info = {1, 0, 1, 0};
            return MakeServerConfig(&info);
        },
        [&](bool bWritten) { return hasKeys(L"Config.ini", L"ServerConfig", 4, bWritten); });
    InjectWriter(
        "MakeServerPlaceFile", Owner::User,
        [] {
            const ServerPlace place = {L"server", {10, 0, 0, 1}, 1};
            return MakeServerPlaceFile(&place);
        },
        [&](bool bWritten) { return hasKeys(L"QPS@VEL_server.ini", L"Server", 3, bWritten); });
    Inject("MakePrinterConfig", [] {
        const WORD papers[2] = {9, 8};
        const PrinterInfo info = {L"P", L"L", L"D"};
        PrinterCaps caps = {};
        caps.Papers = papers;
        caps.PapersCount = 2;
        return MakePrinterConfig(&info, &caps) == PSERR_OK; // whatever fails: the log is the only witness
    });
    InjectStatus("WriteClientSetting", Owner::Machine, [] {
        const ClientSetting setting = {};
        return WriteClientSetting(&setting);
    });
    InjectStatus("MakeServerPlaceFileNew", Owner::Machine, [] { return MakeServerPlaceFileNew(L"server"); });
    InjectStatus("MakeLogonUserName", Owner::User, [] { return MakeLogonUserName(L"lin"); });
    InjectStatus("MakeUserMessageDays", Owner::Machine, [] { return MakeUserMessageDays(L"lin", 7); });
    InjectStatus("MakeUserMessageID", Owner::Machine, [] { return MakeUserMessageID(L"lin", 7); });
}

TEST_CASE_METHOD(StoreFaults, "the store's readers and deleters survive each failure", "[faults]")
{
    Inject("GetDevDef", [this] {
        DEVMODEW record = {};
        const DWORD dwStatus = GetDevDef(&record);
        // The first block is the record's, which the file is read into; the other is the lock's.
        return Failed("malloc") && FaultScope::FirstFailing() == 1 ? dwStatus == PSERR_FAILED
                                                                   : Fits(dwStatus, Owner::User);
    });
    InjectStatus("GetDefSetting", Owner::User, [] {
        DWORD dwValue = 0;
        return GetDefSetting(&dwValue);
    });
    InjectStatus("GetServerConfig", Owner::Machine, [] {
        ServerConfigInfo info = {};
        return GetServerConfig(&info);
    });
    InjectStatus("GetPrinterInfo", Owner::Machine, [] {
        PrinterInfo info;
        return GetPrinterInfo(&info);
    });
    // These two readers always answer 0: a caller can't tell a failure from an empty file.
    Inject("GetServerPlaceFile", [] {
        ServerPlace place = {};
        return GetServerPlaceFile(&place) == PSERR_OK;
    });
    Inject("GetServerPlaceFileNew", [] {
        std::wstring strServer;
        return GetServerPlaceFileNew(&strServer) == PSERR_OK;
    });
    InjectStatus("ReadClientSetting", Owner::Machine, [] {
        ClientSetting setting = {};
        return ReadClientSetting(&setting);
    });
    InjectStatus("CheckConfigFile", Owner::Machine, [] { return CheckConfigFile(); });
    InjectStatus("GetUserMessageID", Owner::Machine, [] {
        DWORD dwId = 0;
        return GetUserMessageID(L"lin", &dwId);
    });
    InjectStatus("GetUserMessageDays", Owner::Machine, [] {
        int iDays = 0;
        return GetUserMessageDays(L"lin", &iDays);
    });
    InjectStatus("GetUserMsgInterval", Owner::Machine, [] {
        DWORD dwInterval = 0;
        return GetUserMsgInterval(L"lin", &dwInterval);
    });
    InjectStatus("GetAutoLogonInfo", Owner::User, [] {
        BYTE abyData[16];
        int iLength = 0;
        return GetAutoLogonInfo(abyData, sizeof(abyData), &iLength);
    });
    InjectStatus("DelAutoLogonInfo", Owner::User, [] { return DelAutoLogonInfo(); });
    InjectStatus("DelUserMessageFile", Owner::Machine, [] { return DelUserMessageFile(L"lin"); });
}

TEST_CASE_METHOD(StoreFaults, "the current user is found or hard-coded whatever fails", "[faults]")
{
    constexpr wchar_t kLogonKey[] = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon";
    registry.SetText(kLogonKey, L"DefaultUserName", L"mei");
    registry.SetText(kLogonKey, L"DefaultDomainName", L"office");
    Inject("GetCurrentUsername", [] {
        wchar_t szUserName[kUserNameUnits] = {};
        wchar_t szDomainName[kDomainNameUnits] = {};
        return GetCurrentUsername(szUserName, szDomainName) == 1 &&
               ((wcscmp(szUserName, L"mei") == 0 && wcscmp(szDomainName, L"office") == 0) ||
                (wcscmp(szUserName, L"QPS") == 0 && wcscmp(szDomainName, L"VEL") == 0));
    });
}

TEST_CASE("every function of the store that can fail is reached by some work", "[faults]")
{
    for (const FaultyFunction& function : kFunctions)
    {
        CAPTURE(function.pszName);
        CHECK(IsFaultReached(function.pszName));
    }
}
