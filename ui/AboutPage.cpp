#include "ui/AboutPage.h"

#include "diag/LogSite.h"

VELUI_SOURCE_MODULE("SubVelUi");

INT_PTR CALLBACK ProAbouPage(HWND /*hDlg*/, UINT uiMessage, WPARAM /*wParam*/, LPARAM /*lParam*/)
{
    TRACE_FUNCTION("ProAbouPage");
    return uiMessage == WM_INITDIALOG || uiMessage == WM_COMMAND ? 1 : 0;
}
