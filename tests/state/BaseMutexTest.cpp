#include "state/BaseMutex.h"
#include "tests/common/LineAtCall.h"
#include "tests/common/Threads.h"

#include <catch2/catch_test_macros.hpp>

#include <memory>
#include <string>

using namespace VelUtility;

namespace
{

std::wstring UniqueName(const wchar_t* pszWhat)
{
    return std::wstring(L"velui-test-") + pszWhat + std::to_wstring(GetCurrentProcessId());
}

} // namespace

TEST_CASE("a mutex without a handle can't be locked or unlocked", "[state][locks]")
{
    const std::wstring strName = UniqueName(L"event");
    const HANDLE hEvent = CreateEventW(nullptr, FALSE, FALSE, strName.c_str()); // the name is taken by another kind
    REQUIRE(hEvent != nullptr);
    CBaseMutex mutex(FALSE, strName.c_str());
    CHECK(mutex.hMutex == nullptr);
    CHECK(mutex.Lock(0) == 0);
    CHECK(mutex.Lock(INFINITE) == 0);
    CHECK(mutex.Unlock() == 0);
    CloseHandle(hEvent);
}

TEST_CASE("a mutex is recursive for its owner and each lock needs an unlock", "[state][locks]")
{
    CBaseMutex mutex(FALSE, UniqueName(L"recursive").c_str());
    CHECK(mutex.Lock(0) == 1);
    CHECK(mutex.Lock(0) == 1);
    CHECK(mutex.Unlock() != 0);
    OnThread([&] { CHECK(mutex.Lock(0) == 0); });
    CHECK(mutex.Unlock() != 0);
    CHECK(mutex.Unlock() == 0);
    OnThread([&] {
        CHECK(mutex.Lock(0) == 1);
        CHECK(mutex.Unlock() != 0);
    });
}

TEST_CASE("a lock with time-out 0 on a mutex held elsewhere returns 0 at once", "[state][locks]")
{
    CBaseMutex mutex(TRUE, UniqueName(L"held").c_str());
    OnThread([&] {
        const DWORD dwStart = GetTickCount();
        CHECK(mutex.Lock(0) == 0);
        CHECK(GetTickCount() - dwStart < 1000);
        CHECK(mutex.Unlock() == 0); // not the owner
    });
}

TEST_CASE("a lock with a time-out waits for that long and then returns 0", "[state][locks]")
{
    CBaseMutex mutex(TRUE, UniqueName(L"timeout").c_str());
    OnThread([&] {
        const DWORD dwStart = GetTickCount();
        CHECK(mutex.Lock(200) == 0);
        CHECK(GetTickCount() - dwStart >= 180);
    });
}

TEST_CASE("an abandoned mutex counts as not locked, yet the waiter owns it and gives it back", "[state][locks]")
{
    CBaseMutex mutex(FALSE, UniqueName(L"abandoned").c_str());
    OnThread([&] { CHECK(mutex.Lock(0) == 1); }); // ends without releasing
    CHECK(mutex.Lock(INFINITE) == 0);
    OnThread([&] { CHECK(mutex.Lock(0) == 0); });
    CHECK(mutex.Unlock() != 0);
    OnThread([&] {
        CHECK(mutex.Lock(0) == 1);
        CHECK(mutex.Unlock() != 0);
    });
}

TEST_CASE("the destructor gives back a mutex that is still locked", "[state][locks]")
{
    const std::wstring strName = UniqueName(L"destroyed");
    CBaseMutex outer(FALSE, strName.c_str()); // keeps the mutex alive
    {
        CBaseMutex inner(FALSE, strName.c_str());
        CHECK(inner.Lock(0) == 1);
    }
    OnThread([&] {
        CHECK(outer.Lock(0) == 1);
        CHECK(outer.Unlock() != 0);
    });
}

TEST_CASE("the scope of each of a mutex's functions is open while the platform has the mutex", "[state][locks][log]")
{
    const std::wstring strName = UniqueName(L"scopes");
    const LoggingOn logging{"OutputFunBeginInfo"};
    const LineAtCall<decltype(CreateMutexW)> create(logging, "CreateMutexW");
    const LineAtCall<decltype(WaitForSingleObject)> wait(logging, "WaitForSingleObject");
    {
        CBaseMutex mutex(FALSE, strName.c_str());
        CHECK(create.Text() == "VelUI_dll__VelUtility::CBaseMutex::CBaseMutex :START......");
        CHECK(mutex.Lock(INFINITE) == 1);
        CHECK(wait.Text() == "VelUI_dll__VelUtility::CBaseMutex::Lock :START......");
        const LineAtCall<decltype(ReleaseMutex)> release(logging, "ReleaseMutex");
        CHECK(mutex.Unlock() != 0);
        CHECK(release.Text() == "VelUI_dll__VelUtility::CBaseMutex::Unlock :START......");
    }
    auto mutex = std::make_unique<CBaseMutex>(FALSE, strName.c_str());
    const LineAtCall<decltype(ReleaseMutex)> release(logging, "ReleaseMutex");
    mutex.reset();
    CHECK(release.Text() == "VelUI_dll__VelUtility::CBaseMutex::~CBaseMutex :START......");
}
