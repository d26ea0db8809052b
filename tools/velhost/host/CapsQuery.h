#pragma once
/// Asking all capabilities of a printer, and what the answers mean.

#include "tools/velhost/report/Output.h"

#include <windows.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace VelHost
{

/// How the answer to a capability code is to be read.
enum class CapsForm
{
    Number,        ///< the value itself
    Extent,        ///< packed words, x low and y high, tenths of a millimetre
    Identifiers,   ///< list of 16-bit numbers
    Numbers,       ///< list of 32-bit numbers
    Sizes,         ///< list of POINT, tenths of a millimetre
    Resolutions,   ///< list of pairs of 32-bit numbers, dots per inch
    LanguageNames, ///< list of names in cells of 32 wide characters
    BinNames,      ///< list of names in cells of 24 wide characters
    WideNames,     ///< list of names in cells of 64 wide characters
    Unspecified,   ///< no such code is published
};

/// A capability code.
struct CapsCode
{
    WORD wCode;
    const char* pszName; ///< "DC_PAPERS"
    CapsForm form;
};

/// The answer that refuses.
inline constexpr DWORD kRefused = 0xFFFFFFFF;

/// Codes 0 to 36 in their order: all published ones, and one before and behind them.
const std::vector<CapsCode>& CapsCodes();

/// @return the code's row; the row of an unpublished code when it is outside CapsCodes.
CapsCode FindCapsCode(WORD wCode);

/// @return bytes of an entry; 0 for a form that is no list.
size_t EntryBytes(CapsForm form);

/// Asks one capability. The buffer is null for a question without one.
using AskCaps = std::function<DWORD(WORD wCode, void* pvBuffer)>;

/// The answer to one code.
struct CapsAnswer
{
    CapsCode code;
    DWORD dwAnswer = kRefused;     ///< of the question without a buffer
    DWORD dwFillAnswer = kRefused; ///< of the question with a buffer; only for a list that was filled
    size_t cbOverrun = 0;          ///< bytes that were changed behind the buffer
    std::string strNote;           ///< why a list has no entries, or what is wrong with them; may be empty
    std::vector<BYTE> entries;     ///< dwAnswer entries as they were delivered; empty without

    bool IsRefused() const noexcept { return dwAnswer == kRefused; }
    /// @return how many entries were delivered.
    size_t EntryCount() const { return EntryBytes(code.form) == 0 ? 0 : entries.size() / EntryBytes(code.form); }
};

/// Asks a code; a list is asked for its count and then with a buffer for exactly so many entries.
CapsAnswer QueryCaps(const AskCaps& ask, const CapsCode& code);

/// Asks each of CapsCodes.
std::vector<CapsAnswer> QueryAllCaps(const AskCaps& ask);

/// Windows' DeviceCapabilitiesW as the one that answers. Throws CommandError for an unknown printer.
AskCaps SpoolerCaps(const std::wstring& strPrinter);

/// @return the entries, or the meaning of a single value, as texts.
std::vector<std::string> DecodeCaps(const CapsAnswer& answer);

/// @return code, name, answer, what it means, and what went wrong.
Json CapsToJson(const CapsAnswer& answer);

/// @return the answers as a table.
std::string CapsTable(const std::vector<CapsAnswer>& answers);

} // namespace VelHost
