#include "bench/floors/SheetFloor.h"

#include "bench/floors/CapsFloor.h"
#include "bench/floors/RecordFloor.h"
#include "bench/floors/StoreFloor.h"
#include "support/module/Resource.h"

namespace
{

INT_PTR CALLBACK DoNothing(HWND, UINT uiMessage, WPARAM, LPARAM)
{
    return uiMessage == WM_INITDIALOG ? 1 : 0;
}

HPROPSHEETPAGE FloorPage(HMODULE hModule, UINT uiTemplate, UINT uiTitle)
{
    wchar_t szTitle[100];
    LoadStringW(hModule, uiTitle, szTitle, 100);
    PROPSHEETPAGEW page = {};
    page.dwSize = sizeof(page);
    page.dwFlags = PSP_USETITLE;
    page.hInstance = hModule;
    page.pszTemplate = MAKEINTRESOURCEW(uiTemplate);
    page.pszTitle = szTitle;
    page.pfnDlgProc = &DoNothing;
    return CreatePropertySheetPageW(&page);
}

} // namespace

std::vector<HPROPSHEETPAGE> FloorPages(HMODULE hModule)
{
    return {FloorPage(hModule, IDD_SETTINGS, IDS_TITLE_SETTINGS), FloorPage(hModule, IDD_ADVANCED, IDS_TITLE_ADVANCED),
            FloorPage(hModule, IDD_ABOUT, IDS_TITLE_ABOUT)};
}

void FloorSheetStore(DWORD dwClientPid)
{
    // PROPSHEETUI_REASON_INIT and, behind it, PROPSHEETUI_REASON_GET_INFO_HEADER.
    FloorClientCheck(dwClientPid);
    FloorDefSetting();
    FloorNumber(L"PapersCount"); // for the list's size, and again to fill it
    FloorNumber(L"PapersCount");
    wchar_t aszNames[100][64];
    FloorNames(L"PaperNamesCount", L"PaperNames", aszNames[0], 64);
    WORD wPapers[100];
    FloorWords(L"PapersCount", L"Papers", wPapers);
    POINT stuSizes[100];
    FloorPairs(L"PaperSizeCount", L"PaperSizeX", L"PaperSizeY", stuSizes);
    FloorClientCheck(dwClientPid);
    // The settings page.
    FloorNumber(L"Orientation");
    FloorNumber(L"ColorDevice");
    FloorNumber(L"Duplex");
}
