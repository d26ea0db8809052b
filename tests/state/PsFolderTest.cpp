#include "state/PsFolder.h"
#include "state/StoreTypes.h"
#include "tests/common/PrivateRegistry.h"

#include <catch2/catch_test_macros.hpp>

#include <array>

using namespace VelUtility;

namespace
{

constexpr wchar_t kUntouched[] = L"untouched";

/// A folder buffer that begins with a text by which a test sees that nothing was written.
struct FolderBuffer
{
    FolderBuffer() { wcscpy(sz, kUntouched); }
    wchar_t sz[kFolderUnits] = {};
};

} // namespace

TEST_CASE("each client folder is read from its own value", "[state][folders]")
{
    PrivateRegistry registry;
    constexpr std::array<const wchar_t*, 4> kValues = {L"InstallDir", L"DataDir", L"TempDir", L"LogDir"};
    for (DWORD dwId = 0; dwId < kValues.size(); ++dwId)
    {
        registry.SetClient(kValues[dwId], std::wstring(L"C:\\Client\\") + kValues[dwId]);
    }
    for (DWORD dwId = 0; dwId < kValues.size(); ++dwId)
    {
        CAPTURE(dwId);
        FolderBuffer folder;
        CHECK(GetClientFolder(dwId, folder.sz, 260) == 0);
        CHECK(std::wstring(folder.sz) == std::wstring(L"C:\\Client\\") + kValues[dwId]);
    }
}

TEST_CASE("each server folder is read from its own value", "[state][folders]")
{
    PrivateRegistry registry;
    constexpr std::array<const wchar_t*, 7> kValues = {L"InstallDir", L"DatabaseDir", L"TaskDir", L"LogDir",
                                                       L"BackupDir",  L"SGPlugin",    L"TempDir"};
    for (size_t i = 0; i < kValues.size(); ++i)
    {
        registry.SetServer(kValues[i], std::wstring(L"D:\\Server\\") + kValues[i]);
    }
    for (DWORD dwId = 4; dwId <= 10; ++dwId)
    {
        CAPTURE(dwId);
        FolderBuffer folder;
        CHECK(GetServerFolder(dwId, folder.sz, 260) == 0);
        CHECK(std::wstring(folder.sz) == std::wstring(L"D:\\Server\\") + kValues[dwId - 4]);
    }
}

TEST_CASE("a folder id of the other reader is refused with 16 and leaves the buffer alone", "[state][folders]")
{
    PrivateRegistry registry;
    registry.SetClient(L"InstallDir", L"C:\\Client");
    registry.SetServer(L"InstallDir", L"C:\\Server");
    FolderBuffer folder;
    CHECK(GetClientFolder(4, folder.sz, 260) == 16);
    CHECK(GetClientFolder(0xFFFFFFFF, folder.sz, 260) == 16);
    CHECK(GetServerFolder(3, folder.sz, 260) == 16);
    CHECK(GetServerFolder(11, folder.sz, 260) == 16);
    CHECK(std::wstring(folder.sz) == kUntouched);
}

TEST_CASE("a missing key gives 1 whatever the folder id", "[state][folders]")
{
    PrivateRegistry registry;
    FolderBuffer folder;
    for (const DWORD dwId : {0ul, 3ul, 4ul, 10ul, 99ul})
    {
        CAPTURE(dwId);
        CHECK(GetClientFolder(dwId, folder.sz, 260) == 1);
        CHECK(GetServerFolder(dwId, folder.sz, 260) == 1);
    }
    CHECK(std::wstring(folder.sz) == kUntouched);
}

TEST_CASE("a missing value gives 1", "[state][folders]")
{
    PrivateRegistry registry;
    registry.SetClient(L"InstallDir", L"C:\\Client");
    FolderBuffer folder;
    CHECK(GetClientFolder(kClientTempDir, folder.sz, 256) == 1);
    CHECK(std::wstring(folder.sz) == kUntouched);
}

TEST_CASE("a null folder buffer gives 16 before the key is looked for", "[state][folders]")
{
    PrivateRegistry registry;
    CHECK(GetClientFolder(kClientTempDir, nullptr, 260) == 16);
    CHECK(GetServerFolder(kServerTempDir, nullptr, 260) == 16);
}

TEST_CASE("a folder's length in bytes is compared with a size in characters", "[state][folders]")
{
    // Characters without the terminator; the bytes are twice one more.
    struct Row
    {
        size_t uiUnits;
        DWORD dwAt256;
        DWORD dwAt260;
    };
    for (const Row& row : {Row{127, 0, 0}, Row{128, 16, 0}, Row{129, 16, 0}, Row{130, 16, 16}})
    {
        CAPTURE(row.uiUnits);
        PrivateRegistry registry;
        const std::wstring strFolder = L"C:\\" + std::wstring(row.uiUnits - 3, L'f');
        registry.SetClient(L"DataDir", strFolder);
        FolderBuffer at256;
        FolderBuffer at260;
        CHECK(GetClientFolder(kClientDataDir, at256.sz, 256) == row.dwAt256);
        CHECK(GetClientFolder(kClientDataDir, at260.sz, 260) == row.dwAt260);
        CHECK(std::wstring(at256.sz) == (row.dwAt256 == 0 ? strFolder : kUntouched));
        CHECK(std::wstring(at260.sz) == (row.dwAt260 == 0 ? strFolder : kUntouched));
    }
}

TEST_CASE("a folder value of 520 bytes is read, one of more gives 1", "[state][folders]")
{
    PrivateRegistry registry;
    const std::wstring strLongest(259, L'f');
    registry.SetClient(L"DataDir", strLongest);
    wchar_t szLongest[260] = {};
    CHECK(GetClientFolder(kClientDataDir, szLongest, 520) == 0);
    CHECK(szLongest == strLongest);
    registry.SetClient(L"DataDir", std::wstring(260, L'f')); // 522 bytes with its terminator
    FolderBuffer folder;
    CHECK(GetClientFolder(kClientDataDir, folder.sz, 1000) == 1);
}

TEST_CASE("a folder value's type is not looked at", "[state][folders]")
{
    PrivateRegistry registry;
    registry.SetBytes(L"Software\\Vel-soft\\Client", L"DataDir", REG_BINARY, L"C:\\B", 10);
    FolderBuffer folder;
    CHECK(GetClientFolder(kClientDataDir, folder.sz, 260) == 0);
    CHECK(std::wstring(folder.sz) == L"C:\\B");
}

TEST_CASE("a folder value stored without a terminator still ends", "[state][folders]")
{
    PrivateRegistry registry;
    registry.SetBytes(L"Software\\Vel-soft\\Client", L"DataDir", REG_SZ, L"C:\\BXX", 8);
    FolderBuffer folder;
    wmemset(folder.sz, L'#', kFolderUnits);
    CHECK(GetClientFolder(kClientDataDir, folder.sz, 260) == 0);
    CHECK(std::wstring(folder.sz) == L"C:\\B");
}

TEST_CASE("folders are read anew on every call", "[state][folders]")
{
    PrivateRegistry registry;
    FolderBuffer folder;
    registry.SetClient(L"LogDir", L"C:\\One");
    CHECK(GetClientFolder(kClientLogDir, folder.sz, 260) == 0);
    registry.SetClient(L"LogDir", L"C:\\Two");
    CHECK(GetClientFolder(kClientLogDir, folder.sz, 260) == 0);
    CHECK(std::wstring(folder.sz) == L"C:\\Two");
}
