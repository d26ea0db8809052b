#pragma once
/// The device sheet: the about page and no settings. It keeps nothing between the sheet library's calls.

#include "support/module/EntryAnswer.h"
#include "support/module/PrinterInterface.h"

/// Plays the device sheet's side of one call of the sheet library.
/// @param pPSUIInfo the library's call. One without lParamInit is refused with last error 13, without a result line. So
///                  is null, but only with logging off or the category's priority above ERROR: as soon as that lets
///                  errors through, whether or not a filter then keeps them back, null faults. Neither the
///                  DEVICEPROPERTYHEADER at lParamInit nor UserData is used.
/// @return 1, or -1 for a failure.
EntryAnswer<LONG> PlayDeviceSheet(PPROPSHEETUI_INFO pPSUIInfo);
