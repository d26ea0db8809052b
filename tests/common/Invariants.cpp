#include "tests/common/Invariants.h"

#include "tests/common/Handles.h"

#include <catch2/catch_test_macros.hpp>

#include <clocale>
#include <objbase.h>

namespace
{

constexpr unsigned kSseFlags = 0x3F;

std::wstring CurrentFolder()
{
    wchar_t szFolder[MAX_PATH] = {};
    GetCurrentDirectoryW(MAX_PATH, szFolder);
    return szFolder;
}

WORD X87Control()
{
    WORD wControl = 0;
    __asm__ volatile("fnstcw %0" : "=m"(wControl));
    return wControl;
}

DWORD NextTlsIndex()
{
    const DWORD dwIndex = TlsAlloc();
    TlsFree(dwIndex);
    return dwIndex;
}

/// The apartment's type, or -1 without COM.
LONG Apartment()
{
    APTTYPE type = APTTYPE_CURRENT;
    APTTYPEQUALIFIER qualifier = APTTYPEQUALIFIER_NONE;
    return CoGetApartmentType(&type, &qualifier) == S_OK ? static_cast<LONG>(type) : -1;
}

bool Impersonates()
{
    HANDLE hToken = nullptr;
    const bool bToken = OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, TRUE, &hToken) != FALSE;
    if (bToken)
    {
        CloseHandle(hToken);
    }
    return bToken;
}

} // namespace

CallerState::CallerState()
    : strFolder(CurrentFolder()), uiErrorMode(GetErrorMode()), iThreadPriority(GetThreadPriority(GetCurrentThread())),
      dwProcessPriority(GetPriorityClass(GetCurrentProcess())), dwThreadLocale(GetThreadLocale()),
      strLocale(std::setlocale(LC_ALL, nullptr)), wX87(X87Control()), uiSse(__builtin_ia32_stmxcsr() & ~kSseFlags),
      bImpersonates(Impersonates()), dwTlsIndex(NextTlsIndex()), lApartment(Apartment()), uiHandle(NextHandle())
{}

void CheckUnchanged(const CallerState& before, const CallerState& after, bool bHandles)
{
    CHECK(after.strFolder == before.strFolder);
    CHECK(after.uiErrorMode == before.uiErrorMode);
    CHECK(after.iThreadPriority == before.iThreadPriority);
    CHECK(after.dwProcessPriority == before.dwProcessPriority);
    CHECK(after.dwThreadLocale == before.dwThreadLocale);
    CHECK(after.strLocale == before.strLocale);
    CHECK(after.wX87 == before.wX87);
    CHECK(after.uiSse == before.uiSse);
    CHECK(after.bImpersonates == before.bImpersonates);
    CHECK(after.dwTlsIndex == before.dwTlsIndex);
    CHECK(after.lApartment == before.lApartment);
    CHECK((!bHandles || after.uiHandle == before.uiHandle));
}
