#pragma once
/// The dump of the call stack behind a message.

#include "diag/Frame.h"

/// Writes the thread's frames as a table, the outermost first, if the category's switch outputNDCFullmessage is on.
/// Called under the level function's handler and guard: it may throw.
/// @param pCategory the category that took the message, never null.
/// @param iPriority the message's priority; the category tests it again.
void DumpCallStack(log4cpp::Category* pCategory, int iPriority);
