#include "tools/velhost/doctor/SnapshotView.h"

#include "state/CapabilitySnapshot.h"
#include "state/StoreTypes.h"
#include "tools/velhost/host/Snapshot.h"

#include <utility>

namespace VelHost
{
namespace
{

using namespace VelUtility;

/// A default that no snapshot has as a value: it tells a missing key from an empty one's.
constexpr wchar_t kNoText[] = L"\x7F";
/// Wide characters of the longest text that is told whole.
constexpr DWORD kTextUnits = 1024;

/// Puts one row of the capability table into the maps of texts and numbers.
struct RowTaker
{
    const CapRow& row;
    const PrinterCaps& stuCaps;
    std::map<std::wstring, std::wstring>& texts;
    std::map<std::wstring, DWORD>& numbers;

    void operator()(const CapNumber& number) const { numbers[row.pszKey] = stuCaps.*number.pValue; }
    template <typename Number>
    void operator()(const CapList<Number>& list) const
    {
        TakeCount(list, [&](DWORD i) { numbers[Key(list.pszBaseKey, i)] = (stuCaps.*list.pElements)[i]; });
    }
    template <size_t uiWidth>
    void operator()(const CapList<wchar_t[uiWidth]>& list) const
    {
        TakeCount(list, [&](DWORD i) { texts[Key(list.pszBaseKey, i)] = ReadBack((stuCaps.*list.pElements)[i]); });
    }
    template <typename Pair>
    void operator()(const CapPairs<Pair>& pairs) const
    {
        TakeCount(pairs, [&](DWORD i) {
            numbers[Key(pairs.pszBaseKeyX, i)] = static_cast<DWORD>((stuCaps.*pairs.pElements)[i].x);
            numbers[Key(pairs.pszBaseKeyY, i)] = static_cast<DWORD>((stuCaps.*pairs.pElements)[i].y);
        });
    }

private:
    static std::wstring Key(const wchar_t* pszBaseKey, DWORD dwIndex) { return pszBaseKey + std::to_wstring(dwIndex); }
    template <typename List, typename TakeElement>
    void TakeCount(const List& list, const TakeElement& takeElement) const
    {
        const DWORD dwCount = stuCaps.*list.pCount;
        numbers[row.pszKey] = dwCount;
        for (DWORD i = 0; i < dwCount; ++i)
        {
            takeElement(i);
        }
    }
};

} // namespace

FileSnapshot::FileSnapshot(std::wstring strFile) : m_strFile(std::move(strFile)) {}

std::optional<std::wstring> FileSnapshot::Text(const std::wstring& strKey) const
{
    wchar_t szText[kTextUnits] = {};
    GetPrivateProfileStringW(kCapsSection, strKey.c_str(), kNoText, szText, kTextUnits, m_strFile.c_str());
    const std::wstring strText = szText;
    return strText.empty() || strText == kNoText ? std::nullopt : std::optional(strText);
}

DWORD FileSnapshot::Number(const std::wstring& strKey) const
{
    return GetPrivateProfileIntW(kCapsSection, strKey.c_str(), -1, m_strFile.c_str());
}

UnwrittenSnapshot::UnwrittenSnapshot(const PrinterCaps& stuCaps)
{
    for (const CapRow& row : kCapRows)
    {
        std::visit(RowTaker{row, stuCaps, m_texts, m_numbers}, row.form);
    }
}

std::optional<std::wstring> UnwrittenSnapshot::Text(const std::wstring& strKey) const
{
    const auto number = m_numbers.find(strKey);
    if (number != m_numbers.end())
    {
        return std::to_wstring(number->second);
    }
    const auto text = m_texts.find(strKey);
    return text == m_texts.end() || text->second.empty() ? std::nullopt : std::optional(text->second);
}

DWORD UnwrittenSnapshot::Number(const std::wstring& strKey) const
{
    const auto number = m_numbers.find(strKey);
    return number == m_numbers.end() ? kNoAnswer : number->second;
}

} // namespace VelHost
