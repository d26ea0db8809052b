#include "bench/floors/SheetFloor.h"

#include "support/Resource.h"

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
