#pragma once
/// Status codes, sizes and limits that the client state store's calls share.

#include <windows.h>

namespace VelUtility
{

/// Status of the store's readers and writers.
inline constexpr DWORD PSERR_OK = 0;
inline constexpr DWORD PSERR_FAILED = 1;
inline constexpr DWORD PSERR_INVALID_PARAMETER = 16;

/// The answer for anything missing (GDI_ERROR, as an unsigned 32-bit value).
inline constexpr DWORD kNoAnswer = 0xFFFFFFFF;

/// Size of a buffer for a folder, in wide characters, as callers have it.
inline constexpr size_t kFolderUnits = 260;

} // namespace VelUtility
