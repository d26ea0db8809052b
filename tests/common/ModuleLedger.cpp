#include "tests/common/ModuleLedger.h"

#include <catch2/catch_test_macros.hpp>

#include <cstdlib>

namespace
{

/// Holds a critical section.
class Turn
{
public:
    explicit Turn(CRITICAL_SECTION& lock) : m_lock(lock) { EnterCriticalSection(&m_lock); }
    ~Turn() { LeaveCriticalSection(&m_lock); }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

private:
    CRITICAL_SECTION& m_lock;
};

} // namespace

ModuleLedger* ModuleLedger::s_pLedger = nullptr;

ModuleLedger::ModuleLedger(HMODULE hModule)
{
    REQUIRE(s_pLedger == nullptr);
    REQUIRE(hModule != nullptr); // the test program's own memory would count
    InitializeCriticalSection(&m_lock);
    s_pLedger = this;
    m_hooks.emplace_back(hModule, "malloc", &Malloc);
    m_hooks.emplace_back(hModule, "calloc", &Calloc);
    m_hooks.emplace_back(hModule, "realloc", &Realloc);
    m_hooks.emplace_back(hModule, "free", &Free);
    m_hooks.emplace_back(hModule, "HeapAlloc", &TakeFromHeap);
    m_hooks.emplace_back(hModule, "HeapFree", &GiveToHeap);
    m_hooks.emplace_back(hModule, "LoadImageW", &LoadPicture);
    m_hooks.emplace_back(hModule, "DeleteObject", &DeletePicture);
}

ModuleLedger::~ModuleLedger()
{
    m_hooks.clear();
    s_pLedger = nullptr;
    DeleteCriticalSection(&m_lock);
}

size_t ModuleLedger::Blocks() const
{
    const Turn turn(m_lock);
    return m_blocks.size();
}

size_t ModuleLedger::Bytes() const
{
    const Turn turn(m_lock);
    return m_cbTaken;
}

void ModuleLedger::Took(void* pv, size_t cbSize)
{
    if (pv == nullptr)
    {
        return;
    }
    const Turn turn(m_lock);
    m_blocks[pv] = cbSize;
    m_cbTaken += cbSize;
}

void ModuleLedger::Gave(void* pv)
{
    const Turn turn(m_lock);
    const auto block = m_blocks.find(pv);
    if (block != m_blocks.end())
    {
        m_cbTaken -= block->second;
        m_blocks.erase(block);
    }
}

// A block is struck off before it is freed: another thread may get the same address the moment after.

void* __cdecl ModuleLedger::Malloc(size_t cbSize)
{
    void* const pv = std::malloc(cbSize);
    s_pLedger->Took(pv, cbSize);
    return pv;
}

void* __cdecl ModuleLedger::Calloc(size_t uiCount, size_t cbEach)
{
    void* const pv = std::calloc(uiCount, cbEach);
    s_pLedger->Took(pv, uiCount * cbEach);
    return pv;
}

void* __cdecl ModuleLedger::Realloc(void* pv, size_t cbSize)
{
    // Struck off first and under the lock; written down again where there was no memory for the new size.
    const Turn turn(s_pLedger->m_lock);
    const auto block = s_pLedger->m_blocks.find(pv);
    void* const pvOld = pv;
    const bool bKnown = block != s_pLedger->m_blocks.end();
    const size_t cbOld = bKnown ? block->second : 0;
    s_pLedger->Gave(pv);
    void* const pvNew = std::realloc(pv, cbSize);
    if (pvNew != nullptr)
    {
        s_pLedger->Took(pvNew, cbSize);
    }
    else if (bKnown && cbSize != 0)
    {
        s_pLedger->Took(pvOld, cbOld);
    }
    return pvNew;
}

void __cdecl ModuleLedger::Free(void* pv)
{
    s_pLedger->Gave(pv);
    std::free(pv);
}

void* WINAPI ModuleLedger::TakeFromHeap(HANDLE hHeap, DWORD dwFlags, SIZE_T cbSize)
{
    void* const pv = HeapAlloc(hHeap, dwFlags, cbSize);
    s_pLedger->Took(pv, cbSize);
    return pv;
}

BOOL WINAPI ModuleLedger::GiveToHeap(HANDLE hHeap, DWORD dwFlags, void* pv)
{
    s_pLedger->Gave(pv);
    return HeapFree(hHeap, dwFlags, pv);
}

HANDLE WINAPI ModuleLedger::LoadPicture(HINSTANCE hModule, LPCWSTR pszName, UINT uiType, int iX, int iY, UINT uiFlags)
{
    const HANDLE hPicture = LoadImageW(hModule, pszName, uiType, iX, iY, uiFlags);
    if (hPicture != nullptr && (uiFlags & LR_SHARED) == 0)
    {
        const Turn turn(s_pLedger->m_lock);
        ++s_pLedger->m_uiPicturesLoaded;
    }
    return hPicture;
}

BOOL WINAPI ModuleLedger::DeletePicture(HGDIOBJ hObject)
{
    const bool bBitmap = GetObjectType(hObject) == OBJ_BITMAP;
    const BOOL bDeleted = DeleteObject(hObject);
    if (bBitmap && bDeleted)
    {
        const Turn turn(s_pLedger->m_lock);
        ++s_pLedger->m_uiBitmapsDeleted;
    }
    return bDeleted;
}
