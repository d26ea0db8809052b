#include "state/ComputerCaps.h"

#include "diag/LogSite.h"
#include "state/ConfigSections.h"
#include "state/FileLocker.h"
#include "state/PrinterCaps.h"
#include "state/ProfileKey.h"
#include "state/StorePaths.h"
#include "state/StoreTypes.h"
#include "support/FreeDeleter.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>

VELUI_SOURCE_MODULE(".\\ClientInfo");

namespace VelUtility
{

namespace
{

/// How a capability lies in the file and in the caller's buffer.
enum class CapForm
{
    Number,      ///< one number, no buffer
    Words,       ///< list of 16-bit numbers
    Pairs,       ///< list of pairs of 32-bit numbers
    Dwords,      ///< list of 32-bit numbers
    NarrowNames, ///< list of names of 24 wide characters
    WideNames    ///< list of names of 64 wide characters
};

/// One capability of the snapshot.
struct CapRow
{
    WORD iDevCap;
    CapForm form;
    const wchar_t* pszFirstKey;      ///< the number's key, or the list's count key
    const wchar_t* pszBaseKey;       ///< the list's base key; of pairs the x
    const wchar_t* pszSecondBaseKey; ///< of pairs the y
};

constexpr CapRow kCapRows[] = {
    {DC_PAPERS, CapForm::Words, L"PapersCount", L"Papers", nullptr},
    {DC_PAPERSIZE, CapForm::Pairs, L"PaperSizeCount", L"PaperSizeX", L"PaperSizeY"},
    {DC_MINEXTENT, CapForm::Number, L"MinExtent", nullptr, nullptr},
    {DC_MAXEXTENT, CapForm::Number, L"MaxExtent", nullptr, nullptr},
    {DC_BINS, CapForm::Words, L"BinsCount", L"Bins", nullptr},
    {DC_DUPLEX, CapForm::Number, L"Duplex", nullptr, nullptr},
    {DC_BINNAMES, CapForm::NarrowNames, L"BinNamesCount", L"BinNames", nullptr},
    {DC_ENUMRESOLUTIONS, CapForm::Pairs, L"ResolutionCount", L"ResolutionX", L"ResolutionY"},
    {DC_PAPERNAMES, CapForm::WideNames, L"PaperNamesCount", L"PaperNames", nullptr},
    {DC_ORIENTATION, CapForm::Number, L"Orientation", nullptr, nullptr},
    {DC_COPIES, CapForm::Number, L"Copies", nullptr, nullptr},
    {DC_COLLATE, CapForm::Number, L"Collate", nullptr, nullptr},
    {DC_PRINTRATE, CapForm::Number, L"PrintRate", nullptr, nullptr},
    {DC_PRINTRATEUNIT, CapForm::Number, L"PrintRateUnit", nullptr, nullptr},
    {DC_PRINTERMEM, CapForm::Number, L"PrintMem", nullptr, nullptr},
    {DC_MEDIAREADY, CapForm::WideNames, L"MediaReadyCount", L"MediaReady", nullptr},
    {DC_PRINTRATEPPM, CapForm::Number, L"PrintPPM", nullptr, nullptr},
    {DC_COLORDEVICE, CapForm::Number, L"ColorDevice", nullptr, nullptr},
    {DC_MEDIATYPENAMES, CapForm::WideNames, L"MediaTypeNamesCount", L"MediaTypeNames", nullptr},
    {DC_MEDIATYPES, CapForm::Dwords, L"MediaTypesCount", L"MediaTypes", nullptr},
};

const CapRow* FindCapRow(WORD iDevCap)
{
    for (const CapRow& row : kCapRows)
    {
        if (row.iDevCap == iDevCap)
        {
            return &row;
        }
    }
    return nullptr;
}

template <typename T>
using Scratch = MallocPtr<T[]>;

/// Zeroed room for a list, or null when there is no memory for it.
template <typename T>
Scratch<T> AllocateScratch(size_t uiCount)
{
    return Scratch<T>(static_cast<T*>(std::calloc(uiCount, sizeof(T))));
}

DWORD ReadWords(const CapRow& row, const wchar_t* pszFile, WORD* pwOutput, DWORD dwCount)
{
    const Scratch<DWORD> pValues = AllocateScratch<DWORD>(dwCount);
    if (!pValues)
    {
        return kNoAnswer;
    }
    const DWORD dwResult = SubCmpCaps_IntArray(row.pszBaseKey, pszFile, pValues.get(), dwCount);
    // Required: all entries are copied also after a failed read: 0xFFFF where it failed, 0 behind.
    for (DWORD dwIndex = 0; dwIndex < dwCount; ++dwIndex)
    {
        pwOutput[dwIndex] = static_cast<WORD>(pValues[dwIndex]);
    }
    return dwResult;
}

DWORD ReadPairs(const CapRow& row, const wchar_t* pszFile, POINT* pstuOutput, DWORD dwCount)
{
    const Scratch<DWORD> pX = AllocateScratch<DWORD>(dwCount);
    const Scratch<DWORD> pY = AllocateScratch<DWORD>(dwCount);
    if (!pX || !pY)
    {
        return kNoAnswer;
    }
    DWORD dwResult = SubCmpCaps_IntArray(row.pszBaseKey, pszFile, pX.get(), dwCount);
    if (dwResult != kNoAnswer)
    {
        dwResult = SubCmpCaps_IntArray(row.pszSecondBaseKey, pszFile, pY.get(), dwCount);
    }
    if (dwResult != kNoAnswer)
    {
        for (DWORD dwIndex = 0; dwIndex < dwCount; ++dwIndex)
        {
            pstuOutput[dwIndex] = {static_cast<LONG>(pX[dwIndex]), static_cast<LONG>(pY[dwIndex])};
        }
    }
    return dwResult;
}

/// Answers one capability from the file; the caller holds the file's lock.
DWORD AnswerFromFile(const CapRow& row, const wchar_t* pszFile, void* pvOutput, DWORD dwRoom)
{
    const DWORD dwFirst = SubCmpCaps_Rtn(row.pszFirstKey, pszFile);
    if (row.form == CapForm::Number || dwFirst == kNoAnswer || pvOutput == nullptr)
    {
        return dwFirst;
    }
    const DWORD dwCount = std::min(dwFirst, dwRoom);
    switch (row.form)
    {
    case CapForm::Words:
        return ReadWords(row, pszFile, static_cast<WORD*>(pvOutput), dwCount);
    case CapForm::Pairs:
        return ReadPairs(row, pszFile, static_cast<POINT*>(pvOutput), dwCount);
    case CapForm::Dwords:
        return SubCmpCaps_IntArray(row.pszBaseKey, pszFile, static_cast<DWORD*>(pvOutput), dwCount);
    case CapForm::NarrowNames:
        return SubCmpCaps_StrArray(row.pszBaseKey, pszFile, static_cast<wchar_t*>(pvOutput), dwCount, kNarrowNameUnits);
    default:
        return SubCmpCaps_StrArray(row.pszBaseKey, pszFile, static_cast<wchar_t*>(pvOutput), dwCount, kWideNameUnits);
    }
}

DWORD AnswerLocked(WORD iDevCap, void* pvOutput, DWORD dwRoom)
{
    wchar_t szPath[kStorePathUnits];
    if (!MakeConfigFilePath(szPath))
    {
        return kNoAnswer;
    }
    const CScopeFileLock lock(szPath);
    const CapRow* const pRow = FindCapRow(iDevCap);
    return pRow != nullptr ? AnswerFromFile(*pRow, szPath, pvOutput, dwRoom) : kNoAnswer;
}

} // namespace

DWORD GetComputerCaps(WORD iDevCap, void* pvOutput, DWORD dwRoom)
{
    TRACE_FUNCTION("VelUtility::GetComputerCaps");
    if (IsDebugEnabled())
    {
        LogDebug("GetComputerCaps(%d)", iDevCap);
    }
    const DWORD dwResult = AnswerLocked(iDevCap, pvOutput, dwRoom);
    LOG_DEBUG("GetComputerCaps returns %u", static_cast<unsigned>(dwResult));
    return dwResult;
}

DWORD SubCmpCaps_Rtn(const wchar_t* pszKey, const wchar_t* pszFile)
{
    TRACE_FUNCTION("VelUtility::SubCmpCaps_Rtn");
    return GetPrivateProfileIntW(kCapsSection, pszKey, -1, pszFile);
}

DWORD SubCmpCaps_IntArray(const wchar_t* pszBaseKey, const wchar_t* pszFile, DWORD* pdwValues, DWORD dwCount)
{
    TRACE_FUNCTION("VelUtility::SubCmpCaps_IntArray");
    for (DWORD dwIndex = 0; dwIndex < dwCount; ++dwIndex)
    {
        pdwValues[dwIndex] = GetPrivateProfileIntW(kCapsSection, ElementKey(pszBaseKey, dwIndex), -1, pszFile);
        // Required: a stored -1 is taken as a missing key.
        if (pdwValues[dwIndex] == kNoAnswer)
        {
            LOG_ERROR_WORDS("GetPrivateProfileIntW returns GDI_ERROR");
            return kNoAnswer;
        }
    }
    return dwCount;
}

DWORD SubCmpCaps_StrArray(const wchar_t* pszBaseKey, const wchar_t* pszFile, wchar_t* pszValues, DWORD dwCount,
                          DWORD dwWidth)
{
    TRACE_FUNCTION("VelUtility::SubCmpCaps_StrArray");
    const Scratch<wchar_t> szName = AllocateScratch<wchar_t>(dwWidth + size_t{1});
    if (!szName)
    {
        return kNoAnswer;
    }
    for (DWORD dwIndex = 0; dwIndex < dwCount; ++dwIndex)
    {
        const DWORD dwLength = GetPrivateProfileStringW(kCapsSection, ElementKey(pszBaseKey, dwIndex), L"",
                                                        szName.get(), dwWidth + 1, pszFile);
        std::memcpy(pszValues + size_t{dwIndex} * dwWidth, szName.get(), dwWidth * sizeof(wchar_t));
        std::memset(szName.get(), 0, (dwWidth + size_t{1}) * sizeof(wchar_t));
        // Required: a name of exactly these two lengths fails the query, while a longer one passes, cut to the width
        // without a terminator.
        if (dwLength == dwWidth - 1 || dwLength == dwWidth - 2)
        {
            return kNoAnswer;
        }
    }
    return dwCount;
}

} // namespace VelUtility
