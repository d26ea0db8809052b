#pragma once
/// Memory of the C runtime, for what must see a failed allocation as a null pointer.

#include <cstdlib>
#include <memory>

/// Gives back what malloc or calloc gave.
struct FreeDeleter
{
    void operator()(void* p) const noexcept { std::free(p); }
};

/// Owner of memory from malloc or calloc, where the C runtime's failure is to be seen.
template <typename T>
using MallocPtr = std::unique_ptr<T, FreeDeleter>;

/// Zeroed memory for uiCount objects of a plain type; never of 0 bytes, since a null pointer means a failure.
/// @return the caller's to free, or null when there is no memory for it.
template <typename T>
T* AllocateZeroed(size_t uiCount = 1) noexcept
{
    return static_cast<T*>(std::calloc(uiCount != 0 ? uiCount : 1, sizeof(T)));
}

/// The same for an array that is owned by a scope.
template <typename T>
MallocPtr<T[]> AllocateArray(size_t uiCount) noexcept
{
    return MallocPtr<T[]>(AllocateZeroed<T>(uiCount));
}
