#pragma once
/// Quietly: the frame that every call of the log surface runs its work in.

#include "diag/ErrorStateGuard.h"

#include <cerrno>

/// Runs work so that it leaves the caller's error state alone and lets no exception out. An exception ends the work
/// without a word: logging must never be the reason for a failure. A hardware fault is no exception and passes through.
template <typename Work>
void Quietly(Work work) noexcept
{
    const ErrorStateGuard guard;
    try
    {
        work();
    }
    catch (...)
    {}
}
