#include "tools/velhost/host/Snapshot.h"

#include <variant>

namespace VelHost
{

/// Takes one capability into the record. The table's rows say which it is and where it goes.
class Snapshot::Taker
{
public:
    Taker(Snapshot& snapshot, const AskCaps& ask, WORD wCode) : m_snapshot(snapshot), m_ask(ask), m_wCode(wCode) {}

    void operator()(const VelUtility::CapNumber& number) const
    {
        m_snapshot.m_stuCaps.*number.pValue = QueryCaps(m_ask, FindCapsCode(m_wCode)).dwAnswer;
    }
    template <typename Entry>
    void operator()(const VelUtility::CapList<Entry>& list) const
    {
        TakeList(list);
    }
    template <typename Pair>
    void operator()(const VelUtility::CapPairs<Pair>& pairs) const
    {
        TakeList(pairs);
    }

private:
    template <typename List>
    void TakeList(const List& list) const
    {
        m_snapshot.TakeList(m_ask, m_wCode, m_snapshot.m_stuCaps.*list.pElements, m_snapshot.m_stuCaps.*list.pCount);
    }

    Snapshot& m_snapshot;
    const AskCaps& m_ask;
    WORD m_wCode;
};

Snapshot::Snapshot(const AskCaps& ask) : m_stuCaps()
{
    for (const VelUtility::CapRow& row : VelUtility::kCapRows)
    {
        std::visit(Taker(*this, ask, row.iDevCap), row.form);
    }
}

template <class Entry>
void Snapshot::TakeList(const AskCaps& ask, WORD wCode, const Entry*& pEntries, DWORD& dwCount)
{
    CapsAnswer answer = QueryCaps(ask, FindCapsCode(wCode));
    // A list that changed between the two questions, or that went wrong, is not taken.
    const bool bWhole = answer.strNote.empty() && answer.EntryCount() == answer.dwAnswer &&
                        answer.entries.size() == answer.dwAnswer * sizeof(Entry) && !answer.entries.empty();
    if (!bWhole)
    {
        pEntries = nullptr;
        dwCount = 0;
        return;
    }
    dwCount = answer.dwAnswer;
    // The bytes stay where they are when the vector that holds them is moved.
    m_lists.push_back(std::move(answer));
    pEntries = reinterpret_cast<const Entry*>(m_lists.back().entries.data());
}

} // namespace VelHost
