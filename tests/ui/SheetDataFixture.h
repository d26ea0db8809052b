#pragma once
/// A sheet's private data as the pages get it, and the papers behind it, without a sheet around them.

#include "settings/PaperCatalogue.h"
#include "tests/common/BuiltModule.h"
#include "tests/common/ClientFixture.h"
#include "tests/common/TextsFrom.h"
#include "ui/SheetData.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

/// One configured paper.
struct Paper
{
    std::wstring strName;
    int iNumber; ///< DMPAPER_
    int iX;      ///< tenths of a millimetre
    int iY;
};

/// Keys of the section DeviceCapabilities.
using CapKeys = std::vector<std::pair<std::wstring, std::wstring>>;

/// The keys of a list of papers, followed by others.
inline CapKeys PaperKeys(const std::vector<Paper>& papers, const CapKeys& others = {})
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

/// Papers that most tests use.
inline const std::vector<Paper> kPapers = {
    {L"A4", 9, 2100, 2970}, {L"A3", 8, 2970, 4200}, {L"A5", 11, 1480, 2100}, {L"Letter", 1, 2159, 2794}};

/// A printer that can turn the paper, print in colour and on both sides.
inline const CapKeys kAbleKeys = {{L"Orientation", L"90"}, {L"ColorDevice", L"1"}, {L"Duplex", L"1"}};

/// The driver's record for one-sided monochrome A4, upright.
inline stuDrvDevmode PlainRecord()
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

/// A call of the sheet library's function by a page.
struct LibraryCall
{
    HANDLE hComPropSheet;
    UINT uiFunction;
    LPARAM lParam1;
    LPARAM lParam2;
};

struct SheetDataFixture : ClientFixture
{
    SheetDataFixture()
    {
        data.pdmIn = &in;
        data.pdmOut = &out;
        data.pfnComPropSheet = &SheetDataFixture::OnLibraryCall;
        data.hComPropSheet = this;
        data.hSetPage = 0x5E7;
        data.hSeniorPage = 0x5E1;
        data.bPassResult = 1;
    }

    /// Writes a snapshot and builds the list from it, as the sheet does.
    void UsePapers(const std::vector<Paper>& papers, const CapKeys& others = kAbleKeys)
    {
        WriteCaps(PaperKeys(papers, others));
        list.assign(GetPaperInfoList(nullptr) + size_t{1}, stuPaperInfo{});
        data.pstuPaperInfo = list.data();
        data.dwCount = GetPaperInfoList(list.data()) + 1;
    }

    std::wstring DevModeFile() const { return folder.File(L"QPS@VEL_DevMode.dat"); }
    std::wstring DefSettingFile() const { return folder.File(L"QPS@VEL_defsetting.ini"); }

    BuiltModule module;
    const TextsFrom texts{module.handle};
    stuDrvDevmode in = {};
    stuDrvDevmode out = {};
    std::vector<stuPaperInfo> list;
    stuPassData data = {};
    std::vector<LibraryCall> calls;
    std::function<void()> onCall = [] {}; ///< what is to be looked at while a page calls the library

private:
    static LONG_PTR CALLBACK OnLibraryCall(HANDLE hComPropSheet, UINT uiFunction, LPARAM lParam1, LPARAM lParam2)
    {
        auto* const pThis = static_cast<SheetDataFixture*>(hComPropSheet);
        pThis->calls.push_back({hComPropSheet, uiFunction, lParam1, lParam2});
        pThis->onCall();
        return 1;
    }
};
