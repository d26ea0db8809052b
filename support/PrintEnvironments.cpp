#include "support/PrintEnvironments.h"

namespace Win32
{

const wchar_t* const kPrintEnvironments[kPrintEnvironmentCount] = {
    L"Windows NT x86",       L"Windows IA64", L"Windows x64",        L"Windows NT R4000",
    L"Windows NT Alpha_AXP", L"Windows 4.0",  L"Windows NT PowerPC", nullptr,
};

} // namespace Win32
