#pragma once
/// Which access to a file is asked for.

#include "tests/common/ImportHook.h"

/// The mode of the one call of _waccess that the code in the test program makes in fnCall; the file is told to be
/// there.
/// @return -1 when there was none.
template <typename Call>
int AskedAccess(Call fnCall)
{
    static int s_iMode;
    s_iMode = -1;
    const ImportHook hook(
        nullptr, "_waccess", +[](const wchar_t*, int iMode) {
            s_iMode = iMode;
            return 0;
        });
    fnCall();
    return s_iMode;
}
