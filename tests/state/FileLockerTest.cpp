#include "state/FileLocker.h"
#include "tests/common/ImportHook.h"
#include "tests/common/LockHolder.h"
#include "tests/common/TempFolder.h"

#include <catch2/catch_test_macros.hpp>

#include <cstring>
#include <new>
#include <string>

using namespace VelUtility;

namespace
{

/// Whether a mutex of that name exists now.
bool MutexExists(const wchar_t* pszName)
{
    const HANDLE hMutex = OpenMutexW(SYNCHRONIZE, FALSE, pszName);
    if (hMutex != nullptr)
    {
        CloseHandle(hMutex);
    }
    return hMutex != nullptr;
}

/// Fails and leaves a part of its work, which the platform's own does not promise not to.
wchar_t* FailHalfWay(wchar_t* szFull, const wchar_t*, size_t)
{
    wcscpy(szFull, L"c:\\half");
    return nullptr;
}

} // namespace

TEST_CASE("a null path gives a locker whose lock and unlock return 0, and no exception", "[state][locks]")
{
    CFileLocker locker(nullptr);
    CHECK(locker.bFailed == 1);
    CHECK(locker.pMutex == nullptr);
    CHECK(locker.Lock(0) == 0);
    CHECK(locker.Lock(INFINITE) == 0);
    CHECK(locker.Unlock() == 0);
}

TEST_CASE("a path too long to be made full gives a failed locker", "[state][locks]")
{
    const CFileLocker locker((L"C:\\" + std::wstring(400, L'x')).c_str());
    CHECK(locker.bFailed == 1);
    CHECK(locker.pMutex == nullptr);
}

TEST_CASE("what is left of a path that can't be made full names no lock", "[state][locks]")
{
    const ImportHook hook(nullptr, "_wfullpath", &FailHalfWay);
    const CFileLocker locker(L"C:\\data\\a.ini");
    CHECK(locker.bFailed == 1);
    CHECK(locker.pMutex == nullptr);
}

TEST_CASE("a locker that is gone has left the word that it failed", "[state][locks]")
{
    alignas(CFileLocker) unsigned char abyPlace[sizeof(CFileLocker)];
    auto* const pLocker = new (abyPlace) CFileLocker(L"C:\\data\\gone.ini");
    const unsigned char* const pbyFailed = reinterpret_cast<unsigned char*>(&pLocker->bFailed);
    REQUIRE(pLocker->bFailed == 0);
    pLocker->~CFileLocker();
    BOOL bFailed = 0;
    std::memcpy(&bFailed, pbyFailed, sizeof(bFailed));
    CHECK(bFailed == 1);
}

TEST_CASE("two spellings of a path give one mutex, named by the lower-case path with bars", "[state][locks]")
{
    CHECK_FALSE(MutexExists(L"c:|data|a.ini"));
    {
        CFileLocker upper(L"C:\\Data\\A.INI");
        CHECK(upper.bFailed == 0);
        CHECK(MutexExists(L"c:|data|a.ini"));
        CFileLocker lower(L"c:\\data\\a.ini");
        CHECK(upper.Lock(0) == 1);
        CHECK(lower.Unlock() != 0); // the same mutex, owned by this thread
        CHECK(upper.Unlock() == 0);
    }
    CHECK_FALSE(MutexExists(L"c:|data|a.ini"));
}

TEST_CASE("a relative path and one with detours give the mutex of the full path", "[state][locks]")
{
    const TempFolder folder;
    wchar_t szOld[MAX_PATH];
    GetCurrentDirectoryW(MAX_PATH, szOld);
    REQUIRE(SetCurrentDirectoryW(folder.Path().c_str()));
    {
        const CFileLocker locker(L"x\\..\\Config.ini");
        CHECK(locker.bFailed == 0);
        wchar_t szHere[MAX_PATH];
        GetCurrentDirectoryW(MAX_PATH, szHere);
        CHECK(MutexExists(MutexNameOf(szHere + std::wstring(L"\\config.ini")).c_str()));
    }
    SetCurrentDirectoryW(szOld);
}

TEST_CASE("a lock never opens or makes its file", "[state][locks]")
{
    const TempFolder folder;
    {
        const CScopeFileLock lock(folder.File(L"absent.ini").c_str());
    }
    CHECK_FALSE(PathExists(folder.File(L"absent.ini")));
}

TEST_CASE("two nested locks of one path on one thread don't block", "[state][locks]")
{
    const TempFolder folder;
    const std::wstring strPath = folder.File(L"n.ini");
    {
        const CScopeFileLock outer(strPath.c_str());
        {
            const CScopeFileLock inner(strPath.c_str());
        }
        CHECK(MutexExists(MutexNameOf(strPath).c_str()));
    }
    CHECK_FALSE(MutexExists(MutexNameOf(strPath).c_str()));
}

TEST_CASE("a lock whose mutex can't be made lets the work go on", "[state][locks]")
{
    const TempFolder folder;
    const std::wstring strPath = folder.File(L"taken.ini");
    const HANDLE hEvent = CreateEventW(nullptr, FALSE, FALSE, MutexNameOf(strPath).c_str());
    REQUIRE(hEvent != nullptr);
    bool bWorked = false;
    {
        const CScopeFileLock lock(strPath.c_str());
        bWorked = true;
    }
    CHECK(bWorked);
    CHECK_FALSE(MutexExists(MutexNameOf(strPath).c_str()));
    CloseHandle(hEvent);
}

TEST_CASE("an exception that leaves the scope gives the lock back", "[state][locks]")
{
    const TempFolder folder;
    const std::wstring strPath = folder.File(L"thrown.ini");
    const HANDLE hMutex = CreateMutexW(nullptr, FALSE, MutexNameOf(strPath).c_str());
    try
    {
        const CScopeFileLock lock(strPath.c_str());
        CHECK(ReleaseMutex(hMutex)); // this thread owned it
        CHECK(WaitForSingleObject(hMutex, 0) == WAIT_OBJECT_0);
        throw 1;
    }
    catch (int)
    {}
    CHECK_FALSE(ReleaseMutex(hMutex));
    CloseHandle(hMutex);
}

TEST_CASE("a path of 259 characters has a lock, longer ones have none, and so none in common", "[state][locks]")
{
    const auto path = [](size_t uiLength, wchar_t cEnd) { return L"C:\\" + std::wstring(uiLength - 4, L'x') + cEnd; };
    {
        CFileLocker longest(path(259, L'a').c_str());
        CFileLocker other(path(259, L'b').c_str());
        CHECK(longest.bFailed == 0);
        CHECK(longest.Lock(0) == 1);
        CHECK(other.Lock(0) == 1);
        CHECK(MutexExists(MutexNameOf(path(259, L'a')).c_str())); // told apart by the last character
        CHECK(MutexExists(MutexNameOf(path(259, L'b')).c_str()));
        CHECK(longest.Unlock() != 0);
        CHECK(other.Unlock() != 0);
    }
    for (const size_t uiLength : {260u, 261u})
    {
        CAPTURE(uiLength);
        CFileLocker locker(path(uiLength, L'a').c_str());
        CHECK(locker.bFailed == 1);
        CHECK(locker.pMutex == nullptr);
        CHECK(locker.Lock(0) == 0);
        CHECK_FALSE(MutexExists(MutexNameOf(path(uiLength, L'a')).c_str()));
        CHECK_FALSE(MutexExists(MutexNameOf(path(259, L'x')).c_str())); // nor one of its beginning
    }
}
