#pragma once
/// What the body of an entry point answers.

#include <windows.h>

/// The answer of both property sheets and of a record's request when something went wrong.
inline constexpr LONG kSheetFailed = -1;

/// The result of an entry point, and whether its result line is written to the log. Some ways out have none; each says
/// so where it is taken, through Silent.
template <typename Result>
struct EntryAnswer
{
    Result result;
    bool bLogged = true;

    /// An answer without a result line.
    static EntryAnswer Silent(Result result) { return {result, false}; }
};
