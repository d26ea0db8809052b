#pragma once

#include <windows.h>

namespace VelUtility
{

/// Folder identifiers: one numbering across both readers.
enum FolderId : DWORD
{
    kClientInstallDir = 0,
    kClientDataDir = 1,
    kClientTempDir = 2,
    kClientLogDir = 3,
    kServerInstallDir = 4,
    kServerDatabaseDir = 5,
    kServerTaskDir = 6,
    kServerLogDir = 7,
    kServerBackupDir = 8,
    kServerPlugin = 9,
    kServerTempDir = 10,
};

/// Registry keys of the folders, below HKEY_LOCAL_MACHINE, and the value that names the folder of an installation. Each
/// text stands once here, in the two widths that the registry is asked in.
#define VELUI_CLIENT_KEY "Software\\Vel-soft\\Client"
#define VELUI_SERVER_KEY "Software\\Vel-soft\\Server"
#define VELUI_INSTALL_DIR "InstallDir"
inline constexpr wchar_t kClientKey[] = L"" VELUI_CLIENT_KEY;
inline constexpr wchar_t kServerKey[] = L"" VELUI_SERVER_KEY;
inline constexpr wchar_t kInstallDir[] = L"" VELUI_INSTALL_DIR;
inline constexpr char kNarrowClientKey[] = VELUI_CLIENT_KEY;
inline constexpr char kNarrowServerKey[] = VELUI_SERVER_KEY;
inline constexpr char kNarrowInstallDir[] = VELUI_INSTALL_DIR;
#undef VELUI_CLIENT_KEY
#undef VELUI_SERVER_KEY
#undef VELUI_INSTALL_DIR

/// Reads one of the client's folders (ids 0 to 3) from the registry, anew on every call.
/// @param szFolder [out] the folder's text; untouched on failure.
/// @param uiSize   the buffer's size as the caller counts it, which is compared with the text's length in bytes.
/// @return 0; 1 when the key or the value is missing or longer than 520 bytes; 16 for a null szFolder, an id outside
///         the range (with the key present) or a text of more than uiSize bytes, the terminator included.
DWORD GetClientFolder(DWORD iFolderId, wchar_t* szFolder, unsigned __int64 uiSize);

/// The same for the server's folders (ids 4 to 10). No entry point of this module reaches it: it is kept for programs
/// on a machine that has the server.
DWORD GetServerFolder(DWORD iFolderId, wchar_t* szFolder, unsigned __int64 uiSize);

} // namespace VelUtility
