#include "settings/PaperInfo.h"

#include "diag/LogText.h"

#include <clocale>
#include <cwchar>
#include <sstream>

namespace
{

/// Lets wide names reach a narrow stream; the locale stays set for the process.
void UseChineseLocaleOnce()
{
    static bool bLocaleSet = false; // not locked: setting it twice does no harm
    if (!bLocaleSet)
    {
        bLocaleSet = true;
        setlocale(LC_ALL, "chs");
    }
}

} // namespace

std::string ArgumentText(const stuPaperInfo& stuInfo)
{
    UseChineseLocaleOnce();
    const std::wstring strName(stuInfo.aszPaperName, wcsnlen(stuInfo.aszPaperName, kPaperNameUnits));
    std::ostringstream text;
    // Required: only the first label has " = ", and the height is left out: the form of the line is fixed.
    text << "{aszPaperName = " << ToLogText(strName.c_str()) << ",wPaper" << stuInfo.wPaper << ",stuPaperSize{pt.x"
         << stuInfo.stuPaperSize.x << ",pt.y}}";
    return text.str();
}
