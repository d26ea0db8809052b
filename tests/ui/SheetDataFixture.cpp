#include "tests/ui/SheetDataFixture.h"

CapKeys PaperKeys(const std::vector<Paper>& papers, const CapKeys& others)
{
    const std::wstring strCount = std::to_wstring(papers.size());
    CapKeys keys = {{L"PapersCount", strCount}, {L"PaperNamesCount", strCount}, {L"PaperSizeCount", strCount}};
    for (size_t i = 0; i < papers.size(); ++i)
    {
        const std::wstring strIndex = std::to_wstring(i);
        keys.emplace_back(L"PaperNames" + strIndex, papers[i].strName);
        keys.emplace_back(L"Papers" + strIndex, std::to_wstring(papers[i].iNumber));
        keys.emplace_back(L"PaperSizeX" + strIndex, std::to_wstring(papers[i].iX));
        keys.emplace_back(L"PaperSizeY" + strIndex, std::to_wstring(papers[i].iY));
    }
    keys.insert(keys.end(), others.begin(), others.end());
    return keys;
}

stuDrvDevmode PlainRecord()
{
    stuDrvDevmode record = {};
    record.stuDevmode.dmSpecVersion = 0x401;
    record.stuDevmode.dmDriverVersion = 0x500;
    record.stuDevmode.dmSize = 220;
    record.stuDevmode.dmDriverExtra = 12;
    record.stuDevmode.dmFields = 0x9903;
    record.stuDevmode.dmOrientation = 1;
    record.stuDevmode.dmPaperSize = 9;
    record.stuDevmode.dmCopies = 3;
    record.stuDevmode.dmColor = 1;
    record.stuDevmode.dmDuplex = 1;
    return record;
}

SheetDataFixture::SheetDataFixture()
{
    data.pdmIn = &in;
    data.pdmOut = &out;
    data.pfnComPropSheet = &SheetDataFixture::OnLibraryCall;
    data.hComPropSheet = this;
    data.hSetPage = 0x5E7;
    data.hSeniorPage = 0x5E1;
    data.bPassResult = 1;
}

void SheetDataFixture::UsePapers(const std::vector<Paper>& papers, const CapKeys& others)
{
    WriteCaps(PaperKeys(papers, others));
    list.assign(GetPaperInfoList(nullptr) + size_t{1}, stuPaperInfo{});
    data.pstuPaperInfo = list.data();
    data.dwCount = GetPaperInfoList(list.data()) + 1;
}

LONG_PTR CALLBACK SheetDataFixture::OnLibraryCall(HANDLE hComPropSheet, UINT uiFunction, LPARAM lParam1, LPARAM lParam2)
{
    auto* const pThis = static_cast<SheetDataFixture*>(hComPropSheet);
    pThis->calls.push_back({hComPropSheet, uiFunction, lParam1, lParam2});
    pThis->onCall();
    return 1;
}
