// A process with kernel32, advapi32 and msvcrt alone, as a console program is that prints. It does one thing for the
// first time and tells the bench what it took:
//   bareprocess REPORT VIEW load FILE          loads a module
//   bareprocess REPORT VIEW query FILE         asks a module, loaded before, for DC_SIZE
//   bareprocess REPORT VIEW contract CLIENT    makes the calls that the contract demands for that query, with a
//   resident
//                                              client at the path CLIENT

#include "bench/floors/FirstQueryFloor.h"
#include "bench/fresh/Report.h"
#include "support/module/PrinterInterface.h"

#include <cwchar>

namespace
{

int Query(const wchar_t* pszReport, const wchar_t* pszFile)
{
    const HMODULE hModule = LoadLibraryW(pszFile);
    const auto pfnCaps = reinterpret_cast<decltype(&DrvDeviceCapabilities)>(
        reinterpret_cast<void*>(GetProcAddress(hModule, "DrvDeviceCapabilities")));
    return TellFigures(pszReport, [=] { return pfnCaps(nullptr, nullptr, DC_SIZE, nullptr, nullptr) == 220; });
}

} // namespace

extern "C" int wmain(int argc, wchar_t* argv[])
{
    if (argc != 5 || !TakeView(argv[2]))
    {
        return 2;
    }
    const wchar_t* const pszSubject = argv[3];
    if (std::wcscmp(pszSubject, L"load") == 0)
    {
        return TellFigures(argv[1], [=] { return LoadLibraryW(argv[4]) != nullptr; });
    }
    if (std::wcscmp(pszSubject, L"query") == 0)
    {
        return Query(argv[1], argv[4]);
    }
    return TellFigures(argv[1], [=] { return FloorFirstQuery(argv[4]); });
}
