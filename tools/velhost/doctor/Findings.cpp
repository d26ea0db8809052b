#include "tools/velhost/doctor/Findings.h"

#include "tools/velhost/report/Encoding.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace VelHost
{

void Findings::Add(const char* pszCode, std::wstring strWhere, std::wstring strDetail)
{
    const std::string strCode = pszCode;
    const auto kind = std::find_if(m_kinds.begin(), m_kinds.end(),
                                   [&strCode](const FindingKind& row) { return strCode == row.pszCode; });
    if (kind == m_kinds.end())
    {
        throw std::logic_error("there is no finding " + strCode);
    }
    m_list.push_back({&*kind, std::move(strWhere), std::move(strDetail)});
}

void Findings::Good(const char* pszArea, std::wstring strWhat)
{
    m_good.push_back({pszArea, std::move(strWhat)});
}

void Findings::Unseen(const char* pszArea, std::wstring strWhat)
{
    m_unseen.push_back({pszArea, std::move(strWhat)});
}

bool Findings::Has(const char* pszCode) const
{
    const std::vector<std::string> codes = Codes();
    return std::find(codes.begin(), codes.end(), pszCode) != codes.end();
}

Json Findings::ToJson() const
{
    Json list = Json::array();
    for (const Finding& finding : m_list)
    {
        list.push_back({{"code", finding.pKind->pszCode},
                        {"title", finding.pKind->pszTitle},
                        {"where", ToUtf8(finding.strWhere)},
                        {"detail", ToUtf8(finding.strDetail)},
                        {"cure", finding.pKind->pszCure}});
    }
    return list;
}

std::vector<std::string> Findings::Codes() const
{
    std::vector<std::string> codes;
    for (const Finding& finding : m_list)
    {
        codes.emplace_back(finding.pKind->pszCode);
    }
    return codes;
}

} // namespace VelHost
