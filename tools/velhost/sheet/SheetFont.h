#pragma once

#include <windows.h>
#include <prsht.h>

namespace VelHost
{

/// Callback of a property sheet (PSH_USECALLBACK) that gives it the pages' font size before it is made. The platform
/// measures a sheet in dialog units of its own font; with a smaller one than the pages', it would cut them off.
int CALLBACK UsePagesFont(HWND hSheet, UINT uiMessage, LPARAM lParam);

/// Changes the font size of a dialog template that names a font; leaves any other as it is.
/// @param pTemplate DLGTEMPLATE or its extended form.
/// @param wPoints   points.
void SetTemplateFontSize(void* pTemplate, WORD wPoints);

} // namespace VelHost
