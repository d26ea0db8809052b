#include "tests/common/ImportHook.h"

#include "tests/common/DelayImports.h"

#include <catch2/catch_test_macros.hpp>

#include <cstring>

namespace
{

/// The place of a name in a list of imported names, or -1.
int PlaceOf(const IMAGE_THUNK_DATA64* pNames, const BYTE* pbyBase, const char* pszFunction)
{
    for (int i = 0; pNames[i].u1.AddressOfData != 0; ++i)
    {
        if (!IMAGE_SNAP_BY_ORDINAL64(pNames[i].u1.Ordinal) &&
            std::strcmp(reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(pbyBase + pNames[i].u1.AddressOfData)->Name,
                        pszFunction) == 0)
        {
            return i;
        }
    }
    return -1;
}

/// An imported function's slot, and the function itself.
struct Slot
{
    void** ppfn = nullptr; ///< null when it isn't imported
    void* pfnReal = nullptr;
};

Slot FindAmongImports(HMODULE hModule, const char* pszFunction)
{
    BYTE* const pbyBase = reinterpret_cast<BYTE*>(hModule);
    const auto* const pDos = reinterpret_cast<const IMAGE_DOS_HEADER*>(pbyBase);
    const auto* const pHeaders = reinterpret_cast<const IMAGE_NT_HEADERS64*>(pbyBase + pDos->e_lfanew);
    const DWORD dwImports = pHeaders->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    for (auto* p = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(pbyBase + dwImports); p->Name != 0; ++p)
    {
        const auto* const pNames = reinterpret_cast<const IMAGE_THUNK_DATA64*>(pbyBase + p->OriginalFirstThunk);
        const int iPlace = PlaceOf(pNames, pbyBase, pszFunction);
        if (iPlace >= 0)
        {
            void** const ppfn = reinterpret_cast<void**>(pbyBase + p->FirstThunk) + iPlace;
            return {ppfn, *ppfn};
        }
    }
    return {};
}

/// A slot that was not called yet leads to the module's helper, which would put the real function there, over the hook.
/// So the function is looked up here; the test program has the library.
Slot FindAmongDelayImports(HMODULE hModule, const char* pszFunction)
{
    for (const DelayImport& import : DelayImports(hModule))
    {
        const int iPlace = PlaceOf(import.pNames, reinterpret_cast<const BYTE*>(hModule), pszFunction);
        if (iPlace >= 0)
        {
            const HMODULE hLibrary = GetModuleHandleA(import.pszLibrary);
            return {import.ppfnSlots + iPlace, reinterpret_cast<void*>(GetProcAddress(hLibrary, pszFunction))};
        }
    }
    return {};
}

} // namespace

void ImportHook::Install(HMODULE hModule, const char* pszFunction, void* pfnReplacement)
{
    INFO("imported function " << pszFunction);
    const HMODULE hHooked = hModule != nullptr ? hModule : GetModuleHandleW(nullptr);
    Slot slot = FindAmongImports(hHooked, pszFunction);
    if (slot.ppfn == nullptr)
    {
        slot = FindAmongDelayImports(hHooked, pszFunction);
    }
    REQUIRE(slot.ppfn != nullptr);
    REQUIRE(slot.pfnReal != nullptr);
    m_ppfnSlot = slot.ppfn;
    m_pfnOriginal = slot.pfnReal;
    m_pfnBefore = *m_ppfnSlot;
    Write(pfnReplacement);
}

ImportHook::~ImportHook()
{
    if (m_ppfnSlot != nullptr)
    {
        Write(m_pfnBefore);
    }
}

void ImportHook::Write(void* pfn)
{
    DWORD dwOld = 0;
    VirtualProtect(m_ppfnSlot, sizeof(void*), PAGE_READWRITE, &dwOld);
    *m_ppfnSlot = pfn;
    VirtualProtect(m_ppfnSlot, sizeof(void*), dwOld, &dwOld);
}
