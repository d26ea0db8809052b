#include "settings/ConvertDevmode.h"

#include "diag/LogSite.h"

#include <algorithm>
#include <cstring>

int ConvertDevmode(DEVMODEW* pstuIn, DEVMODEW* pstuOut)
{
    TRACE_FUNCTION("ConvertDevmode");
    if (IsFatalEnabled())
    {
        TRACE_ARGUMENT(pstuIn);
        TRACE_ARGUMENT(pstuOut);
    }

    if (pstuIn == nullptr || pstuOut == nullptr)
    {
        return 1;
    }

    const WORD wSpecVersion = pstuOut->dmSpecVersion;
    const WORD wDriverVersion = pstuOut->dmDriverVersion;
    const WORD wSize = pstuOut->dmSize;
    const WORD wDriverExtra = pstuOut->dmDriverExtra;

    // The input's words are read before the copy, which may overwrite them when both pointers name one record.
    const WORD wInSize = pstuIn->dmSize;
    const WORD wInDriverExtra = pstuIn->dmDriverExtra;

    const size_t cbPublic = std::min(wSize, wInSize);
    std::memmove(pstuOut, pstuIn, cbPublic);

    // The output keeps its own header. Field by field, since a declared size may end within the header.
    pstuOut->dmSpecVersion = wSpecVersion;
    pstuOut->dmDriverVersion = wDriverVersion;
    pstuOut->dmSize = wSize;
    pstuOut->dmDriverExtra = wDriverExtra;

    // Tails are matched by position from their own start, whatever the public sizes are.
    const size_t cbTail = std::min(wDriverExtra, wInDriverExtra);
    std::memmove(reinterpret_cast<BYTE*>(pstuOut) + wSize, reinterpret_cast<BYTE*>(pstuIn) + wInSize, cbTail);

    return cbPublic + cbTail > 0 ? 0 : 1;
}
