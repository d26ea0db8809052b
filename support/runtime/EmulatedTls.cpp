// Thread-local storage for the C++ run-time, in place of libgcc's.
//
// GCC for this target emulates thread_local through __emutls_get_address. libgcc's version takes a TLS index at the
// first use and never gives it back, so a module that links it statically loses one index at every load, and a host
// that loads and unloads it often runs out near the 1,088th load. This version takes one fiber-local index, which the
// system frees of each thread's block at the thread's end, and gives it back when the module is unloaded.
//
// The two functions' names, arguments and the layout of __emutls_object are GCC's ABI. Linked as an object, never
// through an archive: it must be there before the linker looks into libgcc. It may go when libgcc's version gives its
// index back at unload.

#include <windows.h>

#include <cstdint>
#include <cstring>

/// What the compiler emits for each thread_local variable.
struct __emutls_object
{
    std::uintptr_t size;  ///< bytes
    std::uintptr_t align; ///< bytes, a power of two
    union
    {
        std::uintptr_t offset; ///< the variable's number from 1 on, once one was given
        void* ptr;
    } loc;
    void* templ; ///< initial contents of size bytes, or null for zeroes
};

namespace
{

/// A thread's variables, by number.
struct ThreadBlock
{
    std::uintptr_t uiCount; ///< entries in ppVariables
    void* ppVariables[1];   ///< the address behind which the allocation is stored, or null
};

SRWLOCK s_lock = SRWLOCK_INIT;
std::uintptr_t s_uiVariables = 0; // numbers given so far
DWORD s_dwIndex = FLS_OUT_OF_INDEXES;

[[noreturn]] void OutOfMemory()
{
    // As libgcc does: there is no way to report it from here.
    __builtin_trap();
}

void* Allocate(std::uintptr_t cbSize)
{
    void* const pMemory = HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, cbSize);
    if (pMemory == nullptr)
    {
        OutOfMemory();
    }
    return pMemory;
}

/// Frees one thread's variables; called at the thread's end, and for every thread when the index is given back.
void WINAPI FreeBlock(void* pvBlock)
{
    ThreadBlock* const pBlock = static_cast<ThreadBlock*>(pvBlock);
    if (pBlock == nullptr)
    {
        return;
    }
    for (std::uintptr_t i = 0; i < pBlock->uiCount; ++i)
    {
        if (pBlock->ppVariables[i] != nullptr)
        {
            HeapFree(GetProcessHeap(), 0, static_cast<void**>(pBlock->ppVariables[i])[-1]);
        }
    }
    HeapFree(GetProcessHeap(), 0, pBlock);
}

/// Numbers the variable, and takes the index when there is none: at the first use of all, or at one so late that the
/// index has been given back already.
std::uintptr_t NumberOf(__emutls_object* pObject)
{
    std::uintptr_t uiNumber = __atomic_load_n(&pObject->loc.offset, __ATOMIC_ACQUIRE);
    if (uiNumber != 0 && __atomic_load_n(&s_dwIndex, __ATOMIC_ACQUIRE) != FLS_OUT_OF_INDEXES)
    {
        return uiNumber;
    }
    AcquireSRWLockExclusive(&s_lock);
    if (s_dwIndex == FLS_OUT_OF_INDEXES)
    {
        const DWORD dwIndex = FlsAlloc(FreeBlock);
        if (dwIndex == FLS_OUT_OF_INDEXES)
        {
            OutOfMemory();
        }
        __atomic_store_n(&s_dwIndex, dwIndex, __ATOMIC_RELEASE);
    }
    uiNumber = pObject->loc.offset;
    if (uiNumber == 0)
    {
        uiNumber = ++s_uiVariables;
        __atomic_store_n(&pObject->loc.offset, uiNumber, __ATOMIC_RELEASE);
    }
    ReleaseSRWLockExclusive(&s_lock);
    return uiNumber;
}

/// The thread's block, large enough for a variable's number.
ThreadBlock* BlockFor(std::uintptr_t uiNumber)
{
    ThreadBlock* const pOld = static_cast<ThreadBlock*>(FlsGetValue(s_dwIndex));
    if (pOld != nullptr && uiNumber <= pOld->uiCount)
    {
        return pOld;
    }
    const std::uintptr_t uiCount = uiNumber + 7; // a few more, so that a block seldom grows
    ThreadBlock* const pNew = static_cast<ThreadBlock*>(Allocate(sizeof(ThreadBlock) + uiCount * sizeof(void*)));
    pNew->uiCount = uiCount;
    if (pOld != nullptr)
    {
        std::memcpy(pNew->ppVariables, pOld->ppVariables, pOld->uiCount * sizeof(void*));
        HeapFree(GetProcessHeap(), 0, pOld);
    }
    if (!FlsSetValue(s_dwIndex, pNew))
    {
        OutOfMemory();
    }
    return pNew;
}

/// Makes the thread's own copy of a variable, aligned, with the allocation's address stored in front of it.
void* MakeVariable(const __emutls_object* pObject)
{
    const std::uintptr_t uiAlign = pObject->align < sizeof(void*) ? sizeof(void*) : pObject->align;
    void* const pMemory = Allocate(sizeof(void*) + uiAlign - 1 + pObject->size);
    const std::uintptr_t uiStart =
        (reinterpret_cast<std::uintptr_t>(pMemory) + sizeof(void*) + uiAlign - 1) & ~(uiAlign - 1);
    void** const pVariable = reinterpret_cast<void**>(uiStart);
    pVariable[-1] = pMemory;
    if (pObject->templ != nullptr)
    {
        std::memcpy(pVariable, pObject->templ, pObject->size);
    }
    return pVariable;
}

/// Gives the index back when the module is unloaded. The lowest priority that a program may use makes its destructor
/// the last one to run, behind everything that may still throw.
struct IndexReturner
{
    ~IndexReturner()
    {
        if (s_dwIndex != FLS_OUT_OF_INDEXES)
        {
            FlsFree(s_dwIndex);
            s_dwIndex = FLS_OUT_OF_INDEXES;
        }
    }
};
IndexReturner s_indexReturner __attribute__((init_priority(101)));

} // namespace

// The compiler has both functions built in, with void* for the object.

extern "C" void* __emutls_get_address(void* pvObject)
{
    __emutls_object* const pObject = static_cast<__emutls_object*>(pvObject);
    // The getters of Windows clear the last error; a variable's use must not show.
    const DWORD dwLastError = GetLastError();
    const std::uintptr_t uiNumber = NumberOf(pObject);
    void*& pVariable = BlockFor(uiNumber)->ppVariables[uiNumber - 1];
    if (pVariable == nullptr)
    {
        pVariable = MakeVariable(pObject);
    }
    SetLastError(dwLastError);
    return pVariable;
}

extern "C" void __emutls_register_common(void* pvObject, std::uintptr_t size, std::uintptr_t align, void* templ)
{
    __emutls_object* const pObject = static_cast<__emutls_object*>(pvObject);
    if (pObject->size < size)
    {
        pObject->size = size;
        pObject->templ = nullptr;
    }
    if (pObject->align < align)
    {
        pObject->align = align;
    }
    if (templ != nullptr && size == pObject->size)
    {
        pObject->templ = templ;
    }
}
