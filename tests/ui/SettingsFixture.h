#pragma once
/// The settings page as a window, on a sheet's data.

#include "tests/common/ImportHook.h"
#include "tests/ui/PageWindow.h"
#include "tests/ui/SheetDataFixture.h"
#include "ui/PaperControls.h"
#include "ui/SettingsPage.h"

/// A dialog procedure that handles nothing.
inline INT_PTR CALLBACK NoPage(HWND, UINT, WPARAM, LPARAM)
{
    return 0;
}

/// An able printer with the four common papers, and a plain record on A4.
struct SettingsFixture : SheetDataFixture
{
    SettingsFixture()
    {
        UsePapers(kPapers);
        in = PlainRecord();
        out = in;
        bPaperSync = 1;
        bNoSwap = 1;
        iWidthEditId = 1007;
        iHeightEditId = 1008;
    }
    PageWindow Open() { return PageWindow(module.handle, IDD_SETTINGS, &ProSetPage, reinterpret_cast<LPARAM>(&data)); }
};
