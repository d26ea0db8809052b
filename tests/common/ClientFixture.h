#pragma once
/// A client of one test: folders and a registry view that names them.

#include "tests/common/PrivateRegistry.h"
#include "tests/common/TempFolder.h"
#include "tests/common/UserName.h"

#include <string>
#include <utility>
#include <vector>

/// Sets up InstallDir, DataDir, TempDir and LogDir, all naming one scratch folder. The user is SYSTEM, for whom the
/// module does not look after the resident client.
class ClientFixture
{
public:
    ClientFixture();

    /// Full path of Config.ini.
    std::wstring ConfigFile() const { return folder.File(L"Config.ini"); }
    /// Writes Config.ini with one section DeviceCapabilities, as UTF-16 so that every text survives in every code page.
    void WriteCaps(const std::vector<std::pair<std::wstring, std::wstring>>& keys) const;

    UserName system{L"SYSTEM"};
    TempFolder folder;
    PrivateRegistry registry;
};
