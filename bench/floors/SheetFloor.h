#pragma once
/// The floor of the document sheet: a bare sheet with the module's templates and titles, whose pages do nothing.

#include <windows.h>
#include <prsht.h>

#include <vector>

/// The three pages of the document sheet, with a dialog procedure that does nothing.
/// @param hModule whose templates and titles.
std::vector<HPROPSHEETPAGE> FloorPages(HMODULE hModule);
