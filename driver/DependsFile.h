#pragma once

#include <windows.h>

#include <string>

/// The full path of a file in the folder of a module.
/// @param hModule     the module.
/// @param pszFileName name with extension; any folder in it is dropped.
std::wstring MakeDependsFilePath(HMODULE hModule, const wchar_t* pszFileName);
