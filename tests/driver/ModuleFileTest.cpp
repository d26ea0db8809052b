// The built file: what it exports, imports and carries.

#include "tests/common/BuiltModule.h"
#include "tests/common/DelayImports.h"
#include "tests/common/TempFolder.h"

#include <catch2/catch_test_macros.hpp>

#include <algorithm>
#include <map>
#include <set>

namespace
{

/// The DLL's headers and directories, read from the file's bytes.
class PeFile
{
public:
    explicit PeFile(const std::wstring& strPath) : m_strBytes(ReadFileBytes(strPath))
    {
        REQUIRE(m_strBytes.size() > 1024);
        REQUIRE(m_strBytes.substr(0, 2) == "MZ");
    }
    const IMAGE_NT_HEADERS64& Headers() const { return *At<IMAGE_NT_HEADERS64>(At<IMAGE_DOS_HEADER>(0)->e_lfanew); }
    /// Translates an address of the loaded image to its place in the file.
    template <typename T>
    const T* Rva(DWORD dwRva) const
    {
        const IMAGE_SECTION_HEADER* pSection = IMAGE_FIRST_SECTION(&Headers());
        for (WORD i = 0; i < Headers().FileHeader.NumberOfSections; ++i, ++pSection)
        {
            if (dwRva >= pSection->VirtualAddress && dwRva < pSection->VirtualAddress + pSection->SizeOfRawData)
            {
                return At<T>(dwRva - pSection->VirtualAddress + pSection->PointerToRawData);
            }
        }
        FAIL("address outside every section");
        return nullptr;
    }
    const IMAGE_DATA_DIRECTORY& Directory(size_t uiIndex) const
    {
        return Headers().OptionalHeader.DataDirectory[uiIndex];
    }
    std::set<std::string> ImportedDlls() const
    {
        std::set<std::string> dlls;
        for (const auto* p = Rva<IMAGE_IMPORT_DESCRIPTOR>(Directory(IMAGE_DIRECTORY_ENTRY_IMPORT).VirtualAddress);
             p->Name != 0; ++p)
        {
            std::string strName = Rva<char>(p->Name);
            std::transform(strName.begin(), strName.end(), strName.begin(), ::tolower);
            dlls.insert(strName);
        }
        return dlls;
    }
    /// Ordinal by exported name.
    std::map<std::string, DWORD> Exports() const
    {
        const auto* const pExports =
            Rva<IMAGE_EXPORT_DIRECTORY>(Directory(IMAGE_DIRECTORY_ENTRY_EXPORT).VirtualAddress);
        const DWORD* const pdwNames = Rva<DWORD>(pExports->AddressOfNames);
        const WORD* const pwOrdinals = Rva<WORD>(pExports->AddressOfNameOrdinals);
        std::map<std::string, DWORD> exports;
        for (DWORD i = 0; i < pExports->NumberOfNames; ++i)
        {
            exports[Rva<char>(pdwNames[i])] = pExports->Base + pwOrdinals[i];
        }
        return exports;
    }
    const std::string& Bytes() const { return m_strBytes; }

private:
    template <typename T>
    const T* At(size_t uiOffset) const
    {
        REQUIRE(uiOffset + sizeof(T) <= m_strBytes.size());
        return reinterpret_cast<const T*>(m_strBytes.data() + uiOffset);
    }
    std::string m_strBytes;
};

} // namespace

TEST_CASE("the module exports its eight entry points by plain name", "[driver][file]")
{
    const std::map<std::string, DWORD> exports = PeFile(ModulePath()).Exports();
    std::set<std::string> names;
    for (const auto& entry : exports)
    {
        names.insert(entry.first);
    }
    CHECK(names == std::set<std::string>{"DllMain", "DevQueryPrintEx", "DrvConvertDevMode", "DrvDeviceCapabilities",
                                         "DrvDevicePropertySheets", "DrvDocumentPropertySheets", "DrvPrinterEvent",
                                         "DrvSplDeviceCaps"});
    CHECK(exports.at("DrvSplDeviceCaps") == 254);
}

TEST_CASE("the spooler finds DrvSplDeviceCaps at ordinal 254", "[driver][file]")
{
    const BuiltModule module;
    REQUIRE(module.handle != nullptr);
    const FARPROC pfnByOrdinal = GetProcAddress(module.handle, MAKEINTRESOURCEA(254));
    CHECK(pfnByOrdinal != nullptr);
    CHECK(pfnByOrdinal == GetProcAddress(module.handle, "DrvSplDeviceCaps"));
}

TEST_CASE("the module's import table names three libraries, and the others come with their first call",
          "[driver][file][delay]")
{
    // Whatever else stood here would come along at each load: cmake/DelayLoad.cmake names what is taken later.
    CHECK(PeFile(ModulePath()).ImportedDlls() == std::set<std::string>{"advapi32.dll", "kernel32.dll", "msvcrt.dll"});
    const BuiltModule module;
    std::set<std::string> delayed;
    for (const DelayImport& import : DelayImports(module.handle))
    {
        delayed.insert(import.pszLibrary);
    }
    CHECK(delayed == std::set<std::string>{"comctl32.dll", "gdi32.dll", "shell32.dll", "user32.dll", "ws2_32.dll"});
}

TEST_CASE("the module's code can't be written and its data can't be executed", "[driver][file]")
{
    const PeFile file(ModulePath());
    const IMAGE_SECTION_HEADER* pSection = IMAGE_FIRST_SECTION(&file.Headers());
    for (WORD i = 0; i < file.Headers().FileHeader.NumberOfSections; ++i, ++pSection)
    {
        const DWORD dwBoth = IMAGE_SCN_MEM_EXECUTE | IMAGE_SCN_MEM_WRITE;
        CAPTURE(i);
        CHECK((pSection->Characteristics & dwBoth) != dwBoth);
    }
}

TEST_CASE("the module may be loaded anywhere and its data is never executed", "[driver][file]")
{
    const PeFile file(ModulePath());
    const WORD wFlags = file.Headers().OptionalHeader.DllCharacteristics;
    CHECK((wFlags & IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE) != 0);
    CHECK((wFlags & IMAGE_DLLCHARACTERISTICS_NX_COMPAT) != 0);
    CHECK((wFlags & 0x0020) != 0); // high-entropy addresses
    CHECK((file.Headers().FileHeader.Characteristics & IMAGE_FILE_RELOCS_STRIPPED) == 0);
    CHECK(file.Directory(IMAGE_DIRECTORY_ENTRY_BASERELOC).Size > 0);
    CHECK(file.Headers().FileHeader.Machine == IMAGE_FILE_MACHINE_AMD64);
}

#ifdef NDEBUG
// Of the module that is shipped; the checked one beside its own test program keeps its symbols.
TEST_CASE("the module carries nothing but itself, and its debug symbols lie beside it", "[driver][file][once]")
{
    const PeFile file(ModulePath());
    // What every process that prints maps. The limit is there for what gets in by mistake: symbols are 10 MB and more,
    // a further library of the compiler or a picture that was not packed 100 KB and more. The module's own code has
    // room to grow below it, in the pages of 4,096 bytes by which the file grows; who needs more than that raises the
    // limit.
    CHECK(file.Bytes().size() <= 384 * 4096);
    CHECK(file.Headers().FileHeader.NumberOfSymbols == 0);
    const std::string strDebug = ReadFileBytes(ModulePath() + L".debug");
    CHECK(strDebug.size() > file.Bytes().size());
    CHECK(file.Bytes().find("VelUI.dll.debug") != std::string::npos); // the link to it
}
#endif

TEST_CASE("the module carries a version resource", "[driver][file]")
{
    DWORD dwIgnored = 0;
    const DWORD cbInfo = GetFileVersionInfoSizeW(ModulePath().c_str(), &dwIgnored);
    REQUIRE(cbInfo > 0);
    std::string strInfo(cbInfo, '\0');
    REQUIRE(GetFileVersionInfoW(ModulePath().c_str(), 0, cbInfo, strInfo.data()));
    VS_FIXEDFILEINFO* pFixed = nullptr;
    UINT cbFixed = 0;
    REQUIRE(VerQueryValueW(strInfo.data(), L"\\", reinterpret_cast<void**>(&pFixed), &cbFixed));
    CHECK(pFixed->dwFileVersionMS >= 0x00010000);
    CHECK(pFixed->dwFileType == VFT_DRV);
    CHECK(pFixed->dwFileSubtype == VFT2_DRV_PRINTER);
    wchar_t* pszName = nullptr;
    UINT cchName = 0;
    REQUIRE(VerQueryValueW(strInfo.data(), L"\\StringFileInfo\\040904b0\\OriginalFilename",
                           reinterpret_cast<void**>(&pszName), &cchName));
    CHECK(std::wstring(pszName) == L"VelUI.dll");
}
