#include "settings/PaperCatalogue.h"

#include "diag/LogSite.h"
#include "state/ComputerCaps.h"
#include "state/PrinterCaps.h"
#include "support/FreeDeleter.h"
#include "support/ModuleTexts.h"
#include "support/Resource.h"

#include <algorithm>
#include <cstdlib>
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
    return dwCount == VelUtility::kNoAnswer ? 0 : dwCount;
}

/// Zeroed room for one field of all papers; null when there is no memory for it.
template <typename T>
MallocPtr<T[]> AllocateField(DWORD dwCount)
{
    // An empty list needs an address too: a null pointer means a failure.
    return MallocPtr<T[]>(static_cast<T*>(std::calloc(std::max<size_t>(dwCount, 1), sizeof(T))));
}

/// Fills the list of dwCount configured papers and the custom one. @return whether there was memory for it.
bool FillList(stuPaperInfo* pstuPaperInfo, DWORD dwCount)
{
    const auto pNames = AllocateField<VelUtility::WideName>(dwCount);
    const auto pPapers = AllocateField<WORD>(dwCount);
    const auto pSizes = AllocateField<POINT>(dwCount);
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
    TRACE_FUNCTION("GetPaperInfoList");
    const DWORD dwCount = std::min(CountPapers(), dwRoom);
    if (pstuPaperInfo == nullptr)
    {
        return dwCount;
    }
    return FillList(pstuPaperInfo, dwCount) ? dwCount : VelUtility::kNoAnswer;
}

int GetDevDefPaperName(const stuPassData* stuPassData, wchar_t* aszPaperName)
{
    TRACE_FUNCTION("GetDevDefPaperName");
    const WORD wPaper = static_cast<WORD>(stuPassData->pdmIn->stuDevmode.dmPaperSize);
    for (DWORD i = 0; i < stuPassData->dwCount; ++i)
    {
        if (stuPassData->pstuPaperInfo[i].wPaper == wPaper)
        {
            wcscpy_s(aszPaperName, kPaperNameUnits, stuPassData->pstuPaperInfo[i].aszPaperName);
            return 1;
        }
    }
    LOG_PARAM("%s(%d) : aszPaperName = %s\n", kSourceModule, __LINE__,
              ToLogText(static_cast<PCWSTR>(aszPaperName)).c_str());
    return 0;
}

int SubCheckPaperName(const stuPaperInfo* pstuPaperInfo, const DWORD& dwCount, wchar_t* pszPaperName, const int& iUserX,
                      const int& iUserY)
{
    TRACE_FUNCTION("SubCheckPaperName");
    if (IsFatalEnabled())
    {
        functionTrace.AddParam("pstuPaperInfo, dwCount", &pstuPaperInfo, dwCount);
        TRACE_ARGUMENT(dwCount);
    }
    // Required: the first match in list order wins, not the closest. The custom paper takes part with its size of 0 by
    // 0.
    const stuPaperInfo* const pEnd = pstuPaperInfo + dwCount;
    const stuPaperInfo* const pFound = std::find_if(pstuPaperInfo, pEnd, [&](const stuPaperInfo& stuInfo) {
        return IsNear(stuInfo.stuPaperSize.x, iUserX) && IsNear(stuInfo.stuPaperSize.y, iUserY);
    });
    CopyName(pszPaperName, pFound != pEnd ? pFound->aszPaperName : CustomName().aszName);
    LOG_PARAM("%s(%d) : pszPaperName = %s\n", kSourceModule, __LINE__,
              ToLogText(static_cast<PCWSTR>(pszPaperName)).c_str());
    LOG_PARAM("%s(%d) : iUserX = %s\n", kSourceModule, __LINE__, ToLogText(iUserX).c_str());
    LOG_PARAM("%s(%d) : iUserY = %s\n", kSourceModule, __LINE__, ToLogText(iUserY).c_str());
    return 1;
}
