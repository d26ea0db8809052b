#pragma once
/// The steps that the store's data files share: opening a file with a log line for a failure, writing and deleting one
/// under its lock.

#include "support/FileStream.h"

#include <windows.h>

#include <cstddef>

namespace VelUtility
{

/// Opens a stream. A failure leaves a line with the path and the C runtime's reason in the caller's trace scope.
/// @return whether it opened.
bool OpenLogged(FileStream& stream, const wchar_t* pszPath, const wchar_t* pszMode);

/// When the bytes of a write must have reached the file.
enum class Flush
{
    AtClose,   ///< when the stream is closed, which is behind the lock
    UnderLock, ///< before the lock is given back
};

/// Opens a file and writes items under its lock; any count but the whole one is a failure, and so is a count of 0. A
/// flush that fails is none: its line alone tells.
/// @param pData borrowed; uiItems items of cbItem bytes each.
/// @return 0, or 1 with a line in the log.
DWORD WriteItems(const wchar_t* pszPath, const wchar_t* pszMode, const void* pData, size_t cbItem, size_t uiItems,
                 Flush flush = Flush::AtClose);

/// Deletes a file under its lock, a read-only one too.
/// @return 0 always.
DWORD DeleteLocked(const wchar_t* pszPath);

} // namespace VelUtility
