#pragma once
/// The store's settings by key: what the module has a reader and, for most, a writer for.

#include "tools/velhost/report/Output.h"

#include <string>
#include <vector>

namespace VelHost
{

/// One setting.
struct StoreKey
{
    const char* pszKey;
    const char* pszFile; ///< where it lies
    const char* pszForm; ///< what a value looks like, for people
    /// Reads the value; null when the store can't be reached.
    /// @param strUser whose message files; others ignore it.
    Json (*pfnRead)(const std::wstring& strUser);
    /// Writes a value; null where the module has no writer.
    /// @return whether it was written. Throws std::invalid_argument for a value of another form.
    bool (*pfnWrite)(const std::wstring& strUser, const std::string& strValue);
};

const std::vector<StoreKey>& StoreKeys();

/// @return the row of a key, whatever the case of its letters, or null.
const StoreKey* FindStoreKey(const std::string& strKey);

/// @return a user's name as the store's file names have it.
/// @param strUser UTF-8; the current user when it is empty.
std::wstring StoreUser(const std::string& strUser);

} // namespace VelHost
