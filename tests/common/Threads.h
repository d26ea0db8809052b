#pragma once

#include <windows.h>

#include <catch2/catch_test_macros.hpp>

/// Runs a function on another thread and waits for its end.
template <typename Function>
void OnThread(Function function)
{
    const HANDLE hThread = CreateThread(
        nullptr, 0,
        [](void* pv) -> DWORD {
            (*static_cast<Function*>(pv))();
            return 0;
        },
        &function, 0, nullptr);
    REQUIRE(hThread != nullptr);
    REQUIRE(WaitForSingleObject(hThread, 20000) == WAIT_OBJECT_0);
    CloseHandle(hThread);
}
