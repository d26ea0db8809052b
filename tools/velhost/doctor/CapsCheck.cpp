#include "tools/velhost/doctor/CapsCheck.h"

#include "state/CapabilitySnapshot.h"
#include "state/StoreTypes.h"
#include "tools/velhost/host/Snapshot.h"
#include "ui/PaperControls.h"

#include <algorithm>
#include <map>
#include <utility>

namespace VelHost
{
namespace
{

using namespace VelUtility;

/// What was read of one list.
struct ReadList
{
    bool bCounted = false; ///< the count is a number; 0 is one
    DWORD dwCount = 0;
    std::wstring strBaseKey;    ///< of pairs the x's
    std::vector<DWORD> numbers; ///< of pairs the x; those up to the first that is missing
    std::vector<DWORD> seconds; ///< of pairs the y
    std::vector<std::wstring> names;
};

class CapsChecker
{
public:
    CapsChecker(const SnapshotView& snapshot, std::wstring strFile, Findings& findings)
        : m_snapshot(snapshot), m_strSection(std::move(strFile) + L" [" + kCapsSection + L"] "), m_findings(findings)
    {}

    void CheckRow(const CapRow& row)
    {
        m_pRow = &row;
        std::visit(*this, row.form);
    }
    void CheckTogether()
    {
        for (const std::vector<WORD>& group : ListGroups())
        {
            CheckGroup(group);
        }
        CheckCustomPaper();
        CheckExtents();
    }

    // One form of a row each.
    void operator()(const CapNumber& /*number*/) { m_numbers[m_pRow->iDevCap] = ReadFirst(L"the answer"); }
    template <typename Number>
    void operator()(const CapList<Number>& list)
    {
        ReadList& read = ReadCount(list.pszBaseKey);
        ReadNumbers(list.pszBaseKey, read.dwCount, read.numbers);
        TellSurplus(list.pszBaseKey, read.dwCount, read.numbers.size());
        TellRepeated("CFG20", list.pszBaseKey, read.numbers, [](DWORD dw) { return std::to_wstring(dw); });
    }
    template <size_t uiWidth>
    void operator()(const CapList<wchar_t[uiWidth]>& list)
    {
        ReadList& read = ReadCount(list.pszBaseKey);
        ReadNames(list.pszBaseKey, read, uiWidth);
        TellSurplus(list.pszBaseKey, read.dwCount, read.names.size());
        if (m_pRow->iDevCap != DC_MEDIAREADY) // two trays may well hold the same
        {
            TellRepeated("CFG19", list.pszBaseKey, read.names, &FoldedName);
        }
    }
    template <typename Pair>
    void operator()(const CapPairs<Pair>& pairs)
    {
        ReadList& read = ReadCount(pairs.pszBaseKeyX);
        ReadNumbers(pairs.pszBaseKeyX, read.dwCount, read.numbers);
        ReadNumbers(pairs.pszBaseKeyY, read.dwCount, read.seconds);
        if (!TellSurplus(pairs.pszBaseKeyX, read.dwCount, read.numbers.size()))
        {
            TellSurplus(pairs.pszBaseKeyY, read.dwCount, read.seconds.size());
        }
    }

private:
    void Tell(const char* pszCode, const std::wstring& strKey, std::wstring strDetail)
    {
        m_findings.Add(pszCode, m_strSection + strKey, std::move(strDetail));
    }

    /// The number of the row's own key.
    /// @param pszWhat what applications ask for by it.
    DWORD ReadFirst(const wchar_t* pszWhat)
    {
        const DWORD dwValue = m_snapshot.Number(m_pRow->pszKey);
        if (dwValue == kNoAnswer)
        {
            const bool bStored = m_snapshot.Text(m_pRow->pszKey).has_value();
            Tell(bStored ? "CFG12" : "CFG11", m_pRow->pszKey, std::wstring(L"applications are refused ") + pszWhat);
        }
        else if (dwValue == 0)
        {
            Tell("CFG13", m_pRow->pszKey, std::wstring(L"applications are refused ") + pszWhat);
        }
        return dwValue;
    }

    ReadList& ReadCount(const wchar_t* pszBaseKey)
    {
        ReadList& read = m_lists[m_pRow->iDevCap];
        read.strBaseKey = pszBaseKey;
        const DWORD dwCount = ReadFirst(L"the list");
        read.bCounted = dwCount != kNoAnswer;
        read.dwCount = read.bCounted ? dwCount : 0;
        return read;
    }

    /// Reads a list of numbers up to the first that is missing, where the module stops too.
    void ReadNumbers(const wchar_t* pszBaseKey, DWORD dwCount, std::vector<DWORD>& numbers)
    {
        for (DWORD i = 0; i < dwCount; ++i)
        {
            const std::wstring strKey = pszBaseKey + std::to_wstring(i);
            const DWORD dwValue = m_snapshot.Number(strKey);
            if (dwValue == kNoAnswer)
            {
                const bool bStored = m_snapshot.Text(strKey).has_value();
                Tell(bStored ? "CFG12" : "CFG14", strKey,
                     m_pRow->pszKey + (L" is " + std::to_wstring(dwCount)) + L": the whole list is refused");
                return;
            }
            numbers.push_back(dwValue);
        }
    }

    /// Reads a list of names up to the first that is missing; the module goes on with empty ones.
    void ReadNames(const wchar_t* pszBaseKey, ReadList& read, size_t uiWidth)
    {
        for (DWORD i = 0; i < read.dwCount; ++i)
        {
            const std::wstring strKey = pszBaseKey + std::to_wstring(i);
            const std::optional<std::wstring> strName = m_snapshot.Text(strKey);
            if (!strName)
            {
                Tell("CFG14", strKey,
                     m_pRow->pszKey + (L" is " + std::to_wstring(read.dwCount)) + L": it is told with an empty name");
                return;
            }
            CheckLength(strKey, *strName, uiWidth);
            read.names.push_back(*strName);
        }
    }

    void CheckLength(const std::wstring& strKey, const std::wstring& strName, size_t uiWidth)
    {
        const std::wstring strLength = L"\"" + strName + L"\" has " + std::to_wstring(strName.size()) + L" characters";
        if (IsRefusedLength(strName.size(), uiWidth))
        {
            Tell("CFG17", strKey, strLength + L": the whole list is refused");
        }
        else if (strName.size() >= uiWidth)
        {
            Tell("CFG18", strKey, strLength + L" where " + std::to_wstring(uiWidth) + L" fit");
        }
    }

    /// A list with all that its count promises may have more behind it.
    bool TellSurplus(const wchar_t* pszBaseKey, DWORD dwCount, size_t uiRead)
    {
        const std::wstring strNext = pszBaseKey + std::to_wstring(dwCount);
        const bool bMore = dwCount != 0 && uiRead == dwCount && m_snapshot.Text(strNext).has_value();
        if (bMore)
        {
            Tell("CFG15", strNext, m_pRow->pszKey + (L" is " + std::to_wstring(dwCount)) + L": this one is never told");
        }
        return bMore;
    }

    template <typename Value, typename TextOf>
    void TellRepeated(const char* pszCode, const wchar_t* pszBaseKey, const std::vector<Value>& values,
                      const TextOf& textOf)
    {
        std::map<std::wstring, size_t> first;
        for (size_t i = 0; i < values.size(); ++i)
        {
            const auto [place, bNew] = first.try_emplace(textOf(values[i]), i);
            if (!bNew)
            {
                Tell(pszCode, pszBaseKey + std::to_wstring(i),
                     L"the same as " + (pszBaseKey + std::to_wstring(place->second)) + L", " + place->first);
            }
        }
    }

    void CheckGroup(const std::vector<WORD>& group)
    {
        std::wstring strCounts;
        bool bDiffer = false;
        for (const WORD iDevCap : group)
        {
            const ReadList& list = m_lists[iDevCap];
            if (!list.bCounted)
            {
                return; // told already
            }
            bDiffer = bDiffer || list.dwCount != m_lists[group[0]].dwCount;
            strCounts += (strCounts.empty() ? L"" : L", ") +
                         (FindCapRow(iDevCap)->pszKey + (L" " + std::to_wstring(list.dwCount)));
        }
        if (bDiffer)
        {
            Tell("CFG16", FindCapRow(group[0])->pszKey, strCounts);
        }
    }

    void CheckCustomPaper()
    {
        const ReadList& names = m_lists[DC_PAPERNAMES];
        for (size_t i = 0; i < names.names.size(); ++i)
        {
            if (names.names[i] == kCustomPaper)
            {
                Tell("CFG21", names.strBaseKey + std::to_wstring(i), L"the sheet takes it for the custom paper");
            }
        }
        const ReadList& papers = m_lists[DC_PAPERS];
        for (size_t i = 0; i < papers.numbers.size(); ++i)
        {
            if (papers.numbers[i] == DMPAPER_USER)
            {
                Tell("CFG21", papers.strBaseKey + std::to_wstring(i),
                     std::to_wstring(DMPAPER_USER) + L": a record with a custom size opens on this paper");
            }
        }
    }

    void CheckExtents()
    {
        const DWORD dwMost = m_numbers[DC_MAXEXTENT];
        const DWORD dwLeast = m_numbers[DC_MINEXTENT];
        if (dwMost == kNoAnswer || dwLeast == kNoAnswer || dwMost == 0 || dwLeast == 0)
        {
            return; // told already
        }
        const std::wstring strRange = SizeText(LOWORD(dwLeast), HIWORD(dwLeast)) + L" to " +
                                      SizeText(LOWORD(dwMost), HIWORD(dwMost)) + L" tenths of a millimetre";
        if (LOWORD(dwLeast) > LOWORD(dwMost) || HIWORD(dwLeast) > HIWORD(dwMost))
        {
            Tell("CFG22", FindCapRow(DC_MINEXTENT)->pszKey, strRange);
            return;
        }
        const ReadList& sizes = m_lists[DC_PAPERSIZE];
        const auto isInside = [](DWORD dw, WORD wLeast, WORD wMost) { return dw >= wLeast && dw <= wMost; };
        for (size_t i = 0; i < std::min(sizes.numbers.size(), sizes.seconds.size()); ++i)
        {
            const DWORD dwX = sizes.numbers[i];
            const DWORD dwY = sizes.seconds[i];
            if (!isInside(dwX, LOWORD(dwLeast), LOWORD(dwMost)) || !isInside(dwY, HIWORD(dwLeast), HIWORD(dwMost)))
            {
                Tell("CFG23", sizes.strBaseKey + std::to_wstring(i),
                     SizeText(dwX, dwY) + L" lies outside of " + strRange);
            }
        }
    }

    static std::wstring SizeText(DWORD dwX, DWORD dwY) { return std::to_wstring(dwX) + L" x " + std::to_wstring(dwY); }

    const SnapshotView& m_snapshot;
    std::wstring m_strSection; ///< what stands in front of a key in a finding's place
    Findings& m_findings;
    const CapRow* m_pRow = nullptr;
    std::map<WORD, ReadList> m_lists; ///< by DC_ code
    std::map<WORD, DWORD> m_numbers;  ///< by DC_ code
};

} // namespace

const std::vector<std::vector<WORD>>& ListGroups()
{
    static const std::vector<std::vector<WORD>> s_groups = {
        {DC_PAPERS, DC_PAPERSIZE, DC_PAPERNAMES},
        {DC_BINS, DC_BINNAMES},
        {DC_MEDIATYPES, DC_MEDIATYPENAMES},
    };
    return s_groups;
}

const std::vector<FindingKind>& CapsKinds()
{
    static const std::vector<FindingKind> s_kinds = {
        {"CFG11", "A key of the snapshot is missing", "Take the snapshot anew (velhost snapshot), or add the key."},
        {"CFG12", "A stored -1 reads as a missing key",
         "Where the printer can do it, store what it can; else nothing: the printer refused to tell, and so does the "
         "module."},
        {"CFG13", "A 0 is told to applications as a failure",
         "Where the printer can do it, store what it can; else nothing: \"none\" can't be told."},
        {"CFG14", "A list lacks an entry that its count promises",
         "Add the entry, or lower the count with the counts of the lists beside it."},
        {"CFG15", "A list has more entries than its count", "Raise the count, or take the entry out."},
        {"CFG16", "Lists that belong together differ in length", "Give each paper, bin and media type all it needs."},
        {"CFG17", "A name of this length makes the query of its whole list fail",
         "Shorten the name: to 21 characters for a bin, to 61 for all else (velhost snapshot --fix)."},
        {"CFG18", "A name fills its field and loses its terminator",
         "Shorten the name: to 21 characters for a bin, to 61 for all else (velhost snapshot --fix)."},
        {"CFG19", "A name stands twice in one list", "Give each its own name."},
        {"CFG20", "A number stands twice in one list", "Give each its own number; those above 256 are free."},
        {"CFG21", "A paper takes the custom paper's name or number", "Give it another name, and a number but 256."},
        {"CFG22", "The least extent is larger than the greatest", "Exchange MinExtent and MaxExtent, or mend them."},
        {"CFG23", "A paper lies outside the extents", "Mend the paper's size, or MinExtent and MaxExtent."},
    };
    return s_kinds;
}

bool CheckCaps(const SnapshotView& snapshot, const std::wstring& strFile, Findings& findings)
{
    const size_t uiBefore = findings.List().size();
    CapsChecker checker(snapshot, strFile, findings);
    for (const CapRow& row : kCapRows)
    {
        checker.CheckRow(row);
    }
    checker.CheckTogether();
    return findings.List().size() == uiBefore;
}

} // namespace VelHost
