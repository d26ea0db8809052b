// Each platform function that the module's work calls fails once, at its first call, its second, and so on until a run
// has no failure left; then again with all calls behind the first failing too. Every run must end with a documented
// result, and leave no handle, no lock and nothing behind its room.

#include "settings/DefaultRecord.h"
#include "settings/PaperCatalogue.h"
#include "state/ClientConfig.h"
#include "state/ComputerCaps.h"
#include "state/FileLocker.h"
#include "state/PrinterConfig.h"
#include "state/UserRecords.h"
#include "tests/common/Handles.h"
#include "tests/driver/SheetCalls.h"
#include "tests/faults/FaultPoint.h"

#include <catch2/catch.hpp>

#include <cstdio>
#include <map>

using namespace VelUtility;

namespace
{

const FaultyFunction kFunctions[] = {
    FAULTY(RegOpenKeyExW, ERROR_ACCESS_DENIED, ERROR_ACCESS_DENIED),
    FAULTY(RegQueryValueExW, ERROR_FILE_NOT_FOUND, ERROR_FILE_NOT_FOUND),
    FAULTY(GetPrivateProfileStringW, 0, ERROR_FILE_NOT_FOUND),
    FAULTY(WritePrivateProfileStringW, FALSE, ERROR_DISK_FULL),
    FAULTY(CreateMutexW, nullptr, ERROR_ACCESS_DENIED),
    FAULTY(WaitForSingleObject, WAIT_FAILED, ERROR_INVALID_HANDLE),
    FAULTY(_wfopen, nullptr, ERROR_TOO_MANY_OPEN_FILES),
    FAULTY(DeleteFileW, FALSE, ERROR_SHARING_VIOLATION),
    FAULTY(LoadStringW, 0, ERROR_RESOURCE_NAME_NOT_FOUND),
    FAULTY(GetUserNameW, FALSE, ERROR_NO_SUCH_LOGON_SESSION),
};

/// Where a long run of calls is left: behind so many, one call is like the others.
constexpr int kMostCalls = 200;

struct FaultFixture : ClientFixture
{
    FaultFixture() { Restore(); }
    /// The store's files as each run finds them.
    void Restore() const
    {
        WriteCaps(PaperKeys(kPapers, kAbleKeys));
        const DEVMODEW stored = PlainRecord().stuDevmode;
        WriteFileBytes(folder.File(L"QPS@VEL_DevMode.dat"),
                       std::string(reinterpret_cast<const char*>(&stored), sizeof(stored)));
        WriteFileBytes(folder.File(L"QPS@VEL_passport.dat"), "pass");
    }
    /// Whether the lock of a file is to be had.
    static bool IsFree(const std::wstring& strFile)
    {
        CFileLocker locker(strFile.c_str());
        const bool bFree = locker.Lock(0) == 1;
        locker.Unlock();
        return bFree;
    }

    /// Runs work with each function failing at each of its calls.
    /// @param work does the work, and tells whether its result is a documented one.
    template <typename Work>
    void Inject(const char* pszWork, Work work)
    {
        REQUIRE(work()); // without a failure
        std::string strPoints;
        for (const FaultyFunction& function : kFunctions)
        {
            int iPoints = 0;
            for (const bool bOnwards : {false, true})
            {
                bool bReached = true;
                for (int iFailing = 1; bReached && iFailing <= kMostCalls; ++iFailing)
                {
                    CAPTURE(pszWork, function.pszName, iFailing, bOnwards);
                    Restore();
                    const size_t uiHandle = NextHandle();
                    bool bDocumented = false;
                    {
                        const FaultScope scope(function, iFailing, bOnwards);
                        bDocumented = work();
                        bReached = FaultScope::Calls() >= iFailing;
                    }
                    CHECK(bDocumented);
                    CHECK(NextHandle() == uiHandle);
                    CHECK(IsFree(ConfigFile()));
                    CHECK(IsFree(folder.File(L"QPS@VEL_DevMode.dat")));
                    iPoints += bReached ? 1 : 0;
                }
            }
            if (iPoints != 0)
            {
                strPoints += std::string(" ") + function.pszName + " " + std::to_string(iPoints);
            }
        }
        std::printf("faults: %s:%s\n", pszWork, strPoints.c_str());
        CHECK(work()); // and all is well again
    }

    const BuiltModule module;
    const TextsFrom texts{module.handle};
};

bool IsStatus(DWORD dwStatus)
{
    return dwStatus == PSERR_OK || dwStatus == PSERR_FAILED;
}

} // namespace

TEST_CASE_METHOD(FaultFixture, "capability queries survive each failure", "[faults]")
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

TEST_CASE_METHOD(FaultFixture, "records survive each failure", "[faults]")
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
    Inject("GetPaperInfoList", [] {
        stuPaperInfo papers[5] = {};
        const DWORD dwReturn = GetPaperInfoList(papers, 4);
        return dwReturn <= 4 && papers[dwReturn].wPaper == DMPAPER_USER;
    });
}

TEST_CASE_METHOD(FaultFixture, "a sheet's opening and end survive each failure", "[faults]")
{
    Inject("DrvDocumentPropertySheets, sheet", [] {
        DocumentCalls calls(&DrvDocumentPropertySheets);
        stuDrvDevmode in = PlainRecord();
        calls.header.pdmIn = &in.stuDevmode;
        return calls.Call(PROPSHEETUI_REASON_INIT) == 1 && calls.taker.pages.size() == 3 &&
               calls.Call(PROPSHEETUI_REASON_DESTROY) == 1;
    });
}

TEST_CASE_METHOD(FaultFixture, "the store's writers survive each failure", "[faults]")
{
    Inject("SetDevDef", [] {
        const DEVMODEW record = PlainRecord().stuDevmode;
        return IsStatus(SetDevDef(&record));
    });
    Inject("MakeDefSetting", [] {
        const DWORD dwValue = 1;
        return IsStatus(MakeDefSetting(&dwValue));
    });
    Inject("MakeServerConfig", [] {
        const ServerConfigInfo info = {1, 0, 1, 0};
        return IsStatus(MakeServerConfig(&info));
    });
    Inject("MakeServerPlaceFile", [] {
        const ServerPlace place = {L"server", {10, 0, 0, 1}, 1};
        return IsStatus(MakeServerPlaceFile(&place));
    });
    Inject("MakePrinterConfig", [] {
        const WORD papers[2] = {9, 8};
        const PrinterInfo info = {L"P", L"L", L"D"};
        PrinterCaps caps = {};
        caps.Papers = papers;
        caps.PapersCount = 2;
        MakePrinterConfig(&info, &caps);
        return true;
    });
    Inject("MakeAutoLogonInfo", [] { return IsStatus(MakeAutoLogonInfo(reinterpret_cast<const BYTE*>("abc"), 3)); });
    Inject("AppendUserMessageFile",
           [] { return IsStatus(AppendUserMessageFile(L"lin", reinterpret_cast<const BYTE*>("abc"), 3)); });
    Inject("MakeUserMessageID", [] { return IsStatus(MakeUserMessageID(L"lin", 7)); });
}

TEST_CASE_METHOD(FaultFixture, "the store's readers and deleters survive each failure", "[faults]")
{
    Inject("GetDevDef", [] {
        DEVMODEW record = {};
        return IsStatus(GetDevDef(&record));
    });
    Inject("GetDefSetting", [] {
        DWORD dwValue = 0;
        return IsStatus(GetDefSetting(&dwValue));
    });
    Inject("GetServerConfig", [] {
        ServerConfigInfo info = {};
        return IsStatus(GetServerConfig(&info));
    });
    Inject("GetPrinterInfo", [] {
        PrinterInfo info;
        return IsStatus(GetPrinterInfo(&info));
    });
    Inject("GetServerPlaceFile", [] {
        ServerPlace place = {};
        return GetServerPlaceFile(&place) == PSERR_OK;
    });
    Inject("GetAutoLogonInfo", [] {
        BYTE abyData[16];
        int iLength = 0;
        return IsStatus(GetAutoLogonInfo(abyData, sizeof(abyData), &iLength));
    });
    Inject("DelAutoLogonInfo", [] { return IsStatus(DelAutoLogonInfo()); });
    Inject("DelUserMessageFile", [] { return IsStatus(DelUserMessageFile(L"lin")); });
}
