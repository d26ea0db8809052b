#pragma once
/// What a module keeps for itself, counted at its own import table.

#include "tests/common/ImportHook.h"

#include <windows.h>

#include <deque>
#include <unordered_map>

/// Watches a loaded module for the length of a scope: which blocks of memory it takes and gives back, which pictures it
/// loads and deletes. What the platform and other modules do doesn't count, so that the numbers are exact on every
/// version of the platform. A block that was taken before the scope, or by another module, and is freed in it doesn't
/// count either. One at a time; any thread may call the module meanwhile.
class ModuleLedger
{
public:
    explicit ModuleLedger(HMODULE hModule);
    ~ModuleLedger();
    ModuleLedger(const ModuleLedger&) = delete;
    ModuleLedger& operator=(const ModuleLedger&) = delete;

    /// Blocks of memory that the module has taken in the scope and not given back.
    size_t Blocks() const;
    /// Their bytes, as the module asked for them.
    size_t Bytes() const;
    /// Pictures of its own (not shared ones) that it has loaded.
    size_t PicturesLoaded() const { return m_uiPicturesLoaded; }
    /// Bitmaps that it has deleted.
    size_t BitmapsDeleted() const { return m_uiBitmapsDeleted; }

private:
    void Took(void* pv, size_t cbSize);
    void Gave(void* pv);

    static void* __cdecl Malloc(size_t cbSize);
    static void* __cdecl Calloc(size_t uiCount, size_t cbEach);
    static void* __cdecl Realloc(void* pv, size_t cbSize);
    static void __cdecl Free(void* pv);
    static void* WINAPI TakeFromHeap(HANDLE hHeap, DWORD dwFlags, SIZE_T cbSize);
    static BOOL WINAPI GiveToHeap(HANDLE hHeap, DWORD dwFlags, void* pv);
    static HANDLE WINAPI LoadPicture(HINSTANCE hModule, LPCWSTR pszName, UINT uiType, int iX, int iY, UINT uiFlags);
    static BOOL WINAPI DeletePicture(HGDIOBJ hObject);

    static ModuleLedger* s_pLedger;
    std::deque<ImportHook> m_hooks;
    mutable CRITICAL_SECTION m_lock;
    std::unordered_map<void*, size_t> m_blocks; // bytes of each
    size_t m_cbTaken = 0;
    size_t m_uiPicturesLoaded = 0;
    size_t m_uiBitmapsDeleted = 0;
};
