"""What each kind of fault makes of a small text, written out by hand, and what no kind may touch."""

from mutation import faults

TEXT = r'''#include "state/Profile.h"
// if (a == 1) Call();
VELUI_SOURCE_MODULE(".\\Name");
static_assert(sizeof(int) == 4, "four");
constexpr DWORD kMost = 0x1F;
#define LOG_BOTH(one, other) \
    do { if ((one) && (other)) { Log("both\n"); } } while (false)
template <typename T, size_t uiCount = 2>
class Pair : public Base<T>
{
public:
    explicit Pair(int iFirst) : m_iFirst(iFirst) {}
    void Set(int iFirst);
private:
    int m_iFirst = 3;
};
BOOL Store::Write(const wchar_t* pszPath, DWORD dwSize)
{
    const FunctionScope scope("Store::Write");
    wchar_t szText[kMost] = {};
    if (pszPath == nullptr || !Ready(dwSize))
    {
        LOG_ERROR("%ls %u is bad", pszPath, dwSize);
        return FALSE;
    }
    const CScopeFileLock lock(pszPath);
    for (DWORD i = 0; i < dwSize; ++i)
    {
        m_uiSum += i - 1;
    }
    Copy(szText, L"", Half(dwSize, 'x'));
    m_file.Flush();
    std::vector<const char*> names;
    return TRUE;
}
void Trace()
{
    const FunctionScope scope("Trace");
    LOG_INVOKED(scope);
    const FunctionScope other("Other");
}
'''

# By kind, each fault's lines before and after it.
MADE = {
    "negated condition": [
        ("do { if ((one) && (other)) { Log(\"both\\n\"); } } while (false)",
         "do { if (!((one) && (other))) { Log(\"both\\n\"); } } while (false)"),
        ("do { if ((one) && (other)) { Log(\"both\\n\"); } } while (false)",
         "do { if ((one) && (other)) { Log(\"both\\n\"); } } while (!(false))"),
        ("if (pszPath == nullptr || !Ready(dwSize))", "if (!(pszPath == nullptr || !Ready(dwSize)))"),
        ("if (pszPath == nullptr || !Ready(dwSize))", "if (pszPath == nullptr || Ready(dwSize))"),
    ],
    "comparison": [
        ("if (pszPath == nullptr || !Ready(dwSize))", "if (pszPath != nullptr || !Ready(dwSize))"),
        ("for (DWORD i = 0; i < dwSize; ++i)", "for (DWORD i = 0; i <= dwSize; ++i)"),
    ],
    "and/or": [
        ("do { if ((one) && (other)) { Log(\"both\\n\"); } } while (false)",
         "do { if ((one) || (other)) { Log(\"both\\n\"); } } while (false)"),
        ("if (pszPath == nullptr || !Ready(dwSize))", "if (pszPath == nullptr && !Ready(dwSize))"),
    ],
    "operator": [
        ("for (DWORD i = 0; i < dwSize; ++i)", "for (DWORD i = 0; i < dwSize; --i)"),
        ("m_uiSum += i - 1;", "m_uiSum -= i - 1;"),
        ("m_uiSum += i - 1;", "m_uiSum += i + 1;"),
    ],
    "off by one": [
        ("constexpr DWORD kMost = 0x1F;", "constexpr DWORD kMost = 0x20;"),
        ("int m_iFirst = 3;", "int m_iFirst = 4;"),
        ("wchar_t szText[kMost] = {};", "wchar_t szText[(kMost - 1)] = {};"),
        ("for (DWORD i = 0; i < dwSize; ++i)", "for (DWORD i = 1; i < dwSize; ++i)"),
        ("m_uiSum += i - 1;", "m_uiSum += i - 2;"),
    ],
    "constant": [
        ("constexpr DWORD kMost = 0x1F;", "constexpr DWORD kMost = 0;"),
        ("do { if ((one) && (other)) { Log(\"both\\n\"); } } while (false)",
         "do { if ((one) && (other)) { Log(\"both\\n\"); } } while (true)"),
        ("int m_iFirst = 3;", "int m_iFirst = 0;"),
        ("return FALSE;", "return TRUE;"),
        ("for (DWORD i = 0; i < dwSize; ++i)", "for (DWORD i = -1; i < dwSize; ++i)"),
        ("m_uiSum += i - 1;", "m_uiSum += i - 0;"),
        ("return TRUE;", "return FALSE;"),
    ],
    "dropped call": [
        ("do { if ((one) && (other)) { Log(\"both\\n\"); } } while (false)",
         "do { if ((one) && (other)) { ; } } while (false)"),
        ("LOG_ERROR(\"%ls %u is bad\", pszPath, dwSize);", ";"),
        ("Copy(szText, L\"\", Half(dwSize, 'x'));", ";"),
        ("m_file.Flush();", ";"),
        ("LOG_INVOKED(scope);", ";"),
    ],
    "dropped assignment": [("m_uiSum += i - 1;", ";")],
    "swapped arguments": [
        ("LOG_ERROR(\"%ls %u is bad\", pszPath, dwSize);", "LOG_ERROR(\"%ls %u is bad\", dwSize, pszPath);"),
        ("Copy(szText, L\"\", Half(dwSize, 'x'));", "Copy(L\"\", szText, Half(dwSize, 'x'));"),
        ("Copy(szText, L\"\", Half(dwSize, 'x'));", "Copy(szText, Half(dwSize, 'x'), L\"\");"),
        ("Copy(szText, L\"\", Half(dwSize, 'x'));", "Copy(szText, L\"\", Half('x', dwSize));"),
    ],
    "swapped statements": [
        ("Copy(szText, L\"\", Half(dwSize, 'x')); m_file.Flush();",
         "m_file.Flush(); Copy(szText, L\"\", Half(dwSize, 'x'));"),
        ("const FunctionScope scope(\"Trace\"); LOG_INVOKED(scope);",
         "LOG_INVOKED(scope); const FunctionScope scope(\"Trace\");"),
        ("LOG_INVOKED(scope); const FunctionScope other(\"Other\");",
         "const FunctionScope other(\"Other\"); LOG_INVOKED(scope);"),
    ],
    "changed text": [
        ("do { if ((one) && (other)) { Log(\"both\\n\"); } } while (false)",
         "do { if ((one) && (other)) { Log(\"boqh\\n\"); } } while (false)"),
        ("const FunctionScope scope(\"Store::Write\");", "const FunctionScope scope(\"Store::qrite\");"),
        ("LOG_ERROR(\"%ls %u is bad\", pszPath, dwSize);", "LOG_ERROR(\"%ls %u is qad\", pszPath, dwSize);"),
        ("Copy(szText, L\"\", Half(dwSize, 'x'));", "Copy(szText, L\"q\", Half(dwSize, 'x'));"),
        ("const FunctionScope scope(\"Trace\");", "const FunctionScope scope(\"Trqce\");"),
        ("const FunctionScope other(\"Other\");", "const FunctionScope other(\"Otqer\");"),
    ],
    "dropped scope": [
        ("const FunctionScope scope(\"Store::Write\");", ";"),
        ("const FunctionScope other(\"Other\");", ";"),
    ],
    "dropped lock": [("const CScopeFileLock lock(pszPath);", ";")],
    "scope or lock that ends at once": [
        ("const FunctionScope scope(\"Store::Write\");", "(void)FunctionScope(\"Store::Write\");"),
        ("const CScopeFileLock lock(pszPath);", "(void)CScopeFileLock(pszPath);"),
        ("const FunctionScope other(\"Other\");", "(void)FunctionScope(\"Other\");"),
    ],
}

FUNCTIONS = {"m_file.Flush();": "Store::Write", "LOG_INVOKED(scope);": "Trace", "int m_iFirst = 3;": ""}


def run(wrong):
    """@param wrong what the caller has found already. @return 0 where all is as written out."""
    wrong = list(wrong)
    for kind in faults.KINDS:
        made = list(faults.mutants_of("state/Store.cpp", TEXT, [kind]))
        found = [(mutant.before, mutant.after) for mutant in made]
        for pair in found:
            if pair not in MADE[kind]:
                wrong.append(f"{kind}: makes, and should not:\n    - {pair[0]}\n    + {pair[1]}")
        for pair in MADE[kind]:
            if pair not in found:
                wrong.append(f"{kind}: should make, and does not:\n    - {pair[0]}\n    + {pair[1]}")
        if len(found) != len(MADE[kind]):
            wrong.append(f"{kind}: makes {len(found)} faults of the text, not {len(MADE[kind])}")
        for mutant in made:
            changed = mutant.put_into(TEXT)
            if changed.count("\n") != TEXT.count("\n"):
                wrong.append(f"{kind}: another number of lines: {mutant.before}")
            if changed == TEXT:
                wrong.append(f"{kind}: no change: {mutant.before}")
            if FUNCTIONS.get(mutant.before, mutant.function) != mutant.function:
                wrong.append(f"{kind}: {mutant.before} stands in no '{mutant.function}'")
    for text in wrong:
        print(f"mutants: {text}")
    return 1 if wrong else 0
