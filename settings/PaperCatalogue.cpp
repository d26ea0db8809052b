#include "settings/PaperCatalogue.h"

#include "diag/LogSite.h"
#include "state/CapabilitySnapshot.h"
#include "support/Memory.h"
#include "support/module/ModuleTexts.h"
#include "support/module/Resource.h"

#include <algorithm>
#include <cstring>

VELUI_SOURCE_MODULE("SubVelUi");

namespace
{

constexpr int kToleranceMm = 5;

/// The custom paper's name, in all units of a name field.
struct CustomName
{
    CustomName()
    {
        std::wstring strName;
        SubLoadString(IDS_CUSTOM_PAPER, strName);
        strName.copy(aszName, kPaperNameUnits - 1);
    }
    wchar_t aszName[kPaperNameUnits] = {};
};

void CopyName(wchar_t* pszTo, const wchar_t* pszFrom)
{
    std::memcpy(pszTo, pszFrom, kPaperNameUnits * sizeof(wchar_t));
}

DWORD CountPapers()
{
    const DWORD dwCount = VelUtility::GetComputerCaps(DC_PAPERS, nullptr);
    return dwCount == VelUtility::kNoAnswer ? 0 : std::min(dwCount, kMostPapers);
}

/// Fills the list of dwCount configured papers and the custom one. @return whether there was memory for it.
bool FillList(stuPaperInfo* pstuPaperInfo, DWORD dwCount)
{
    const auto pNames = AllocateArray<VelUtility::WideName>(dwCount);
    const auto pPapers = AllocateArray<WORD>(dwCount);
    const auto pSizes = AllocateArray<POINT>(dwCount);
    if (!pNames || !pPapers || !pSizes)
    {
        return false;
    }
    // A failed read leaves empty names, number 0 or size 0. Nothing ties the three lists together but the position:
    // each has a count of its own in the file.
    VelUtility::GetComputerCaps(DC_PAPERNAMES, pNames.get(), dwCount);
    VelUtility::GetComputerCaps(DC_PAPERS, pPapers.get(), dwCount);
    VelUtility::GetComputerCaps(DC_PAPERSIZE, pSizes.get(), dwCount);
    for (DWORD i = 0; i < dwCount; ++i)
    {
        CopyName(pstuPaperInfo[i].aszPaperName, pNames[i]);
        // The store hands out a name of 64 characters and more without its terminator.
        pstuPaperInfo[i].aszPaperName[kPaperNameUnits - 1] = L'\0';
        pstuPaperInfo[i].stuPaperSize = pSizes[i];
        pstuPaperInfo[i].wPaper = pPapers[i];
    }
    CopyName(pstuPaperInfo[dwCount].aszPaperName, CustomName().aszName);
    pstuPaperInfo[dwCount].stuPaperSize = {0, 0};
    pstuPaperInfo[dwCount].wPaper = DMPAPER_USER;
    return true;
}

/// Whether a length in whole millimetres matches one in tenths, which is cut to whole ones.
bool IsNear(LONG lTenths, int iMillimetres)
{
    const long long llDistance = 0LL + lTenths / 10 - iMillimetres;
    return -kToleranceMm <= llDistance && llDistance <= kToleranceMm;
}

} // namespace

DWORD GetPaperInfoList(stuPaperInfo* pstuPaperInfo, DWORD dwRoom)
{
    const FunctionScope scope("GetPaperInfoList");
    const DWORD dwCount = std::min(CountPapers(), dwRoom);
    if (pstuPaperInfo == nullptr)
    {
        return dwCount;
    }
    return FillList(pstuPaperInfo, dwCount) ? dwCount : VelUtility::kNoAnswer;
}

const stuPaperInfo* FindPaper(const stuPaperInfo* pstuPaperInfo, DWORD dwCount, WORD wPaper)
{
    const stuPaperInfo* const pEnd = pstuPaperInfo + dwCount;
    const stuPaperInfo* const pFound =
        std::find_if(pstuPaperInfo, pEnd, [wPaper](const stuPaperInfo& stuInfo) { return stuInfo.wPaper == wPaper; });
    return pFound != pEnd ? pFound : nullptr;
}

int SubCheckPaperName(const stuPaperInfo* pstuPaperInfo, const DWORD& dwCount, wchar_t* pszPaperName, const int& iUserX,
                      const int& iUserY)
{
    FunctionScope scope("SubCheckPaperName");
    TRACE_ARGUMENT_AS(scope, "pstuPaperInfo, dwCount", &pstuPaperInfo, dwCount);
    TRACE_ARGUMENTS(scope, dwCount);
    // Required: the first match in list order wins, not the closest, so that a printer's own order decides between two
    // papers of nearly one size. The custom paper takes part with its size of 0 by 0.
    const stuPaperInfo* const pEnd = pstuPaperInfo + dwCount;
    const stuPaperInfo* const pFound = std::find_if(pstuPaperInfo, pEnd, [&](const stuPaperInfo& stuInfo) {
        return IsNear(stuInfo.stuPaperSize.x, iUserX) && IsNear(stuInfo.stuPaperSize.y, iUserY);
    });
    CopyName(pszPaperName, pFound != pEnd ? pFound->aszPaperName : CustomName().aszName);
    LOG_RESULT("pszPaperName", static_cast<PCWSTR>(pszPaperName));
    LOG_RESULT("iUserX", iUserX);
    LOG_RESULT("iUserY", iUserY);
    return 1;
}
