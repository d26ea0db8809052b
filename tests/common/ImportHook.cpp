#include "tests/common/ImportHook.h"

#include <catch2/catch_test_macros.hpp>

#include <cstring>

namespace
{

/// The slot of an imported function in a loaded module, or null.
void** FindSlot(HMODULE hModule, const char* pszFunction)
{
    BYTE* const pbyBase = reinterpret_cast<BYTE*>(hModule);
    const auto* const pDos = reinterpret_cast<const IMAGE_DOS_HEADER*>(pbyBase);
    const auto* const pHeaders = reinterpret_cast<const IMAGE_NT_HEADERS64*>(pbyBase + pDos->e_lfanew);
    const DWORD dwImports = pHeaders->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    for (auto* p = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(pbyBase + dwImports); p->Name != 0; ++p)
    {
        const auto* pName = reinterpret_cast<const IMAGE_THUNK_DATA64*>(pbyBase + p->OriginalFirstThunk);
        auto* pSlot = reinterpret_cast<IMAGE_THUNK_DATA64*>(pbyBase + p->FirstThunk);
        for (; pName->u1.AddressOfData != 0; ++pName, ++pSlot)
        {
            if (!IMAGE_SNAP_BY_ORDINAL64(pName->u1.Ordinal) &&
                std::strcmp(reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(pbyBase + pName->u1.AddressOfData)->Name,
                            pszFunction) == 0)
            {
                return reinterpret_cast<void**>(&pSlot->u1.Function);
            }
        }
    }
    return nullptr;
}

} // namespace

void ImportHook::Install(HMODULE hModule, const char* pszFunction, void* pfnReplacement)
{
    INFO("imported function " << pszFunction);
    m_ppfnSlot = FindSlot(hModule != nullptr ? hModule : GetModuleHandleW(nullptr), pszFunction);
    REQUIRE(m_ppfnSlot != nullptr);
    m_pfnOriginal = *m_ppfnSlot;
    Write(pfnReplacement);
}

ImportHook::~ImportHook()
{
    if (m_ppfnSlot != nullptr)
    {
        Write(m_pfnOriginal);
    }
}

void ImportHook::Write(void* pfn)
{
    DWORD dwOld = 0;
    VirtualProtect(m_ppfnSlot, sizeof(void*), PAGE_READWRITE, &dwOld);
    *m_ppfnSlot = pfn;
    VirtualProtect(m_ppfnSlot, sizeof(void*), dwOld, &dwOld);
}
