#pragma once
/// What the doctor has seen: what is wrong, what is good, and what it could not look at.

#include "tools/velhost/report/Output.h"

#include <string>
#include <vector>

namespace VelHost
{

/// A kind of fault. Each check has a table of its kinds, a row per code: the only place where a code stands.
struct FindingKind
{
    const char* pszCode;  ///< letters of the area and a number of two digits, for ever the same: "REG01"
    const char* pszTitle; ///< what is wrong, in one line
    const char* pszCure;  ///< what to do, in one line
};

/// A fault that was seen.
struct Finding
{
    const FindingKind* pKind;
    std::wstring strWhere;  ///< the file, the registry value, the printer
    std::wstring strDetail; ///< what was seen there; may be empty
};

/// Something that was looked at without a finding, or could not be looked at.
struct Remark
{
    std::string strArea;
    std::wstring strText;
};

/// Gathers what the checks see, in their order.
class Findings
{
public:
    /// @param kinds the kinds that can be added; not copied, so they have to outlive this object.
    explicit Findings(const std::vector<FindingKind>& kinds) : m_kinds(kinds) {}

    /// Adds a fault.
    /// @param pszCode of one of the kinds; any other is the program's own fault and throws std::logic_error.
    void Add(const char* pszCode, std::wstring strWhere, std::wstring strDetail);
    /// Notes what was looked at and is good.
    void Good(const char* pszArea, std::wstring strWhat);
    /// Notes what could not be looked at, and why: neither good nor bad.
    void Unseen(const char* pszArea, std::wstring strWhat);

    const std::vector<Finding>& List() const { return m_list; }
    const std::vector<Remark>& GoodList() const { return m_good; }
    const std::vector<Remark>& UnseenList() const { return m_unseen; }

    bool Has(const char* pszCode) const;
    /// @return the list as JSON: code, title, where, detail and cure of each.
    Json ToJson() const;
    /// @return the codes of the list in its order, each as often as it was found.
    std::vector<std::string> Codes() const;

private:
    const std::vector<FindingKind>& m_kinds;
    std::vector<Finding> m_list;
    std::vector<Remark> m_good;
    std::vector<Remark> m_unseen;
};

} // namespace VelHost
