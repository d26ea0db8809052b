#include "state/CapabilitySnapshot.h"

#include "diag/LogSite.h"
#include "state/FileLocker.h"
#include "state/Profile.h"
#include "state/StorePaths.h"
#include "support/Memory.h"

#include <algorithm>
#include <cstring>

VELUI_SOURCE_MODULE(".\\ClientInfo");

namespace VelUtility
{

namespace
{

/// The texts of section Printer, in the order of writing.
constexpr TextRow<PrinterInfo> kPrinterTexts[] = {
    {L"PrinterName", &PrinterInfo::PrinterName},
    {L"Location", &PrinterInfo::Location},
    {L"Description", &PrinterInfo::Description},
};

/// Writes one row of the capability table, a list's count in front of its elements.
/// @return whether all writes succeeded; the first that fails leaves a line and ends the row.
class CapWriter
{
public:
    CapWriter(const CapRow& row, const PrinterCaps& caps, const wchar_t* pszFile)
        : m_row(row), m_caps(caps), m_pszFile(pszFile)
    {}

    bool operator()(const CapNumber& number) const { return WriteFirst(m_caps.*number.pValue); }
    bool operator()(const CapList<WORD>& list) const { return WriteNumbers(list); }
    bool operator()(const CapList<DWORD>& list) const { return WriteNumbers(list); }
    bool operator()(const CapList<NarrowName>& list) const { return WriteNames(list); }
    bool operator()(const CapList<WideName>& list) const { return WriteNames(list); }
    bool operator()(const CapPairs<Resolution>& pairs) const
    {
        return WriteFirst(m_caps.*pairs.pCount) &&
               LOGGED_WRITE(WritePrivateProfileResolutoinArray, kCapsSection, pairs.pszBaseKeyX, pairs.pszBaseKeyY,
                            m_caps.*pairs.pElements, m_caps.*pairs.pCount, m_pszFile);
    }
    bool operator()(const CapPairs<POINT>& pairs) const
    {
        return WriteFirst(m_caps.*pairs.pCount) &&
               LOGGED_WRITE(WritePrivateProfilePointArray, kCapsSection, pairs.pszBaseKeyX, pairs.pszBaseKeyY,
                            m_caps.*pairs.pElements, m_caps.*pairs.pCount, m_pszFile);
    }

private:
    bool WriteFirst(DWORD dwValue) const
    {
        return LOGGED_WRITE(WritePrivateProfileUINT, kCapsSection, m_row.pszKey, dwValue, m_pszFile);
    }
    template <typename Number>
    bool WriteNumbers(const CapList<Number>& list) const
    {
        return WriteFirst(m_caps.*list.pCount) &&
               LOGGED_WRITE(WritePrivateProfileUINTArray, kCapsSection, list.pszBaseKey, m_caps.*list.pElements,
                            m_caps.*list.pCount, m_pszFile);
    }
    template <typename Name>
    bool WriteNames(const CapList<Name>& list) const
    {
        return WriteFirst(m_caps.*list.pCount) &&
               LOGGED_WRITE(WritePrivateProfileStringWArray, kCapsSection, list.pszBaseKey, m_caps.*list.pElements,
                            m_caps.*list.pCount, m_pszFile);
    }

    const CapRow& m_row;
    const PrinterCaps& m_caps;
    const wchar_t* m_pszFile;
};

/// Reads one row of the capability table for a caller with a buffer; the caller holds the file's lock.
/// @return the number, or the count of entries read, or 0xFFFFFFFF.
class CapReader
{
public:
    /// @param dwFirst the number of the row's first key: the answer itself, or a list's count.
    CapReader(const wchar_t* pszFile, void* pvOutput, DWORD dwFirst, DWORD dwRoom)
        : m_pszFile(pszFile), m_pvOutput(pvOutput), m_dwFirst(dwFirst), m_dwCount(std::min(dwFirst, dwRoom))
    {}

    DWORD operator()(const CapNumber& /*number*/) const { return m_dwFirst; }

    DWORD operator()(const CapList<WORD>& list) const
    {
        const auto pValues = AllocateArray<DWORD>(m_dwCount);
        if (!pValues)
        {
            return kNoAnswer;
        }
        const DWORD dwResult = SubCmpCaps_IntArray(list.pszBaseKey, m_pszFile, pValues.get(), m_dwCount);
        // Required: all entries are copied also after a failed read, 0xFFFF where it failed and 0 behind, so that a
        // caller that does not ask for the result finds no papers of an earlier answer in its buffer.
        for (DWORD dwIndex = 0; dwIndex < m_dwCount; ++dwIndex)
        {
            static_cast<WORD*>(m_pvOutput)[dwIndex] = static_cast<WORD>(pValues[dwIndex]);
        }
        return dwResult;
    }

    DWORD operator()(const CapList<DWORD>& list) const
    {
        return SubCmpCaps_IntArray(list.pszBaseKey, m_pszFile, static_cast<DWORD*>(m_pvOutput), m_dwCount);
    }

    template <size_t uiWidth>
    DWORD operator()(const CapList<wchar_t[uiWidth]>& list) const
    {
        return SubCmpCaps_StrArray(list.pszBaseKey, m_pszFile, static_cast<wchar_t*>(m_pvOutput), m_dwCount, uiWidth);
    }

    template <typename Pair>
    DWORD operator()(const CapPairs<Pair>& pairs) const
    {
        const auto pX = AllocateArray<DWORD>(m_dwCount);
        const auto pY = AllocateArray<DWORD>(m_dwCount);
        if (!pX || !pY)
        {
            return kNoAnswer;
        }
        DWORD dwResult = SubCmpCaps_IntArray(pairs.pszBaseKeyX, m_pszFile, pX.get(), m_dwCount);
        if (dwResult != kNoAnswer)
        {
            dwResult = SubCmpCaps_IntArray(pairs.pszBaseKeyY, m_pszFile, pY.get(), m_dwCount);
        }
        if (dwResult != kNoAnswer)
        {
            for (DWORD dwIndex = 0; dwIndex < m_dwCount; ++dwIndex)
            {
                static_cast<Pair*>(m_pvOutput)[dwIndex] = {static_cast<LONG>(pX[dwIndex]),
                                                           static_cast<LONG>(pY[dwIndex])};
            }
        }
        return dwResult;
    }

private:
    const wchar_t* m_pszFile;
    void* m_pvOutput;
    DWORD m_dwFirst;
    DWORD m_dwCount;
};

bool WritePrinter(const PrinterInfo& info, const wchar_t* pszFile)
{
    return std::all_of(std::begin(kPrinterTexts), std::end(kPrinterTexts), [&](const TextRow<PrinterInfo>& row) {
        return LOGGED_WRITE(WritePrivateProfileStringW, kPrinterSection, row.pszKey, (info.*row.pText).c_str(),
                            pszFile);
    });
}

bool WriteCaps(const PrinterCaps& caps, const wchar_t* pszFile)
{
    return std::all_of(std::begin(kCapRows), std::end(kCapRows),
                       [&](const CapRow& row) { return std::visit(CapWriter(row, caps, pszFile), row.form); });
}

/// Answers one capability from the file; the caller holds the file's lock.
DWORD AnswerFromFile(const CapRow& row, const wchar_t* pszFile, void* pvOutput, DWORD dwRoom)
{
    const DWORD dwFirst = SubCmpCaps_Rtn(row.pszKey, pszFile);
    if (dwFirst == kNoAnswer || pvOutput == nullptr)
    {
        return dwFirst;
    }
    return std::visit(CapReader(pszFile, pvOutput, dwFirst, dwRoom), row.form);
}

/// Answers one capability under the file's lock.
DWORD AnswerLocked(WORD iDevCap, const wchar_t* pszFile, void* pvOutput, DWORD dwRoom)
{
    const CScopeFileLock lock(pszFile);
    const CapRow* const pRow = FindCapRow(iDevCap);
    return pRow != nullptr ? AnswerFromFile(*pRow, pszFile, pvOutput, dwRoom) : kNoAnswer;
}

} // namespace

DWORD MakePrinterConfig(const PrinterInfo* pstuInfo, const PrinterCaps* pstuCaps)
{
    const FunctionScope scope("VelUtility::MakePrinterConfig");
    StorePath szPath = {};
    if (MakeConfigFilePath(szPath))
    {
        const CScopeFileLock lock(szPath);
        if (WritePrinter(*pstuInfo, szPath))
        {
            WriteCaps(*pstuCaps, szPath);
        }
    }
    // Required: 0 in every case. The programs that take a snapshot go on without one; the log is the only witness of a
    // failed one.
    return PSERR_OK;
}

DWORD GetPrinterInfo(PrinterInfo* pstuInfo)
{
    const FunctionScope scope("VelUtility::GetPrinterInfo");
    StorePath szPath;
    if (!MakeConfigFilePath(szPath))
    {
        return PSERR_FAILED;
    }
    const CScopeFileLock lock(szPath);
    ReadTexts(kPrinterSection, kPrinterTexts, *pstuInfo, szPath);
    return PSERR_OK;
}

DWORD GetComputerCaps(WORD iDevCap, void* pvOutput, DWORD dwRoom)
{
    const FunctionScope scope("VelUtility::GetComputerCaps");
    LOG_IF(IsDebugEnabled(), LogDebug("GetComputerCaps(%d)", iDevCap));
    StorePath szPath;
    if (!MakeConfigFilePath(szPath))
    {
        return kNoAnswer; // Required: without the line below, which tells what a file has answered
    }
    const DWORD dwResult = AnswerLocked(iDevCap, szPath, pvOutput, dwRoom);
    LOG_DEBUG("GetComputerCaps returns %u", static_cast<unsigned>(dwResult));
    return dwResult;
}

DWORD SubCmpCaps_Rtn(const wchar_t* pszKey, const wchar_t* pszFile)
{
    const FunctionScope scope("VelUtility::SubCmpCaps_Rtn");
    return GetPrivateProfileIntW(kCapsSection, pszKey, -1, pszFile);
}

DWORD SubCmpCaps_IntArray(const wchar_t* pszBaseKey, const wchar_t* pszFile, DWORD* pdwValues, DWORD dwCount)
{
    const FunctionScope scope("VelUtility::SubCmpCaps_IntArray");
    for (DWORD dwIndex = 0; dwIndex < dwCount; ++dwIndex)
    {
        pdwValues[dwIndex] = GetPrivateProfileIntW(kCapsSection, ElementKey(pszBaseKey, dwIndex), -1, pszFile);
        // Required: a stored -1 is taken as a missing key; a value that a printer refuses is stored so.
        if (pdwValues[dwIndex] == kNoAnswer)
        {
            LOG_ERROR("GetPrivateProfileIntW returns GDI_ERROR");
            return kNoAnswer;
        }
    }
    return dwCount;
}

DWORD SubCmpCaps_StrArray(const wchar_t* pszBaseKey, const wchar_t* pszFile, wchar_t* pszValues, DWORD dwCount,
                          DWORD dwWidth)
{
    const FunctionScope scope("VelUtility::SubCmpCaps_StrArray");
    const auto szName = AllocateArray<wchar_t>(dwWidth + size_t{1});
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
        // without a terminator. Which names pass decides which lists applications get of a snapshot that is in use;
        // that must not change with an update of the module.
        if (IsRefusedLength(dwLength, dwWidth))
        {
            return kNoAnswer;
        }
    }
    return dwCount;
}

} // namespace VelUtility
