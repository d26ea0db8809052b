#pragma once
/// Section DeviceCapabilities as the checks see it: in a file, or as it would be written into one.

#include "state/CapabilityTable.h"

#include <windows.h>

#include <map>
#include <optional>
#include <string>

namespace VelHost
{

/// The keys of a snapshot.
class SnapshotView
{
public:
    virtual ~SnapshotView() = default;
    /// A key's text as a reader gets it that has space for all of it; nothing where the key is missing or empty.
    virtual std::optional<std::wstring> Text(const std::wstring& strKey) const = 0;
    /// A key's number; 0xFFFFFFFF where the key is missing or empty, or where that is its number.
    virtual DWORD Number(const std::wstring& strKey) const = 0;
};

/// The snapshot of a file, read as the module reads it: by the profile functions, key by key and anew each time.
class FileSnapshot : public SnapshotView
{
public:
    /// @param strFile full path.
    explicit FileSnapshot(std::wstring strFile);
    std::optional<std::wstring> Text(const std::wstring& strKey) const override;
    DWORD Number(const std::wstring& strKey) const override;

private:
    std::wstring m_strFile;
};

/// What a file will hold when a snapshot has been written to it.
class UnwrittenSnapshot : public SnapshotView
{
public:
    /// @param stuCaps borrowed for the call. A name that fills its entry has to be followed by a terminator somewhere:
    ///                like the module's writer this runs on into what lies behind it.
    explicit UnwrittenSnapshot(const VelUtility::PrinterCaps& stuCaps);
    std::optional<std::wstring> Text(const std::wstring& strKey) const override;
    DWORD Number(const std::wstring& strKey) const override;

private:
    std::map<std::wstring, std::wstring> m_texts;
    std::map<std::wstring, DWORD> m_numbers;
};

} // namespace VelHost
