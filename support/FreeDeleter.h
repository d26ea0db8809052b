#pragma once

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
