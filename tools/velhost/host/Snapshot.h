#pragma once

#include "state/CapabilityTable.h"
#include "tools/velhost/host/CapsQuery.h"

#include <string>
#include <vector>

namespace VelHost
{

/// @return a name as it comes back from a profile file: up to a line end, without blanks around it, without one pair of
/// quotation marks.
std::wstring ReadBack(std::wstring strName);

/// A name that was written in another form.
struct NameFix
{
    std::wstring strKey; ///< in section DeviceCapabilities
    std::wstring strOld;
    std::wstring strNew;
};

/// @return a name as it is compared with others of its list: whatever the case of the letters.
std::wstring FoldedName(std::wstring strName);

/// A printer's capabilities with the lists that they point to.
class Snapshot
{
public:
    /// Asks each capability that the snapshot keeps. A refused list has the count 0; a refused value is stored as
    /// 0xFFFFFFFF, which reads back as missing.
    explicit Snapshot(const AskCaps& ask);
    Snapshot(const Snapshot&) = delete;
    Snapshot& operator=(const Snapshot&) = delete;

    /// Shortens the names of lengths that make their list's query fail, and those that fill their entry, to the longest
    /// that passes. A name that would then be another's of its list, whatever the case of the letters, ends in "~2" or
    /// a higher number. (A longer form would lose no letter, but the terminator.)
    /// @return what was changed.
    std::vector<NameFix> FixNames();

    /// @return the record; its lists live as long as this object. Behind each stands a terminator, for a last name that
    /// fills its entry.
    const VelUtility::PrinterCaps& Caps() const noexcept { return m_stuCaps; }

private:
    class Taker;
    template <class Entry>
    void TakeList(const AskCaps& ask, WORD wCode, const Entry*& pEntries, DWORD& dwCount);
    wchar_t* NamesOf(WORD wCode);

    VelUtility::PrinterCaps m_stuCaps;
    std::vector<CapsAnswer> m_lists; ///< the lists' bytes, which m_stuCaps points into
};

} // namespace VelHost
