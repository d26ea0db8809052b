#pragma once
/// The dump of the call stack behind a message.

#include "diag/Frame.h"

/// Writes the thread's frames as a table, the outermost first, if the switch outputNDCFullmessage of the frame's
/// category is on. Called under the level function's handler and guard: it may throw.
/// @param frame     the parts of the current frame.
/// @param iPriority the message's priority; the category tests it again.
void DumpCallStack(const FrameName& frame, int iPriority);
