#pragma once
/// The module, loaded in this process as a host loads it.

#include "support/module/PrinterInterface.h"

#include <string>

namespace VelHost
{

/// The module's place: the option's text, or VelUI.dll beside velhost.exe when it is empty. Throws CommandError when
/// there is no such file.
/// @param strOption UTF-8.
std::wstring ModulePath(const std::string& strOption);

/// A printer interface module, loaded in this process for the life of the object. Throws CommandError when it can't be
/// loaded.
class HostModule
{
public:
    enum class Purpose
    {
        Call,    ///< started as a host starts it
        Examine, ///< exports only: no code of it runs
    };

    explicit HostModule(const std::wstring& strPath, Purpose purpose = Purpose::Call);
    ~HostModule();
    HostModule(const HostModule&) = delete;
    HostModule& operator=(const HostModule&) = delete;

    HMODULE Handle() const noexcept { return m_hModule; }
    /// @return the export, or null.
    FARPROC Find(const char* pszName) const noexcept;
    /// @return the export with an ordinal, or null.
    FARPROC FindOrdinal(WORD wOrdinal) const noexcept;

    /// The export as a function; throws CommandError when it is missing.
    /// @tparam Function the entry point's type, as in decltype(DrvDeviceCapabilities).
    template <class Function>
    Function* Get(const char* pszName) const
    {
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(Require(pszName)));
    }

private:
    FARPROC Require(const char* pszName) const;

    std::wstring m_strPath;
    HMODULE m_hModule;
};

} // namespace VelHost
