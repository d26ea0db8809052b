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
CapKeys PaperKeys(const std::vector<Paper>& papers, const CapKeys& others = {});

/// Papers that most tests use.
inline const std::vector<Paper> kPapers = {
    {L"A4", 9, 2100, 2970}, {L"A3", 8, 2970, 4200}, {L"A5", 11, 1480, 2100}, {L"Letter", 1, 2159, 2794}};

/// A printer that can turn the paper, print in colour and on both sides.
inline const CapKeys kAbleKeys = {{L"Orientation", L"90"}, {L"ColorDevice", L"1"}, {L"Duplex", L"1"}};

/// The driver's record for one-sided monochrome A4, upright.
stuDrvDevmode PlainRecord();

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
    SheetDataFixture();

    /// Writes a snapshot and builds the list from it, as the sheet does.
    void UsePapers(const std::vector<Paper>& papers, const CapKeys& others = kAbleKeys);

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
    static LONG_PTR CALLBACK OnLibraryCall(HANDLE hComPropSheet, UINT uiFunction, LPARAM lParam1, LPARAM lParam2);
};
