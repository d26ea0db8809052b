#include "tools/velhost/host/Snapshot.h"

namespace VelHost
{

Snapshot::Snapshot(const AskCaps& ask) : m_stuCaps()
{
    TakeList(ask, DC_BINNAMES, m_stuCaps.BinNames, m_stuCaps.BinNamesCount);
    TakeList(ask, DC_BINS, m_stuCaps.Bins, m_stuCaps.BinsCount);
    TakeList(ask, DC_ENUMRESOLUTIONS, m_stuCaps.Resolutions, m_stuCaps.ResolutionCount);
    TakeList(ask, DC_MEDIAREADY, m_stuCaps.MediaReady, m_stuCaps.MediaReadyCount);
    TakeList(ask, DC_MEDIATYPENAMES, m_stuCaps.MediaTypeNames, m_stuCaps.MediaTypeNamesCount);
    TakeList(ask, DC_MEDIATYPES, m_stuCaps.MediaTypes, m_stuCaps.MediaTypesCount);
    TakeList(ask, DC_PAPERNAMES, m_stuCaps.PaperNames, m_stuCaps.PaperNamesCount);
    TakeList(ask, DC_PAPERS, m_stuCaps.Papers, m_stuCaps.PapersCount);
    TakeList(ask, DC_PAPERSIZE, m_stuCaps.PaperSizes, m_stuCaps.PaperSizeCount);

    const struct
    {
        WORD wCode;
        DWORD VelUtility::PrinterCaps::*pValue;
    } values[] = {
        {DC_COLLATE, &VelUtility::PrinterCaps::Collate},
        {DC_COLORDEVICE, &VelUtility::PrinterCaps::ColorDevice},
        {DC_COPIES, &VelUtility::PrinterCaps::Copies},
        {DC_DUPLEX, &VelUtility::PrinterCaps::Duplex},
        {DC_MAXEXTENT, &VelUtility::PrinterCaps::MaxExtent},
        {DC_MINEXTENT, &VelUtility::PrinterCaps::MinExtent},
        {DC_ORIENTATION, &VelUtility::PrinterCaps::Orientation},
        {DC_PRINTERMEM, &VelUtility::PrinterCaps::PrintMem},
        {DC_PRINTRATE, &VelUtility::PrinterCaps::PrintRate},
        {DC_PRINTRATEPPM, &VelUtility::PrinterCaps::PrintPPM},
        {DC_PRINTRATEUNIT, &VelUtility::PrinterCaps::PrintRateUnit},
    };
    for (const auto& value : values)
    {
        m_stuCaps.*value.pValue = QueryCaps(ask, FindCapsCode(value.wCode)).dwAnswer;
    }
}

template <class Entry>
void Snapshot::TakeList(const AskCaps& ask, WORD wCode, const Entry*& pEntries, DWORD& dwCount)
{
    CapsAnswer answer = QueryCaps(ask, FindCapsCode(wCode));
    // A list that changed between the two questions, or that went wrong, is not taken.
    const bool bWhole = answer.strNote.empty() && answer.EntryCount() == answer.dwAnswer &&
                        answer.entries.size() == answer.dwAnswer * sizeof(Entry) && !answer.entries.empty();
    if (!bWhole)
    {
        pEntries = nullptr;
        dwCount = 0;
        return;
    }
    dwCount = answer.dwAnswer;
    // The bytes stay where they are when the vector that holds them is moved.
    m_lists.push_back(std::move(answer));
    pEntries = reinterpret_cast<const Entry*>(m_lists.back().entries.data());
}

} // namespace VelHost
