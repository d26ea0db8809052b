#include "state/LockedFile.h"

#include "diag/LogSite.h"
#include "state/FileLocker.h"
#include "state/StoreTypes.h"

#include <cerrno>
#include <cstring>
#include <io.h>
#include <sys/stat.h>

VELUI_SOURCE_MODULE(".\\ClientInfo");

namespace VelUtility
{

bool OpenLogged(FileStream& stream, const wchar_t* pszPath, const wchar_t* pszMode)
{
    if (!stream.Open(pszPath, pszMode))
    {
        LOG_ERROR("_wfopen failed. name = %S, err = %s", pszPath, std::strerror(errno));
        return false;
    }
    return true;
}

DWORD WriteItems(const wchar_t* pszPath, const wchar_t* pszMode, const void* pData, size_t cbItem, size_t uiItems,
                 Flush flush)
{
    // Required: the lock is given back before the stream is closed, so the stream is declared in front of it. A reader
    // that takes the lock in between may find the file shorter.
    FileStream stream;
    const CScopeFileLock lock(pszPath);
    if (!OpenLogged(stream, pszPath, pszMode))
    {
        return PSERR_FAILED;
    }
    // Required: of a length of 0 nothing is written, which counts as a failure too, although the file is then empty as
    // was asked: 1 tells that nothing is stored.
    const size_t uiWritten = std::fwrite(pData, cbItem, uiItems, stream.Get());
    if (uiWritten == 0 || uiWritten != uiItems)
    {
        LOG_ERROR("fwrite failed. err = %s", std::strerror(errno));
        return PSERR_FAILED;
    }
    // Required: a failed flush is a success with a line, as a failed close is a success for every other file here. The
    // bytes may be in the file, in part or whole, and the close tries for the rest: a caller that were told of a
    // failure would repeat the write, and store them twice.
    if (flush == Flush::UnderLock && std::fflush(stream.Get()) != 0)
    {
        LOG_ERROR("fflush failed. err = %s", std::strerror(errno));
    }
    return PSERR_OK;
}

DWORD DeleteLocked(const wchar_t* pszPath)
{
    const CScopeFileLock lock(pszPath);
    // Required: neither result is looked at. A missing file is no failure, and callers go on with a new file, which
    // tells by itself when the old one could not be deleted.
    _wchmod(pszPath, _S_IREAD | _S_IWRITE);
    DeleteFileW(pszPath);
    return PSERR_OK;
}

} // namespace VelUtility
