#include "ui/AboutPage.h"

#include "diag/LogSite.h"
#include "support/module/Resource.h"

VELUI_SOURCE_MODULE("SubVelUi");

namespace
{

/// Frees the picture that the control loaded from the dialog's description. Not every version of Windows does so when
/// it goes.
void ReleasePicture(HWND hDlg)
{
    const LRESULT lPicture = SendDlgItemMessageW(hDlg, IDC_ABOUT_PICTURE, STM_SETIMAGE, IMAGE_BITMAP, 0);
    DeleteObject(reinterpret_cast<HGDIOBJ>(lPicture));
}

} // namespace

INT_PTR CALLBACK ProAbouPage(HWND hDlg, UINT uiMessage, WPARAM /*wParam*/, LPARAM /*lParam*/)
{
    const FunctionScope scope("ProAbouPage");
    if (uiMessage == WM_DESTROY)
    {
        ReleasePicture(hDlg);
    }
    return uiMessage == WM_INITDIALOG || uiMessage == WM_COMMAND ? 1 : 0;
}
