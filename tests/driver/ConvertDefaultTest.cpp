// DrvConvertDevMode in the mode CDM_DRIVER_DEFAULT, through the built DLL.

#include "settings/DriverDevmode.h"
#include "tests/common/BuiltModule.h"
#include "tests/common/ClientFixture.h"
#include "tests/common/GuardedBuffer.h"
#include "tests/common/LogLines.h"

#include <catch2/catch_test_macros.hpp>

namespace
{

struct DefaultModeFixture : ClientFixture
{
    BOOL Ask(DEVMODEW* pdmOut, LONG* pcbNeeded)
    {
        SetLastError(7777);
        const BOOL bReturn = module.ConvertDevMode(nullptr, nullptr, pdmOut, pcbNeeded, CDM_DRIVER_DEFAULT);
        dwLastError = GetLastError();
        return bReturn;
    }
    BuiltModule module;
    DWORD dwLastError = 0;
    GuardedBuffer out{232, 0x22};
};

} // namespace

TEST_CASE_METHOD(DefaultModeFixture, "the default record is delivered whole", "[driver][convert][default]")
{
    LONG cbNeeded = 232;
    CHECK(Ask(out.As<DEVMODEW>(), &cbNeeded) == 1);
    CHECK(cbNeeded == 232);
    const auto* const pRecord = out.As<stuDrvDevmode>();
    CHECK(std::wstring(pRecord->stuDevmode.dmDeviceName) == L"VelPrinter");
    CHECK(pRecord->stuDevmode.dmSize == 220);
    CHECK(pRecord->stuDevmode.dmDriverExtra == 12);
    CHECK(pRecord->stuDevmode.dmPaperSize == 9);
    CHECK(pRecord->dwNoWaterPrint == 0);
    CHECK(out.Intact());
}

TEST_CASE_METHOD(DefaultModeFixture, "the default record carries the user's no-watermark number as it is",
                 "[driver][convert][default]")
{
    WriteFileBytes(folder.File(L"QPS@VEL_defsetting.ini"), "[PrintSetting]\r\nDefaultNoWaterPrint=-5\r\n");
    LONG cbNeeded = 1000;
    CHECK(Ask(out.As<DEVMODEW>(), &cbNeeded) == 1);
    CHECK(out.As<stuDrvDevmode>()->dwNoWaterPrint == 0xFFFFFFFB);
    CHECK(cbNeeded == 232);
}

TEST_CASE_METHOD(DefaultModeFixture, "the default record is the user's stored one", "[driver][convert][default]")
{
    WriteFileBytes(folder.File(L"QPS@VEL_DevMode.dat"), std::string(220, 'q'));
    LONG cbNeeded = 232;
    CHECK(Ask(out.As<DEVMODEW>(), &cbNeeded) == 1);
    CHECK(std::string(out.As<char>(), 220) == std::string(220, 'q'));
}

TEST_CASE_METHOD(DefaultModeFixture, "a null size gives 87", "[driver][convert][default]")
{
    CHECK(Ask(out.As<DEVMODEW>(), nullptr) == 0);
    CHECK(dwLastError == 87);
    CHECK(out.Get()[0] == 0x22);
}

TEST_CASE_METHOD(DefaultModeFixture, "a room of 231 gives 122 and tells 232", "[driver][convert][default]")
{
    LONG cbNeeded = 231;
    CHECK(Ask(out.As<DEVMODEW>(), &cbNeeded) == 0);
    CHECK(dwLastError == 122);
    CHECK(cbNeeded == 232);
    CHECK(out.Get()[0] == 0x22);
}

TEST_CASE_METHOD(DefaultModeFixture, "a null output gives 122 and tells 232", "[driver][convert][default]")
{
    LONG cbNeeded = 1000;
    CHECK(Ask(nullptr, &cbNeeded) == 0);
    CHECK(dwLastError == 122);
    CHECK(cbNeeded == 232);
}

TEST_CASE_METHOD(DefaultModeFixture, "a negative room counts as a huge one", "[driver][convert][default]")
{
    LONG cbNeeded = -1;
    CHECK(Ask(out.As<DEVMODEW>(), &cbNeeded) == 1);
    CHECK(cbNeeded == 232);
    CHECK(out.As<DEVMODEW>()->dmSize == 220);
}

TEST_CASE_METHOD(DefaultModeFixture, "the default record does not depend on an input, which is not even looked at",
                 "[driver][convert][default]")
{
    const GuardedBuffer before(1);
    auto* const pNoRecord = reinterpret_cast<DEVMODEW*>(before.Get() + 1); // a byte of it can't be read
    LONG cbNeeded = 232;
    CHECK(module.ConvertDevMode(nullptr, pNoRecord, out.As<DEVMODEW>(), &cbNeeded, CDM_DRIVER_DEFAULT) == 1);
    CHECK(out.As<DEVMODEW>()->dmPaperSize == 9);
    stuDrvDevmode in;
    memset(&in, 0x33, sizeof(in));
    in.stuDevmode.dmSize = 220;
    in.stuDevmode.dmDriverExtra = 12;
    const std::string strBefore(out.As<char>(), 232);
    CHECK(module.ConvertDevMode(nullptr, &in.stuDevmode, out.As<DEVMODEW>(), &cbNeeded, CDM_DRIVER_DEFAULT) == 1);
    CHECK(std::string(out.As<char>(), 232) == strBefore);
}

TEST_CASE_METHOD(ClientFixture, "the default mode reads the user's record, then the papers, then the request",
                 "[driver][convert][default][log]")
{
    const LoggingOn logging{"OutputParam", "OutputFunBeginInfo"};
    stuDrvDevmode record = {};
    LONG cbNeeded = 232;
    CHECK(DrvConvertDevMode(nullptr, nullptr, &record.stuDevmode, &cbNeeded, CDM_DRIVER_DEFAULT) == 1);
    std::vector<std::string> reads;
    for (const std::string& strLine : Masked(logging))
    {
        for (const char* pszRead : {"GetDevDef", "SubSetDefPaperSize", "GetComputerCaps", "GetDefSetting"})
        {
            if (strLine == std::string("VelUI_dll__VelUtility::") + pszRead + " :START......" ||
                strLine == std::string("VelUI_dll__") + pszRead + " :START......")
            {
                reads.emplace_back(pszRead);
            }
        }
    }
    CHECK(reads == std::vector<std::string>{"GetDevDef", "SubSetDefPaperSize", "GetComputerCaps", "GetDefSetting"});
}

TEST_CASE("without any store the default record is the hard-coded one without a watermark request",
          "[driver][convert][default]")
{
    const PrivateRegistry registry;
    const BuiltModule module;
    stuDrvDevmode record;
    memset(&record, 0x22, sizeof(record));
    LONG cbNeeded = 232;
    SetLastError(7777);
    CHECK(module.ConvertDevMode(nullptr, nullptr, &record.stuDevmode, &cbNeeded, CDM_DRIVER_DEFAULT) == 1);
    CHECK(record.dwNoWaterPrint == 0);
    CHECK(record.stuDevmode.dmFields == 0x9903);
}

TEST_CASE("the early exits of the default mode leave no result line, its failures a warning",
          "[driver][convert][default][log]")
{
    const PrivateRegistry registry;
    const LoggingOn logging{"OutputParam", "OutputFunBeginInfo"};
    stuDrvDevmode record = {};
    LONG cbNeeded = 231;
    DrvConvertDevMode(nullptr, nullptr, nullptr, nullptr, CDM_DRIVER_DEFAULT);
    DrvConvertDevMode(nullptr, nullptr, &record.stuDevmode, &cbNeeded, CDM_DRIVER_DEFAULT);
    CHECK(logging.Has("DEBUG - VelUI("));
    CHECK(logging.Has("fMode = CDM_DRIVER_DEFAULT"));
    CHECK_FALSE(logging.Has("bReturn"));
    DrvConvertDevMode(nullptr, nullptr, &record.stuDevmode, &cbNeeded, CDM_DRIVER_DEFAULT);
    const std::vector<std::string> own = OwnLines(logging, "DrvConvertDevMode");
    REQUIRE(own.size() > 3);
    CHECK(own.at(own.size() - 3) == "WARNING - VelUI(#) : GetDefSetting failed. Popup confirm dialog.");
    CHECK(own.at(own.size() - 2) == "Param - VelUI(#) : bReturn = 1");
    const std::vector<std::string> outline = Outline(logging, "DrvConvertDevMode");
    REQUIRE(outline.size() > 7);
    CHECK(std::vector<std::string>(outline.end() - 7, outline.end()) ==
          std::vector<std::string>{"INFO - DrvConvertDevMode was invoked.", "Param - DrvConvertDevMode([pPrinterName]",
                                   "DEBUG - VelUI(#) : fMode", "> SubSetDevMode", "> VelUtility::GetDefSetting",
                                   "WARNING - VelUI(#) : GetDefSetting failed. Popup confirm dialog.",
                                   "Param - VelUI(#) : bReturn"});
    CHECK(OwnLines(logging, "SubSetDevMode").at(1) == "DEBUG - SubVelUi(#) : Set hardcode default DEVMODE");
}
