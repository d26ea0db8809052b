#include "tools/velhost/host/Snapshot.h"

#include "tools/velhost/report/Encoding.h"

#include <algorithm>
#include <set>
#include <variant>

namespace VelHost
{
namespace
{

/// The beginning of a name, of so many wide characters at most; no pair of two is cut, and no blank stands at the end.
std::wstring Beginning(std::wstring strName, size_t uiMost)
{
    if (strName.size() > uiMost)
    {
        strName.resize(uiMost != 0 && IS_HIGH_SURROGATE(strName[uiMost - 1]) ? uiMost - 1 : uiMost);
    }
    strName.resize(strName.find_last_not_of(L' ') + 1);
    return strName;
}

/// The longest beginning that is nobody else's name.
std::wstring FixedName(const std::wstring& strName, size_t uiMost, const std::set<std::wstring>& taken)
{
    std::wstring strFixed = Beginning(strName, uiMost);
    for (int i = 2; taken.count(FoldedName(strFixed)) != 0; ++i)
    {
        const std::wstring strMark = L"~" + std::to_wstring(i);
        strFixed = Beginning(strName, uiMost - strMark.size()) + strMark;
    }
    return strFixed;
}

/// Mends one list of names.
struct NameFixer
{
    wchar_t* pszNames; ///< the list's entries; null for none
    const VelUtility::PrinterCaps& stuCaps;
    std::vector<NameFix>& fixes;

    template <typename Form>
    void operator()(const Form& /*numbers*/) const
    {}
    template <size_t uiWidth>
    void operator()(const VelUtility::CapList<wchar_t[uiWidth]>& list) const
    {
        constexpr size_t uiMost = uiWidth - 3; // one less than the lengths that are refused
        static_assert(!VelUtility::IsRefusedLength(uiMost, uiWidth) && VelUtility::IsRefusedLength(uiMost + 1, uiWidth),
                      "the longest name that passes with a terminator");
        const DWORD dwCount = stuCaps.*list.pCount;
        const auto name = [this](DWORD i) { return ReadBack(CellText(pszNames + i * uiWidth, uiWidth)); };
        std::set<std::wstring> taken;
        for (DWORD i = 0; i < dwCount; ++i)
        {
            if (name(i).size() <= uiMost)
            {
                taken.insert(FoldedName(name(i)));
            }
        }
        for (DWORD i = 0; i < dwCount; ++i)
        {
            const std::wstring strOld = name(i);
            if (strOld.size() <= uiMost)
            {
                continue;
            }
            const std::wstring strNew = FixedName(strOld, uiMost, taken);
            taken.insert(FoldedName(strNew));
            wchar_t* const pszEntry = pszNames + i * uiWidth;
            std::fill_n(pszEntry, uiWidth, L'\0');
            strNew.copy(pszEntry, uiMost);
            fixes.push_back({list.pszBaseKey + std::to_wstring(i), strOld, strNew});
        }
    }
};

} // namespace

std::wstring FoldedName(std::wstring strName)
{
    CharLowerBuffW(strName.data(), static_cast<DWORD>(strName.size()));
    return strName;
}

std::wstring ReadBack(std::wstring strName)
{
    strName.resize(std::min(strName.find_first_of(L"\r\n"), strName.size()));
    constexpr wchar_t kBlanks[] = L" \t";
    strName.resize(strName.find_last_not_of(kBlanks) + 1);
    strName.erase(0, std::min(strName.find_first_not_of(kBlanks), strName.size()));
    const bool bQuoted = strName.size() >= 2 && (strName.front() == L'"' || strName.front() == L'\'') &&
                         strName.back() == strName.front();
    return bQuoted ? strName.substr(1, strName.size() - 2) : strName;
}

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

wchar_t* Snapshot::NamesOf(WORD wCode)
{
    const auto list = std::find_if(m_lists.begin(), m_lists.end(),
                                   [wCode](const CapsAnswer& answer) { return answer.code.wCode == wCode; });
    return list == m_lists.end() ? nullptr : reinterpret_cast<wchar_t*>(list->entries.data());
}

std::vector<NameFix> Snapshot::FixNames()
{
    std::vector<NameFix> fixes;
    for (const VelUtility::CapRow& row : VelUtility::kCapRows)
    {
        std::visit(NameFixer{NamesOf(row.iDevCap), m_stuCaps, fixes}, row.form);
    }
    return fixes;
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
    answer.entries.resize(answer.entries.size() + sizeof(wchar_t)); // the terminator behind the list
    // The bytes stay where they are when the vector that holds them is moved.
    m_lists.push_back(std::move(answer));
    pEntries = reinterpret_cast<const Entry*>(m_lists.back().entries.data());
}

} // namespace VelHost
