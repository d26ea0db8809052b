#pragma once
/// The floor of the document sheet: a bare sheet with the module's templates and titles, whose pages do nothing.

#include <windows.h>
#include <prsht.h>

#include <vector>

/// The three pages of the document sheet, with a dialog procedure that does nothing.
/// @param hModule whose templates and titles.
std::vector<HPROPSHEETPAGE> FloorPages(HMODULE hModule);

/// The calls of the store that the contract demands on the way to the visible page, with a snapshot of at most 100
/// papers: two checks of the resident client, the user's request, the papers, and what the settings page asks for.
void FloorSheetStore(DWORD dwClientPid);
