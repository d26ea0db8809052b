// The lines that the store leaves in the log.

#include "state/BaseMutex.h"
#include "state/CapabilitySnapshot.h"
#include "state/CurrentUser.h"
#include "state/FileLocker.h"
#include "state/Profile.h"
#include "state/PsFolder.h"
#include "state/StorePaths.h"
#include "tests/common/ClientFixture.h"
#include "tests/common/LogLines.h"

#include <catch2/catch_test_macros.hpp>

using namespace VelUtility;

namespace
{

using Lines = std::vector<std::string>;

struct StoreLogFixture : ClientFixture
{
    LoggingOn logging{"OutputFunBeginInfo"};
    Lines Own(const std::string& strFunction) const { return OwnLines(logging, "VelUtility::" + strFunction); }
    /// What stands between a function's START and End.
    Lines Inner(const std::string& strFunction) const { return InnerLines(logging, "VelUtility::" + strFunction); }
    std::string NarrowFolder() const { return std::string(folder.Path().begin(), folder.Path().end()); }
};

} // namespace

TEST_CASE_METHOD(StoreLogFixture, "a client folder that is read leaves its arguments and its text", "[state][log]")
{
    wchar_t szFolder[260];
    GetClientFolder(2, szFolder, 256);
    CHECK(Inner("GetClientFolder") == Lines{"DEBUG - .\\PsFolder(#) : iFolderId = 2",
                                            "DEBUG - .\\PsFolder(#) : uiSize = 256",
                                            "DEBUG - .\\PsFolder(#) : szFolder = " + NarrowFolder()});
}

TEST_CASE_METHOD(StoreLogFixture, "a bad id is logged by the client's reader and not by the server's", "[state][log]")
{
    registry.SetServer(L"InstallDir", L"C:\\S");
    wchar_t szFolder[260];
    GetClientFolder(4, szFolder, 260);
    GetServerFolder(3, szFolder, 260);
    CHECK(Inner("GetClientFolder").at(2) == "ERROR - .\\PsFolder(#) : PSERR_INVALID_PARAMETER");
    CHECK(Inner("GetServerFolder").empty());
}

TEST_CASE_METHOD(StoreLogFixture, "a server folder that is read leaves no line", "[state][log]")
{
    registry.SetServer(L"InstallDir", L"C:\\S");
    wchar_t szFolder[260];
    CHECK(GetServerFolder(4, szFolder, 260) == 0);
    CHECK(Inner("GetServerFolder").empty());
}

TEST_CASE_METHOD(StoreLogFixture, "a missing key and a missing value leave the platform's code", "[state][log]")
{
    wchar_t szFolder[260];
    GetServerFolder(4, szFolder, 260); // no key
    CHECK(Inner("GetServerFolder") == Lines{"ERROR - .\\PsFolder(#) : lRet = 2"});
    registry.SetServer(L"LogDir", L"C:\\S");
    GetServerFolder(4, szFolder, 260); // no value
    CHECK(Own("GetServerFolder").at(4) == "ERROR - .\\PsFolder(#) : lRet = 2");
}

TEST_CASE_METHOD(StoreLogFixture, "a value too long for the buffer leaves the platform's code", "[state][log]")
{
    registry.SetServer(L"InstallDir", std::wstring(260, L'x'));
    wchar_t szFolder[260];
    GetServerFolder(4, szFolder, 260);
    CHECK(Inner("GetServerFolder") == Lines{"ERROR - .\\PsFolder(#) : lRet = 234"}); // ERROR_MORE_DATA
}

TEST_CASE_METHOD(StoreLogFixture, "a null folder buffer leaves its address", "[state][log]")
{
    GetServerFolder(4, nullptr, 260);
    CHECK(Inner("GetServerFolder") == Lines{"ERROR - .\\PsFolder(#) : szFolder = 0x00000000"});
}

TEST_CASE_METHOD(StoreLogFixture, "a folder too long for the caller leaves both sizes", "[state][log]")
{
    registry.SetServer(L"InstallDir", std::wstring(130, L'x'));
    wchar_t szFolder[260];
    GetServerFolder(4, szFolder, 260);
    CHECK(Inner("GetServerFolder") ==
          Lines{"ERROR - .\\PsFolder(#) : dwDateLen = 262", "ERROR - .\\PsFolder(#) : uiSize = 260"});
}

TEST_CASE_METHOD(StoreLogFixture, "the hard-coded user is logged behind the failure of the registry's", "[state][log]")
{
    wchar_t szUser[kUserNameUnits];
    wchar_t szDomain[kDomainNameUnits];
    GetCurrentUsername(szUser, szDomain);
    CHECK(Inner("GetCurrentUsername_Registry") == Lines{"ERROR - .\\ClientInfo(#) : lRet = 2"});
    CHECK(Inner("GetCurrentUsername_Hardcode") ==
          Lines{"DEBUG - .\\ClientInfo(#) : szUserName = QPS", "DEBUG - .\\ClientInfo(#) : szDomainName = VEL"});
}

TEST_CASE_METHOD(StoreLogFixture, "each missing logon value is named by its reader", "[state][log]")
{
    constexpr wchar_t kWinlogon[] = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon";
    wchar_t szUser[kUserNameUnits];
    wchar_t szDomain[kDomainNameUnits];
    registry.MakeKey(kWinlogon);
    GetCurrentUsername_Registry(szUser, szDomain);
    CHECK(Inner("GetCurrentUsername_Registry") ==
          Lines{"ERROR - .\\ClientInfo(#) : RegQueryValueExW_Username returns 2"});
    registry.SetText(kWinlogon, L"DefaultUserName", L"mei");
    GetCurrentUsername_Registry(szUser, szDomain);
    CHECK(Own("GetCurrentUsername_Registry").at(4) ==
          "ERROR - .\\ClientInfo(#) : RegQueryValueExW_DomainName returns 2");
}

TEST_CASE_METHOD(StoreLogFixture, "a path without a folder leaves the failed step", "[state][log]")
{
    PrivateRegistry bare;
    wchar_t szPath[kStorePathUnits];
    MakePersonalFilePath(L"x", szPath);
    MakeUserMessageFilePath(L"x", L"u", szPath);
    MakeServerFilePath(L"x", szPath);
    const Lines expected = {"ERROR - .\\ClientInfo(#) : GetClientFolder failed."};
    CHECK(Inner("MakePersonalFilePath") == expected);
    CHECK(Inner("MakeUserMessageFilePath") == expected);
    CHECK(Inner("MakeServerFilePath") == expected);
}

TEST_CASE_METHOD(StoreLogFixture, "a query leaves its code and its answer", "[state][log]")
{
    WriteCaps({{L"Copies", L"5"}});
    GetComputerCaps(DC_COPIES, nullptr);
    CHECK(Inner("GetComputerCaps") ==
          Lines{"DEBUG - GetComputerCaps(#)", "DEBUG - .\\ClientInfo(#) : GetComputerCaps returns 5"});
    CHECK(logging.Has("DEBUG - GetComputerCaps(18)\n"));
}

TEST_CASE_METHOD(StoreLogFixture, "a query without a folder leaves the failed step and tells no answer", "[state][log]")
{
    const PrivateRegistry bare;
    CHECK(GetComputerCaps(DC_COPIES, nullptr) == 0xFFFFFFFF);
    CHECK(Inner("GetComputerCaps") ==
          Lines{"DEBUG - GetComputerCaps(#)", "ERROR - .\\ClientInfo(#) : GetClientFolder failed."});
}

TEST_CASE_METHOD(StoreLogFixture, "a query tells its answer when the lock is given back", "[state][log]")
{
    WriteCaps({{L"Copies", L"5"}});
    GetComputerCaps(DC_COPIES, nullptr);
    const Lines lines = Masked(logging);
    REQUIRE(lines.size() > 3);
    CHECK(lines.at(lines.size() - 3) == "VelUI_dll__VelUtility::CFileLocker::~CFileLocker :End  ......");
    CHECK(lines.at(lines.size() - 2) == "DEBUG - .\\ClientInfo(#) : GetComputerCaps returns 5");
    CHECK(lines.at(lines.size() - 1) == "VelUI_dll__VelUtility::GetComputerCaps :End  ......");
}

TEST_CASE_METHOD(StoreLogFixture, "a missing number of a list leaves an error line", "[state][log]")
{
    WriteCaps({{L"PapersCount", L"1"}});
    WORD papers[1];
    GetComputerCaps(DC_PAPERS, papers);
    CHECK(Inner("SubCmpCaps_IntArray") == Lines{"ERROR - .\\ClientInfo(#) : GetPrivateProfileIntW returns GDI_ERROR"});
}

TEST_CASE_METHOD(StoreLogFixture, "a name of a failing length leaves no line of its own", "[state][log]")
{
    WriteCaps({{L"PaperNamesCount", L"1"}, {L"PaperNames0", std::wstring(63, L'x')}});
    WideName names[1];
    GetComputerCaps(DC_PAPERNAMES, names);
    CHECK(Inner("SubCmpCaps_StrArray").empty());
}

TEST_CASE_METHOD(StoreLogFixture, "a snapshot that can't be written leaves the writer's and the caller's line",
                 "[state][log]")
{
    registry.SetClient(L"TempDir", folder.Path() + L"\\missing");
    const PrinterInfo info = {L"P", L"L", L"D"};
    const PrinterCaps caps = {};
    MakePrinterConfig(&info, &caps);
    CHECK(Inner("MakePrinterConfig") == Lines{"ERROR - .\\ClientInfo(#) : WritePrivateProfileStringW failed."});
}

TEST_CASE_METHOD(StoreLogFixture, "a snapshot without a folder leaves the failed step", "[state][log]")
{
    const PrivateRegistry bare;
    const PrinterInfo info = {L"P", L"L", L"D"};
    const PrinterCaps caps = {};
    MakePrinterConfig(&info, &caps);
    CHECK(Inner("MakePrinterConfig") == Lines{"ERROR - .\\ClientInfo(#) : GetClientFolder failed."});
}

TEST_CASE_METHOD(StoreLogFixture, "an array writer that fails leaves the platform's code or the failed step",
                 "[state][log]")
{
    const std::wstring strFile = folder.File(L"missing\\p.ini");
    const WORD words[] = {1};
    const WideName names[] = {L"n"};
    const Resolution resolutions[] = {{1, 1}};
    const POINT points[] = {{1, 1}};
    WritePrivateProfileUINTArray(L"S", L"K", words, 1, strFile.c_str());
    WritePrivateProfileStringWArray(L"S", L"K", names, 1, strFile.c_str());
    WritePrivateProfileResolutoinArray(L"S", L"X", L"Y", resolutions, 1, strFile.c_str());
    WritePrivateProfilePointArray(L"S", L"X", L"Y", points, 1, strFile.c_str());
    const Lines code = {"ERROR - .\\ClientInfo(#) : GetLastError() = 3"}; // the folder is missing
    const Lines step = {"ERROR - .\\ClientInfo(#) : WritePrivateProfileUINT failed."};
    CHECK(Inner("WritePrivateProfileUINTArray") == code);
    CHECK(Inner("WritePrivateProfileStringWArray") == code);
    CHECK(Inner("WritePrivateProfileResolutoinArray") == step);
    CHECK(Inner("WritePrivateProfilePointArray") == step);
}

TEST_CASE_METHOD(StoreLogFixture, "of the null arrays only that of points leaves a line", "[state][log]")
{
    const std::wstring strFile = folder.File(L"p.ini");
    WritePrivateProfileUINTArray(L"S", L"K", static_cast<const WORD*>(nullptr), 1, strFile.c_str());
    WritePrivateProfileResolutoinArray(L"S", L"X", L"Y", nullptr, 1, strFile.c_str());
    WritePrivateProfilePointArray(L"S", L"X", L"Y", nullptr, 1, strFile.c_str());
    CHECK(Inner("WritePrivateProfileUINTArray").empty());
    CHECK(Inner("WritePrivateProfileResolutoinArray").empty());
    CHECK(Inner("WritePrivateProfilePointArray") == Lines{"ERROR - .\\ClientInfo(#) : NULL == pstuValue"});
}

TEST_CASE_METHOD(StoreLogFixture, "a locker without a path and a mutex without a handle each leave a line",
                 "[state][log]")
{
    {
        const CFileLocker locker(nullptr);
    }
    CHECK(Inner("CFileLocker::CFileLocker") == Lines{"ERROR - .\\FileLocker(#) : szFilename = 0x00000000"});
    {
        const CBaseMutex mutex(FALSE, L"no\\such\\namespace");
    }
    CHECK(Inner("CBaseMutex::CBaseMutex") == Lines{"ERROR - .\\BaseMutex(#) : GetLastError() = 3"});
}

TEST_CASE_METHOD(StoreLogFixture, "a path too long for a lock leaves an empty name", "[state][log]")
{
    const CFileLocker locker((L"C:\\" + std::wstring(400, L'x')).c_str());
    CHECK(Inner("CFileLocker::CFileLocker") == Lines{"ERROR - .\\FileLocker(#) : szName = "});
}

TEST_CASE_METHOD(StoreLogFixture, "every function of a query opens and closes its own scope", "[state][log]")
{
    WriteCaps({{L"Copies", L"5"}});
    GetComputerCaps(DC_COPIES, nullptr);
    Lines scopes;
    for (std::string strEvent : ScopeEvents(logging))
    {
        const std::string strHead = "VelUI_dll__VelUtility::";
        CHECK(strEvent.compare(1, strHead.size(), strHead) == 0);
        scopes.push_back(strEvent.erase(1, strHead.size()));
    }
    CHECK(scopes == Lines{"+GetComputerCaps",
                          "+GetClientFolder",
                          "-GetClientFolder",
                          "+CFileLocker::CFileLocker",
                          "+CBaseMutex::CBaseMutex",
                          "-CBaseMutex::CBaseMutex",
                          "-CFileLocker::CFileLocker",
                          "+CScopeFileLock::CScopeFileLock",
                          "+CFileLocker::Lock",
                          "+CBaseMutex::Lock",
                          "-CBaseMutex::Lock",
                          "-CFileLocker::Lock",
                          "-CScopeFileLock::CScopeFileLock",
                          "+SubCmpCaps_Rtn",
                          "-SubCmpCaps_Rtn",
                          "+CScopeFileLock::~CScopeFileLock",
                          "+CFileLocker::Unlock",
                          "+CBaseMutex::Unlock",
                          "-CBaseMutex::Unlock",
                          "-CFileLocker::Unlock",
                          "-CScopeFileLock::~CScopeFileLock",
                          "+CFileLocker::~CFileLocker",
                          "+CBaseMutex::~CBaseMutex",
                          "-CBaseMutex::~CBaseMutex",
                          "-CFileLocker::~CFileLocker",
                          "-GetComputerCaps"});
}
