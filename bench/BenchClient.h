#pragma once
/// The client that is measured with: folders, a registry view that names them, and a resident client that runs.

#include "support/module/PrinterInterface.h"

#include <windows.h>

#include <filesystem>
#include <string>

/// Full path of a file beside the program.
std::wstring Beside(const wchar_t* pszName);

/// A scratch folder with the client's files, and a private view in the place of HKEY_LOCAL_MACHINE. Both go with the
/// object.
class BenchClient
{
public:
    BenchClient();
    ~BenchClient();
    BenchClient(const BenchClient&) = delete;
    BenchClient& operator=(const BenchClient&) = delete;

    /// Full path of a file in the scratch folder, which is InstallDir, DataDir and TempDir in one.
    std::wstring File(const std::wstring& strName) const { return (m_folder / strName).wstring(); }
    /// The path that the resident client has in the view's Program Files folder.
    std::wstring ResidentPath() const { return File(L"Program Files\\Vel-soft\\Client\\VelprintD.exe"); }

    /// Puts the sample printer's snapshot in the place of Config.ini.
    void UseSample() const;
    /// Puts a snapshot with so many papers there.
    void UsePapers(int iPapers) const;
    /// Stores a record as the user's DevMode.dat, or takes the file away.
    void StoreRecord(bool bStored) const;

private:
    void SetText(const wchar_t* pszKey, const wchar_t* pszValue, const std::wstring& strText) const;

    std::filesystem::path m_folder;
    HKEY m_hRoot = nullptr;
};

/// A process that stands in for the resident client and ends with the object. From the second check on the module knows
/// it, which is the steady state.
class ResidentStandIn
{
public:
    explicit ResidentStandIn(const BenchClient& client);
    ~ResidentStandIn();
    ResidentStandIn(const ResidentStandIn&) = delete;
    ResidentStandIn& operator=(const ResidentStandIn&) = delete;

    DWORD Pid() const { return m_process.dwProcessId; }

private:
    PROCESS_INFORMATION m_process = {};
};

/// Another user for the length of a scope.
class UserScope
{
public:
    explicit UserScope(const wchar_t* pszUser);
    ~UserScope();
    UserScope(const UserScope&) = delete;
    UserScope& operator=(const UserScope&) = delete;

private:
    wchar_t m_szBefore[257] = {};
};

/// The built VelUI.dll. Its functions are null when it can't be loaded.
class BenchModule
{
public:
    BenchModule();
    ~BenchModule();
    BenchModule(const BenchModule&) = delete;
    BenchModule& operator=(const BenchModule&) = delete;

    HMODULE handle;
    decltype(&DrvDeviceCapabilities) pfnCaps;
    decltype(&DrvConvertDevMode) pfnConvert;
    decltype(&DrvDocumentPropertySheets) pfnDocument;
};
