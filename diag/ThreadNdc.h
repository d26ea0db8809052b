#pragma once

/// Frees the calling thread's NDC with all that it holds; the next frame on the thread gets a new one. log4cpp keeps a
/// thread's NDC until the process ends, and offers nothing to free it before. May throw std::bad_alloc.
void FreeThreadNdc();
