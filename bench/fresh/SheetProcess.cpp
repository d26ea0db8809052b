// A process that shows its first document sheet, of the module or a bare one. Like every program with windows it has
// user32, gdi32 and comctl32 from its start, and it has loaded the module. It tells the bench what the sheet took:
//   sheetprocess REPORT VIEW document MODULE
//   sheetprocess REPORT VIEW bare MODULE          a bare sheet with the module's templates and titles

#include "bench/SheetPlay.h"
#include "bench/floors/SheetFloor.h"
#include "bench/fresh/Report.h"
#include "settings/DriverDevmode.h"

#include <cwchar>
#include <memory>

extern "C" int wmain(int argc, wchar_t* argv[])
{
    if (argc != 5 || !TakeView(argv[2]))
    {
        return 2;
    }
    const HMODULE hModule = LoadLibraryW(argv[4]);
    if (std::wcscmp(argv[3], L"bare") == 0)
    {
        return TellFigures(argv[1], [=] {
            return TimeSheet([=] { return std::make_unique<BarePages>(BarePages{FloorPages(hModule)}); }) > 0;
        });
    }
    const auto pfnDocument = reinterpret_cast<decltype(&DrvDocumentPropertySheets)>(
        reinterpret_cast<void*>(GetProcAddress(hModule, "DrvDocumentPropertySheets")));
    stuDrvDevmode in = {};
    in.stuDevmode.dmSize = kDevmodeSize;
    in.stuDevmode.dmDriverExtra = kDriverExtra;
    in.stuDevmode.dmPaperSize = DMPAPER_A4;
    return TellFigures(argv[1], [&] {
        return TimeSheet([&] { return std::make_unique<HostedDocument>(pfnDocument, &in.stuDevmode); }) > 0;
    });
}
