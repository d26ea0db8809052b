#pragma once

#include "tests/common/BuiltModule.h"
#include "tests/common/ChildProcess.h"

/// Runs a case tagged [.child] in a process of its own.
/// @param strCase its name, without a comma.
/// @return the exit code: 0 when all its checks held; the exception's code when it faulted.
inline DWORD ExitCodeOfCase(const std::wstring& strCase)
{
    ChildProcess child(BesideTests(L"veltests.exe"), {strCase});
    return child.Wait(60000);
}
