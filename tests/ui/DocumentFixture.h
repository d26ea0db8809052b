#pragma once
/// A document sheet's calls as the sheet library makes them, on records of the caller's.

#include "tests/common/LogLines.h"
#include "tests/driver/SheetCalls.h"

#include <cstring>
#include <string>
#include <vector>

using Lines = std::vector<std::string>;

/// A client with four papers, and a caller whose records hold a pattern.
struct DocumentFixture : ClientFixture
{
    DocumentFixture()
    {
        WriteCaps(PaperKeys(kPapers, kAbleKeys));
        memset(&callerIn, 0x31, sizeof(callerIn));
        callerIn.stuDevmode.dmSize = 220;
        callerIn.stuDevmode.dmDriverExtra = 12;
        memset(&callerOut, 0x32, sizeof(callerOut));
        calls.header.pdmIn = &callerIn.stuDevmode;
        calls.header.pdmOut = &callerOut.stuDevmode;
    }
    void StoreSetting(const char* pszValue) const
    {
        WriteFileBytes(folder.File(L"QPS@VEL_defsetting.ini"),
                       std::string("[PrintSetting]\r\nDefaultNoWaterPrint=") + pszValue + "\r\n");
    }

    BuiltModule module;
    DocumentCalls calls{module.DocumentSheets};
    stuDrvDevmode callerIn;
    stuDrvDevmode callerOut;
};

/// The same through the code in the test program, whose log tests can read.
struct LoggedDocumentFixture : DocumentFixture
{
    LoggedDocumentFixture() { calls.pfnEntry = &DrvDocumentPropertySheets; }
    Lines Own() const { return OwnLines(logging, "DrvDocumentPropertySheets"); }

    const TextsFrom texts{module.handle};
    LoggingOn logging{"OutputParam", "OutputFunBeginInfo"};
};
