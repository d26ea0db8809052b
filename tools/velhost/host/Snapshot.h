#pragma once

#include "state/CapabilityTable.h"
#include "tools/velhost/host/CapsQuery.h"

#include <vector>

namespace VelHost
{

/// A printer's capabilities with the lists that they point to.
class Snapshot
{
public:
    /// Asks each capability that the snapshot keeps. A refused list has the count 0; a refused value is stored as
    /// 0xFFFFFFFF, which reads back as missing.
    explicit Snapshot(const AskCaps& ask);
    Snapshot(const Snapshot&) = delete;
    Snapshot& operator=(const Snapshot&) = delete;

    /// @return the record; its lists live as long as this object.
    const VelUtility::PrinterCaps& Caps() const noexcept { return m_stuCaps; }

private:
    class Taker;
    template <class Entry>
    void TakeList(const AskCaps& ask, WORD wCode, const Entry*& pEntries, DWORD& dwCount);

    VelUtility::PrinterCaps m_stuCaps;
    std::vector<CapsAnswer> m_lists; ///< the lists' bytes, which m_stuCaps points into
};

} // namespace VelHost
