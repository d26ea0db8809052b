// What each entry point writes around its body, in order, with everything switched on.

#include "diag/CallStack.h"
#include "settings/DriverDevmode.h"
#include "support/module/PrinterInterface.h"
#include "tests/common/ClientFixture.h"
#include "tests/common/BuiltModule.h"
#include "tests/common/CrtLocale.h"
#include "tests/common/ImportHook.h"
#include "tests/common/LogLines.h"
#include "tests/common/TextsFrom.h"
#include "tests/driver/SheetCalls.h"

#include <log4cpp/NDC.hh>

#include <catch2/catch_test_macros.hpp>

namespace
{

using Lines = std::vector<std::string>;

/// The lines of one entry point alone, with those of the functions that it calls left out.
struct EntryLogFixture : ClientFixture
{
    LoggingOn logging{"OutputParam", "OutputFunBeginInfo"};
    Lines Own(const char* pszFunction) const { return OwnLines(logging, pszFunction); }
};

/// Ends the check for the resident client, which then writes a line where a scope is open.
BOOL WINAPI ThrowUserName(LPWSTR, LPDWORD)
{
    throw 1;
}

} // namespace

TEST_CASE_METHOD(EntryLogFixture, "DrvDeviceCapabilities logs its invocation, four arguments and the answer",
                 "[driver][log]")
{
    wchar_t szPrinter[] = L"VelPrinter";
    DrvDeviceCapabilities(reinterpret_cast<HANDLE>(0x1234), szPrinter, DC_SIZE, nullptr, nullptr);
    CHECK(Masked(logging) ==
          Lines{"VelUI_dll__DrvDeviceCapabilities :START......", "INFO - DrvDeviceCapabilities was invoked.",
                "DEBUG - VelUI(#) : hPrinter = 0x00001234", "DEBUG - VelUI(#) : pDeviceName = VelPrinter",
                "DEBUG - VelUI(#) : iDevCap = 8", "DEBUG - VelUI(#) : pvOutput = 0x00000000",
                "DEBUG - VelUI(#) : dwReturn = 220", "VelUI_dll__DrvDeviceCapabilities :End  ......"});
}

TEST_CASE_METHOD(EntryLogFixture, "a refused code leaves only the result line behind the arguments", "[driver][log]")
{
    DrvDeviceCapabilities(nullptr, nullptr, DC_FIELDS, nullptr, nullptr);
    CHECK(Masked(logging) ==
          Lines{"VelUI_dll__DrvDeviceCapabilities :START......", "INFO - DrvDeviceCapabilities was invoked.",
                "DEBUG - VelUI(#) : hPrinter = 0x00000000", "DEBUG - VelUI(#) : pDeviceName = (null)",
                "DEBUG - VelUI(#) : iDevCap = 1", "DEBUG - VelUI(#) : pvOutput = 0x00000000",
                "DEBUG - VelUI(#) : dwReturn = 4294967295", "VelUI_dll__DrvDeviceCapabilities :End  ......"});
}

TEST_CASE_METHOD(EntryLogFixture, "a room of 63 characters or a null buffer leaves two warnings", "[driver][log]")
{
    wchar_t szNames[64] = {};
    DrvSplDeviceCaps(nullptr, nullptr, DC_PAPERNAMES, szNames, 63, nullptr);
    Lines lines = Masked(logging);
    REQUIRE(lines.size() == 6);
    CHECK(lines[0] == "VelUI_dll__DrvSplDeviceCaps :START......");
    CHECK(lines[1] == "INFO - DrvSplDeviceCaps was invoked.");
    CHECK(lines[2] == "WARNING - VelUI(#) : cchBuf = 63");
    CHECK(lines[3].substr(0, 32) == "WARNING - VelUI(#) : pvOutput = ");
    CHECK(lines[4] == "Param - VelUI(#) : dwReturn = 4294967295");
    CHECK(lines[5] == "VelUI_dll__DrvSplDeviceCaps :End  ......");

    DrvSplDeviceCaps(nullptr, nullptr, DC_PAPERNAMES, nullptr, 64, nullptr);
    lines = Masked(logging);
    REQUIRE(lines.size() == 12);
    CHECK(lines[8] == "WARNING - VelUI(#) : cchBuf = 64");
    CHECK(lines[9] == "WARNING - VelUI(#) : pvOutput = 0x00000000");
}

TEST_CASE_METHOD(EntryLogFixture, "the work of a query stands between its arguments and its answer", "[driver][log]")
{
    DrvDeviceCapabilities(nullptr, nullptr, DC_COPIES, nullptr, nullptr);
    const Lines lines = Masked(logging);
    REQUIRE(lines.size() > 10);
    CHECK(lines[5] == "DEBUG - VelUI(#) : pvOutput = 0x00000000");
    CHECK(lines[6] == "VelUI_dll__VelUtility::GetComputerCaps :START......");
    CHECK(lines[lines.size() - 3] == "VelUI_dll__VelUtility::GetComputerCaps :End  ......");
    CHECK(lines[lines.size() - 2] == "DEBUG - VelUI(#) : dwReturn = 4294967295");
}

TEST_CASE_METHOD(EntryLogFixture, "the spooler's query stands between its code and its answer", "[driver][log]")
{
    wchar_t szNames[64] = {};
    DrvSplDeviceCaps(nullptr, nullptr, DC_PAPERNAMES, szNames, 64, nullptr);
    CHECK(Outline(logging, "DrvSplDeviceCaps") == Lines{"INFO - DrvSplDeviceCaps was invoked.",
                                                        "DEBUG - VelUI(#) : DeviceCap", "> VelUtility::GetComputerCaps",
                                                        "Param - VelUI(#) : dwReturn"});
}

TEST_CASE_METHOD(EntryLogFixture, "DrvSplDeviceCaps logs the code once its arguments have passed", "[driver][log]")
{
    wchar_t szNames[64] = {};
    DrvSplDeviceCaps(nullptr, nullptr, DC_BINNAMES, szNames, 64, nullptr);
    CHECK(Masked(logging) == Lines{"VelUI_dll__DrvSplDeviceCaps :START......", "INFO - DrvSplDeviceCaps was invoked.",
                                   "DEBUG - VelUI(#) : DeviceCap = 12", "Param - VelUI(#) : dwReturn = 4294967295",
                                   "VelUI_dll__DrvSplDeviceCaps :End  ......"});
}

TEST_CASE_METHOD(EntryLogFixture, "DevQueryPrintEx logs its invocation and nothing else", "[driver][log]")
{
    DevQueryPrintEx(nullptr);
    CHECK(Masked(logging) == Lines{"VelUI_dll__DevQueryPrintEx :START......", "INFO - DevQueryPrintEx was invoked.",
                                   "VelUI_dll__DevQueryPrintEx :End  ......"});
}

TEST_CASE_METHOD(EntryLogFixture, "DrvConvertDevMode prints its call line behind the invocation", "[driver][log]")
{
    wchar_t szPrinter[] = L"VelPrinter";
    LONG lSize = 199;
    DrvConvertDevMode(szPrinter, nullptr, nullptr, &lSize, CDM_CONVERT351);
    CHECK(GetLastError() == 122); // the lines behind it leave it alone
    const Lines lines = Masked(logging);
    REQUIRE(lines.size() == 6);
    CHECK(lines[1] == "INFO - DrvConvertDevMode was invoked.");
    const std::string strHead = "Param - DrvConvertDevMode([pPrinterName] = VelPrinter, [pdmIn] = 0x0000000000000000, "
                                "[pdmOut] = 0x0000000000000000, [pcbNeeded] = 0x";
    CHECK(lines[2].substr(0, strHead.size()) == strHead);
    CHECK(lines[2].substr(strHead.size() + 16) == " => 199, [fMode] = 2, )");
    CHECK(lines[3] == "DEBUG - VelUI(#) : fMode = CDM_CONVERT351");
    CHECK(lines[4] == "Param - VelUI(#) : bReturn = 0");
    CHECK(lines[5] == "VelUI_dll__DrvConvertDevMode :End  ......");
}

TEST_CASE_METHOD(EntryLogFixture, "a percent sign in a printer's name is a conversion in the call line",
                 "[driver][log]")
{
    wchar_t szPrinter[] = L"50%% off";
    LONG lSize = 199;
    DrvConvertDevMode(szPrinter, nullptr, nullptr, &lSize, CDM_CONVERT351);
    const std::string strHead = "Param - DrvConvertDevMode([pPrinterName] = 50% off, ";
    CHECK(Masked(logging).at(2).substr(0, strHead.size()) == strHead);
}

TEST_CASE_METHOD(EntryLogFixture, "an address above 4 GB shows its low half", "[driver][log]")
{
    DrvDeviceCapabilities(reinterpret_cast<HANDLE>(0x1234567890), nullptr, DC_SIZE,
                          reinterpret_cast<void*>(0xABCDEF01234), nullptr);
    const Lines lines = Masked(logging);
    CHECK(lines.at(2) == "DEBUG - VelUI(#) : hPrinter = 0x34567890");
    CHECK(lines.at(5) == "DEBUG - VelUI(#) : pvOutput = 0xDEF01234");
}

TEST_CASE_METHOD(EntryLogFixture, "an empty line follows the result of each entry point", "[driver][log]")
{
    const BuiltModule module;
    const TextsFrom texts(module.handle);
    wchar_t szNames[64] = {};
    DrvSplDeviceCaps(nullptr, nullptr, DC_PAPERNAMES, szNames, 63, nullptr);
    CHECK(logging.Has(" : dwReturn = 4294967295\n\n["));
    LONG lSize = 199;
    DrvConvertDevMode(nullptr, nullptr, nullptr, &lSize, CDM_CONVERT351);
    CHECK(logging.Has(" : bReturn = 0\n\n["));
    DOCUMENTPROPERTYHEADER header = {};
    DrvDocumentPropertySheets(nullptr, reinterpret_cast<LPARAM>(&header));
    CHECK(logging.Has(" : lReturn = 232\n\n["));
    {
        DeviceCalls calls(&DrvDevicePropertySheets);
        CHECK(calls.Call(PROPSHEETUI_REASON_INIT) == 1);
    }
    CHECK(logging.Has(" : lReturn = 1\n\n["));
    DrvPrinterEvent(nullptr, 99, 0, 0);
    CHECK(logging.Has(" : bReturn = 1\n\n["));
}

TEST_CASE_METHOD(EntryLogFixture, "a name that the C locale lacks takes the rest of its line with it", "[driver][log]")
{
    const CrtLocale locale("C");
    wchar_t szPrinter[] = L"打印机";
    DrvDeviceCapabilities(nullptr, szPrinter, DC_SIZE, nullptr, nullptr);
    const std::string strLine = Masked(logging).at(3);
    CHECK(strLine.substr(0, 17) == "DEBUG - VelUI(#) ");
    CHECK(strLine.find("打") == std::string::npos);
}

TEST_CASE_METHOD(EntryLogFixture, "an exception that leaves an entry point closes its scope", "[driver][log]")
{
    const BuiltModule module;
    const TextsFrom texts(module.handle);
    DocumentCalls calls(&DrvDocumentPropertySheets);
    // The sheet library's function belongs to the host, which may throw.
    calls.info.pfnComPropSheet = [](HANDLE, UINT, LPARAM, LPARAM) -> LONG_PTR { throw 7; };
    stuDrvDevmode in = PlainRecord();
    calls.header.pdmIn = &in.stuDevmode;
    WriteCaps(PaperKeys(kPapers));
    CHECK_THROWS_AS(calls.Call(PROPSHEETUI_REASON_INIT), int);
    CHECK(log4cpp::NDC::getDepth() == 0);
    CHECK(Masked(logging).back() == "VelUI_dll__DrvDocumentPropertySheets :End  ......");
}

TEST_CASE_METHOD(EntryLogFixture, "CDM_CONVERT has no error line of its own", "[driver][log]")
{
    LONG lSize = 0;
    DrvConvertDevMode(nullptr, nullptr, nullptr, &lSize, CDM_CONVERT);
    CHECK(GetLastError() == 87);
    CHECK(Own("DrvConvertDevMode").at(3) == "DEBUG - VelUI(#) : fMode = CDM_CONVERT");
    CHECK_FALSE(logging.Has("ERROR"));
}

TEST_CASE_METHOD(EntryLogFixture, "the result line closes a CDM_CONVERT, whichever way it went", "[driver][log]")
{
    stuDrvDevmode in = {};
    stuDrvDevmode out = {};
    in.stuDevmode.dmSize = out.stuDevmode.dmSize = 220;
    LONG cbNeeded = 219;
    DrvConvertDevMode(nullptr, &in.stuDevmode, &out.stuDevmode, &cbNeeded, CDM_CONVERT);
    cbNeeded = 220;
    DrvConvertDevMode(nullptr, &in.stuDevmode, &out.stuDevmode, &cbNeeded, CDM_CONVERT);
    Lines ends; // what stands behind each call line, with its records
    bool bBehind = false;
    for (const std::string& strLine : Own("DrvConvertDevMode"))
    {
        bBehind = strLine.find(" :START......") == std::string::npos &&
                  (bBehind || strLine == "DEBUG - VelUI(#) : fMode = CDM_CONVERT");
        if (bBehind)
        {
            ends.push_back(strLine);
        }
    }
    CHECK(ends == Lines{"DEBUG - VelUI(#) : fMode = CDM_CONVERT", "Param - VelUI(#) : bReturn = 0",
                        "VelUI_dll__DrvConvertDevMode :End  ......", "DEBUG - VelUI(#) : fMode = CDM_CONVERT",
                        "Param - VelUI(#) : bReturn = 1", "VelUI_dll__DrvConvertDevMode :End  ......"});
}

TEST_CASE_METHOD(EntryLogFixture, "the check for the resident client stands before the scope of both entry points",
                 "[driver][log]")
{
    const ImportHook hook(nullptr, "GetUserNameW", &ThrowUserName);
    const std::string strFatal = "FATAL - VelUI(#) : Caught unexpected C++ exception.";
    DrvDeviceCapabilities(nullptr, nullptr, DC_SIZE, nullptr, nullptr);
    DrvDocumentPropertySheets(nullptr, 0);
    Lines lines = Masked(logging);
    CHECK(std::count(lines.begin(), lines.end(), strFatal) == 0); // no scope is open when it fails
    const size_t uiBefore = lines.size();
    {
        const TraceScope scope("Outer");
        DrvDeviceCapabilities(nullptr, nullptr, DC_SIZE, nullptr, nullptr);
        DrvDocumentPropertySheets(nullptr, 0);
    }
    lines = Masked(logging);
    lines.erase(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(uiBefore));
    const auto caps = std::find(lines.begin(), lines.end(), "VelUI_dll__DrvDeviceCapabilities :START......");
    const auto sheet = std::find(lines.begin(), lines.end(), "VelUI_dll__DrvDocumentPropertySheets :START......");
    REQUIRE(caps > lines.begin());
    REQUIRE(sheet != lines.end());
    CHECK(*(caps - 1) == strFatal);
    CHECK(*(sheet - 1) == strFatal);
    CHECK(*(sheet - 2) == "VelUI_dll__DrvDeviceCapabilities :End  ......");
    CHECK(std::count(lines.begin(), lines.end(), strFatal) == 2);
}

TEST_CASE_METHOD(EntryLogFixture, "a failed CDM_CONVERT351 leaves an error line", "[driver][log]")
{
    stuDrvDevmode record = {};
    LONG lSize = 200;
    DrvConvertDevMode(nullptr, nullptr, &record.stuDevmode, &lSize, CDM_CONVERT351);
    const Lines lines = Masked(logging);
    CHECK(std::count(lines.begin(), lines.end(), "ERROR - VelUI(#) : ConvertDevmode failed.") == 1);
    CHECK(lines.at(lines.size() - 2) == "Param - VelUI(#) : bReturn = 0");
}

TEST_CASE_METHOD(EntryLogFixture, "a refused mode leaves an error line with its number", "[driver][log]")
{
    LONG lSize = 232;
    DrvConvertDevMode(nullptr, nullptr, nullptr, &lSize, 8);
    CHECK(GetLastError() == 13);
    const Lines lines = Masked(logging);
    CHECK(lines.at(3) == "ERROR - VelUI(#) : Unexpected fMode : 8");
    CHECK(lines.at(4) == "Param - VelUI(#) : bReturn = 0");
}

TEST_CASE_METHOD(EntryLogFixture, "a call inside an entry point opens and closes its own scope", "[driver][log]")
{
    stuDrvDevmode in = {};
    stuDrvDevmode out = {};
    in.stuDevmode.dmSize = out.stuDevmode.dmSize = 220;
    LONG lSize = 232;
    CHECK(DrvConvertDevMode(nullptr, &in.stuDevmode, &out.stuDevmode, &lSize, CDM_CONVERT) == 1);
    const Lines lines = Masked(logging);
    const auto begin = std::find(lines.begin(), lines.end(), "VelUI_dll__ConvertDevmode :START......");
    const auto end = std::find(lines.begin(), lines.end(), "VelUI_dll__ConvertDevmode :End  ......");
    REQUIRE(begin != lines.end());
    REQUIRE(end != lines.end());
    CHECK(begin < end);
    CHECK(Outline(logging, "DrvConvertDevMode") ==
          Lines{"INFO - DrvConvertDevMode was invoked.", "Param - DrvConvertDevMode([pPrinterName]",
                "DEBUG - VelUI(#) : fMode", "> ConvertDevmode", "Param - VelUI(#) : bReturn"});
    CHECK(lines.front() == "VelUI_dll__DrvConvertDevMode :START......");
    CHECK(lines.back() == "VelUI_dll__DrvConvertDevMode :End  ......");
}
