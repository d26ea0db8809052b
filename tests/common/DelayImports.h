#pragma once
/// The libraries that a loaded module takes at its first call to them.

#include <windows.h>

#include <cstring>
#include <delayimp.h>
#include <vector>

/// One such library as its module describes it.
struct DelayImport
{
    const char* pszLibrary;
    const IMAGE_THUNK_DATA* pNames; ///< the names of its functions, up to one that is 0
    void** ppfnSlots;               ///< their slots, in the same order
};

/// Finds the descriptions among a module's constants: GNU's linker keeps no directory of them. A description is known
/// by its form, and by a library's name where it says that one is.
inline std::vector<DelayImport> DelayImports(HMODULE hModule)
{
    BYTE* const pbyBase = reinterpret_cast<BYTE*>(hModule);
    const auto* const pHeaders = reinterpret_cast<const IMAGE_NT_HEADERS64*>(
        pbyBase + reinterpret_cast<const IMAGE_DOS_HEADER*>(pbyBase)->e_lfanew);
    const DWORD cbImage = pHeaders->OptionalHeader.SizeOfImage;
    const auto isDescription = [&](const ImgDelayDescr& description) {
        for (const RVA rva : {description.rvaDLLName, description.rvaHmod, description.rvaIAT, description.rvaINT})
        {
            if (rva == 0 || rva >= cbImage)
            {
                return false;
            }
        }
        const char* const pszName = reinterpret_cast<const char*>(pbyBase + description.rvaDLLName);
        const size_t uiLength = strnlen(pszName, cbImage - description.rvaDLLName);
        return description.grAttrs == dlattrRva && uiLength > 4 && _stricmp(pszName + uiLength - 4, ".dll") == 0;
    };
    std::vector<DelayImport> imports;
    const IMAGE_SECTION_HEADER* pSection = IMAGE_FIRST_SECTION(pHeaders);
    for (WORD i = 0; i < pHeaders->FileHeader.NumberOfSections; ++i, ++pSection)
    {
        if (std::memcmp(pSection->Name, ".rdata", sizeof(".rdata")) != 0)
        {
            continue;
        }
        const BYTE* const pbyEnd = pbyBase + pSection->VirtualAddress + pSection->Misc.VirtualSize;
        for (const BYTE* p = pbyBase + pSection->VirtualAddress; p + sizeof(ImgDelayDescr) <= pbyEnd; p += 4)
        {
            const auto& description = *reinterpret_cast<const ImgDelayDescr*>(p);
            if (isDescription(description))
            {
                imports.push_back({reinterpret_cast<const char*>(pbyBase + description.rvaDLLName),
                                   reinterpret_cast<const IMAGE_THUNK_DATA*>(pbyBase + description.rvaINT),
                                   reinterpret_cast<void**>(pbyBase + description.rvaIAT)});
            }
        }
    }
    return imports;
}
