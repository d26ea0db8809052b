#pragma once
/// Locks of store files, as another process holds them.

#include "tests/common/BuiltModule.h"
#include "tests/common/ChildProcess.h"

#include <catch2/catch_test_macros.hpp>

#include <string>

/// The mutex's name of a file: the full path in lower case (A to Z) with a bar for each backslash.
inline std::wstring MutexNameOf(std::wstring strPath)
{
    for (wchar_t& c : strPath)
    {
        c = c == L'\\' ? L'|' : static_cast<wchar_t>(c >= L'A' && c <= L'Z' ? c + 32 : c);
    }
    return strPath;
}

/// Another process that holds the lock of a file until it is ended.
class LockHolder
{
public:
    explicit LockHolder(const std::wstring& strFile)
        : m_strReady(L"velui-test-ready-" + std::to_wstring(GetCurrentProcessId())),
          m_hReady(CreateEventW(nullptr, FALSE, FALSE, m_strReady.c_str())),
          m_child(BesideTests(L"storeworker.exe"), {L"hold", MutexNameOf(strFile), m_strReady})
    {
        REQUIRE(WaitForSingleObject(m_hReady, 20000) == WAIT_OBJECT_0);
    }
    ~LockHolder() { CloseHandle(m_hReady); }
    LockHolder(const LockHolder&) = delete;
    LockHolder& operator=(const LockHolder&) = delete;

    /// Ends the process, which leaves the mutex abandoned.
    void End() { m_child.Terminate(); }

private:
    std::wstring m_strReady;
    HANDLE m_hReady;
    ChildProcess m_child;
};
