#pragma once
/// Typed access to profile (ini) files. No function here takes a lock; a caller that wants exclusion holds a
/// CScopeFileLock.

#include "diag/LogSite.h"
#include "state/CapabilityTable.h"

#include <windows.h>

#include <cstdio>
#include <string>

namespace VelUtility
{

/// Text of a bounded length, formed at once: a key or a value on its way to Windows.
/// @tparam uiUnits wide characters with the terminator; a longer text is cut.
template <size_t uiUnits>
class ProfileText
{
public:
    template <typename... Values>
    explicit ProfileText(const wchar_t* pszFormat, Values... values)
    {
        _snwprintf_s(m_szText, uiUnits, _TRUNCATE, pszFormat, values...);
    }
    operator const wchar_t*() const noexcept { return m_szText; }

private:
    wchar_t m_szText[uiUnits];
};

/// The key of one array element: the base name and the index in decimal.
class ElementKey : public ProfileText<256>
{
public:
    ElementKey(const wchar_t* pszBaseKey, DWORD dwIndex) : ProfileText(L"%ls%d", pszBaseKey, static_cast<int>(dwIndex))
    {}
};

/// The decimal text of a 32-bit number, with space for sign and terminator.
using NumberText = ProfileText<12>;

/// Reads a key's text, empty when it is absent.
/// @tparam uiUnits the buffer's size in wide characters, the terminator among them; a longer text is cut.
template <size_t uiUnits>
std::wstring ReadProfileText(const wchar_t* pszSection, const wchar_t* pszKey, const wchar_t* pszFile)
{
    wchar_t szText[uiUnits] = {};
    GetPrivateProfileStringW(pszSection, pszKey, L"", szText, uiUnits, pszFile);
    return szText;
}

/// One text of a record in Config.ini: its key and its place in the record.
template <typename Record>
struct TextRow
{
    const wchar_t* pszKey;
    std::wstring Record::*pText;
};

/// Reads a record's texts in the order of their rows, each of at most 255 characters; an absent one is empty.
template <typename Record, size_t uiRows>
void ReadTexts(const wchar_t* pszSection, const TextRow<Record> (&rows)[uiRows], Record& record, const wchar_t* pszFile)
{
    for (const TextRow<Record>& row : rows)
    {
        record.*row.pText = ReadProfileText<256>(pszSection, row.pszKey, pszFile);
    }
}

// The writers. Each takes section, key and file as wide text, the file as a full path, and returns non-zero for success
// and zero for failure. An array takes one key for each element: the base name and the element's index from zero. An
// array writer stops at the first failed write; the keys already written stay.

/// Writes an unsigned number in decimal.
DWORD WritePrivateProfileUINT(const wchar_t* pszSection, const wchar_t* pszKey, DWORD dwValue, const wchar_t* pszFile);

/// Writes a signed number in decimal.
DWORD WritePrivateProfileINT(const wchar_t* pszSection, const wchar_t* pszKey, int iValue, const wchar_t* pszFile);

/// Writes "1" for any non-zero value and "0" for zero.
DWORD WritePrivateProfileBOOL(const wchar_t* pszSection, const wchar_t* pszKey, BOOL bValue, const wchar_t* pszFile);

/// Writes names of 24 or 64 wide characters each. An element that fills its width without a terminator runs on into the
/// element behind it, and the last one into whatever stands behind the array.
/// @param pszValues dwCount elements; borrowed; not tested for null.
DWORD WritePrivateProfileStringWArray(const wchar_t* pszSection, const wchar_t* pszBaseKey, const NarrowName* pszValues,
                                      DWORD dwCount, const wchar_t* pszFile);
DWORD WritePrivateProfileStringWArray(const wchar_t* pszSection, const wchar_t* pszBaseKey, const WideName* pszValues,
                                      DWORD dwCount, const wchar_t* pszFile);

/// Writes unsigned numbers.
/// @param pValues dwCount elements; borrowed; null is a success that writes nothing.
DWORD WritePrivateProfileUINTArray(const wchar_t* pszSection, const wchar_t* pszBaseKey, const WORD* pValues,
                                   DWORD dwCount, const wchar_t* pszFile);
DWORD WritePrivateProfileUINTArray(const wchar_t* pszSection, const wchar_t* pszBaseKey, const DWORD* pValues,
                                   DWORD dwCount, const wchar_t* pszFile);

/// Writes pairs as unsigned numbers, the first of each under pszBaseKeyX and the second under pszBaseKeyY.
/// Required: the name's spelling. It stands in the log's lines, by which a failed snapshot is looked for.
/// @param pValues dwCount pairs; borrowed; null is a success that writes nothing.
DWORD WritePrivateProfileResolutoinArray(const wchar_t* pszSection, const wchar_t* pszBaseKeyX,
                                         const wchar_t* pszBaseKeyY, const Resolution* pValues, DWORD dwCount,
                                         const wchar_t* pszFile);

/// The same for points; a null array also leaves a line in the log.
DWORD WritePrivateProfilePointArray(const wchar_t* pszSection, const wchar_t* pszBaseKeyX, const wchar_t* pszBaseKeyY,
                                    const POINT* pstuValue, DWORD dwCount, const wchar_t* pszFile);

/// Logs "<writer> failed." for a writer that answered 0; the macro below fills in all but the call's arguments.
/// @return whether the writer succeeded.
inline bool LoggedWrite(DWORD dwWritten, const char* pszWords, const char* pszSourceModule, int iLine)
{
    if (dwWritten == 0 && IsErrorEnabled())
    {
        LogError("%s(%d) : %s", pszSourceModule, iLine, pszWords);
    }
    return dwWritten != 0;
}

} // namespace VelUtility

/// Calls a profile writer and tells whether it succeeded.
#define LOGGED_WRITE(writer, ...) LoggedWrite(writer(__VA_ARGS__), #writer " failed.", kSourceModule, __LINE__)
