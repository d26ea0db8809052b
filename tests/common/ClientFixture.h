#pragma once
/// A scratch client: folders, a registry view that names them, and a user. Tests and the bench work with it; a part
/// that can't be made throws VelHost::CommandError, which ends a test with its text.

#include "tests/common/PrivateRegistry.h"
#include "tests/common/TempFolder.h"

#include <string>
#include <utility>
#include <vector>

/// Makes Windows name another user for this process. Wine takes the name from a variable of the process.
class UserName
{
public:
    /// @param pszName the name; null makes asking for it fail.
    explicit UserName(const wchar_t* pszName);
    ~UserName();
    UserName(const UserName&) = delete;
    UserName& operator=(const UserName&) = delete;

private:
    std::wstring m_strOld;
};

/// Sets up InstallDir, DataDir, TempDir and LogDir, all naming one scratch folder, for whoever is the user.
class ScratchClient
{
public:
    ScratchClient();

    /// Full path of Config.ini.
    std::wstring ConfigFile() const { return folder.File(L"Config.ini"); }
    /// Writes Config.ini with one section DeviceCapabilities, as UTF-16 so that every text survives in every code page.
    void WriteCaps(const std::vector<std::pair<std::wstring, std::wstring>>& keys) const;

    TempFolder folder;
    PrivateRegistry registry;
};

/// The client of one test. The user is SYSTEM, for whom the module does not look after the resident client.
class ClientFixture : public ScratchClient
{
public:
    UserName system{L"SYSTEM"};
};
