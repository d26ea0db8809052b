#pragma once
/// The document sheet shown to a person, by velhost's sheet library or by the spooler.

#include "settings/DriverDevmode.h"
#include "tests/common/ClientFixture.h"
#include "tests/common/TestPrinter.h"
#include "tests/ui/OpenSheet.h"
#include "tests/ui/PageWindow.h"
#include "tests/ui/SheetDataFixture.h"
#include "tools/velhost/sheet/SheetLibrary.h"

#include <catch2/catch_test_macros.hpp>

#include <winspool.h>

#include <memory>

enum class Road
{
    Hosted, ///< by velhost's sheet library, which carries results
    Spooled ///< by the spooler, whose library does not
};

/// A client with four papers, and a document's record.
struct DrivenFixture : ClientFixture
{
    DrivenFixture() { WriteCaps(PaperKeys(kPapers, kAbleKeys)); }

    /// Opens the document sheet on the record.
    OpenSheet Open(Road road)
    {
        if (road == Road::Spooled && !printer)
        {
            printer = std::make_unique<TestPrinter>(*this);
        }
        return OpenSheet([this, road] {
            // What an application does: the record goes in and comes out.
            stuDrvDevmode in = record;
            result = record;
            road == Road::Hosted ? ShowHosted(in) : ShowSpooled(in);
        });
    }
    void ShowHosted(stuDrvDevmode& in)
    {
        DOCUMENTPROPERTYHEADER header = {};
        header.cbSize = sizeof(header);
        header.pdmIn = &in.stuDevmode;
        header.pdmOut = &result.stuDevmode;
        header.cbOut = sizeof(result);
        header.fMode = DM_IN_BUFFER | DM_IN_PROMPT | DM_OUT_BUFFER;
        VelHost::SheetLibrary library(module.DocumentSheets, reinterpret_cast<LPARAM>(&header));
        outcome = library.Show(nullptr, L"VelPrinter");
    }
    void ShowSpooled(stuDrvDevmode& in)
    {
        std::wstring strName = printer->Name();
        lSpooled = DocumentPropertiesW(nullptr, printer->Get(), strName.data(), &result.stuDevmode, &in.stuDevmode,
                                       DM_IN_BUFFER | DM_IN_PROMPT | DM_OUT_BUFFER);
    }

    /// The user's stored record; all 0 without one.
    DEVMODEW Stored() const
    {
        DEVMODEW stored = {};
        const std::string strBytes = ReadFileBytes(folder.File(L"QPS@VEL_DevMode.dat"));
        CHECK((strBytes.empty() || strBytes.size() == 220));
        memcpy(&stored, strBytes.data(), strBytes.size());
        return stored;
    }
    std::wstring StoredRequest() const
    {
        wchar_t szValue[16] = {};
        GetPrivateProfileStringW(L"PrintSetting", L"DefaultNoWaterPrint", L"none", szValue, 16,
                                 folder.File(L"QPS@VEL_defsetting.ini").c_str());
        return szValue;
    }
    /// What the result is to be, when only these differ from the record. The bits of colour and duplex are set already.
    void CheckResult(const stuDrvDevmode& expected)
    {
        CHECK(memcmp(&result, &expected, sizeof(expected)) == 0);
        const DEVMODEW stored = Stored();
        CHECK(memcmp(&stored, &expected, 220) == 0);
    }

    BuiltModule module;
    std::unique_ptr<TestPrinter> printer;
    stuDrvDevmode record = PlainRecord();
    stuDrvDevmode result = {};
    VelHost::SheetOutcome outcome;
    LONG lSpooled = 0;
};

inline void Click(HWND hPage, int iControl)
{
    SendMessageW(GetDlgItem(hPage, iControl), BM_CLICK, 0, 0);
}

inline bool Checked(HWND hPage, int iControl)
{
    return SendMessageW(GetDlgItem(hPage, iControl), BM_GETCHECK, 0, 0) == BST_CHECKED;
}
