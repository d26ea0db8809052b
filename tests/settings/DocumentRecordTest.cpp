// DrvDocumentPropertySheets without a sheet: the record's size and the record.

#include "settings/DriverDevmode.h"
#include "tests/common/BuiltModule.h"
#include "tests/common/ClientFixture.h"
#include "tests/common/GuardedBuffer.h"
#include "tests/common/LogLines.h"

#include <catch2/catch_test_macros.hpp>
#include <catch2/generators/catch_generators.hpp>

namespace
{

using Lines = std::vector<std::string>;

struct RecordFixture : ClientFixture
{
    RecordFixture()
    {
        header.cbSize = sizeof(header);
        header.cbOut = 0x11111111;
        out.As<DEVMODEW>()->dmSize = 220;
        out.As<DEVMODEW>()->dmDriverExtra = 12;
    }
    LONG Ask(DWORD fMode, DEVMODEW* pdmOut, DEVMODEW* pdmIn = nullptr)
    {
        header.fMode = fMode;
        header.pdmOut = pdmOut;
        header.pdmIn = pdmIn;
        return module.DocumentSheets(nullptr, reinterpret_cast<LPARAM>(&header));
    }
    /// The same through the code in the test program, whose log tests can read.
    LONG AskLogged(DWORD fMode, DEVMODEW* pdmOut)
    {
        header.fMode = fMode;
        header.pdmOut = pdmOut;
        return DrvDocumentPropertySheets(nullptr, reinterpret_cast<LPARAM>(&header));
    }
    void StoreSetting(const char* pszValue) const
    {
        WriteFileBytes(folder.File(L"QPS@VEL_defsetting.ini"),
                       std::string("[PrintSetting]\r\nDefaultNoWaterPrint=") + pszValue + "\r\n");
    }
    std::string OutBytes() const { return std::string(out.As<char>(), 232); }

    BuiltModule module;
    DOCUMENTPROPERTYHEADER header = {};
    GuardedBuffer out{232, 0x22};
};

} // namespace

TEST_CASE_METHOD(RecordFixture, "neither a sheet nor a header is refused", "[driver][record]")
{
    CHECK(module.DocumentSheets(nullptr, 0) == -1);
}

TEST_CASE_METHOD(RecordFixture, "mode 0 tells the size and leaves the record alone", "[driver][record]")
{
    const std::string strBefore = OutBytes();
    CHECK(Ask(0, out.As<DEVMODEW>()) == 232);
    CHECK(header.cbOut == 232);
    CHECK(OutBytes() == strBefore);
}

TEST_CASE_METHOD(RecordFixture, "any mode without a record tells the size", "[driver][record]")
{
    const DWORD fMode = GENERATE(DM_COPY, DM_UPDATE, DM_PROMPT, DM_COPY | 0x20, 0u);
    CHECK(Ask(fMode, nullptr) == 232);
    CHECK(header.cbOut == 232);
}

TEST_CASE_METHOD(RecordFixture, "a mode that may not change anything is refused", "[driver][record]")
{
    const DWORD fMode = GENERATE(DM_COPY | 0x20, DM_UPDATE | 0x20, DM_PROMPT, DM_MODIFY, DM_PROMPT | DM_MODIFY, 0x20u);
    const std::string strBefore = OutBytes();
    CHECK(Ask(fMode, out.As<DEVMODEW>()) == -1);
    CHECK(OutBytes() == strBefore);
    CHECK(header.cbOut == 0x11111111);
}

TEST_CASE_METHOD(RecordFixture, "without an input the record is the user's default with the stored request",
                 "[driver][record]")
{
    StoreSetting("3");
    const DWORD fMode = GENERATE(DM_COPY, DM_UPDATE, DM_COPY | DM_UPDATE, DM_COPY | DM_PROMPT | DM_MODIFY);
    CHECK(Ask(fMode, out.As<DEVMODEW>()) == 1);
    const auto* const pRecord = out.As<stuDrvDevmode>();
    CHECK(std::wstring(pRecord->stuDevmode.dmDeviceName) == L"VelPrinter");
    CHECK(pRecord->stuDevmode.dmSize == 220);
    CHECK(pRecord->stuDevmode.dmDriverExtra == 12);
    CHECK(pRecord->stuDevmode.dmPaperSize == 9);
    CHECK(pRecord->dwTailWord0 == 0x22222222); // the merge does not touch the tail
    CHECK(pRecord->dwNoWaterPrint == 3);
    CHECK(pRecord->dwTailWord2 == 0x22222222);
    CHECK(header.cbOut == 0x11111111); // not used
    CHECK(out.Intact());
}

TEST_CASE_METHOD(RecordFixture, "an input is merged into the record", "[driver][record]")
{
    stuDrvDevmode in = {};
    in.stuDevmode.dmSpecVersion = 0x401;
    in.stuDevmode.dmSize = 220;
    in.stuDevmode.dmDriverExtra = 12;
    in.stuDevmode.dmPaperSize = 8;
    in.stuDevmode.dmColor = 2;
    CHECK(Ask(DM_COPY | DM_MODIFY, out.As<DEVMODEW>(), &in.stuDevmode) == 1);
    CHECK(out.As<DEVMODEW>()->dmPaperSize == 8);
    CHECK(out.As<DEVMODEW>()->dmColor == 2);
    CHECK(out.As<DEVMODEW>()->dmDriverExtra == 12);
}

TEST_CASE_METHOD(RecordFixture, "the request is written when the merged record declares at least four extra bytes",
                 "[driver][record]")
{
    // A merge keeps the smaller of the extras, so that the input decides.
    const auto [wExtra, bWritten] = GENERATE(std::pair<WORD, bool>{0, false}, std::pair<WORD, bool>{3, false},
                                             std::pair<WORD, bool>{4, true}, std::pair<WORD, bool>{12, true});
    CAPTURE(wExtra);
    StoreSetting("1");
    stuDrvDevmode in = {};
    in.stuDevmode.dmSize = 220;
    in.stuDevmode.dmDriverExtra = wExtra;
    CHECK(Ask(DM_COPY, out.As<DEVMODEW>(), &in.stuDevmode) == 1);
    CHECK(out.As<DEVMODEW>()->dmDriverExtra == wExtra);
    CHECK(out.As<stuDrvDevmode>()->dwNoWaterPrint == (bWritten ? 1u : 0x22222222u));
}

TEST_CASE_METHOD(RecordFixture, "the request is written at its place in the whole record, whatever the record declares",
                 "[driver][record]")
{
    const WORD wSize = GENERATE(72, 156, 219, 220, 300);
    CAPTURE(wSize);
    StoreSetting("1");
    GuardedBuffer in(300, 0x11);
    in.As<DEVMODEW>()->dmSize = wSize;
    in.As<DEVMODEW>()->dmDriverExtra = 12;
    CHECK(Ask(DM_COPY, out.As<DEVMODEW>(), in.As<DEVMODEW>()) == 1);
    CHECK(out.As<DEVMODEW>()->dmSize == (wSize < 220 ? wSize : 220));
    for (size_t i = 72; i < 232; ++i)
    {
        CAPTURE(i);
        const int iExpected = i < 220 ? (i < wSize ? 0x11 : 0x22) : i == 224 ? 1 : i > 224 && i < 228 ? 0 : 0x22;
        CHECK(out.Get()[i] == iExpected);
    }
}

TEST_CASE_METHOD(RecordFixture, "a request that can't be read becomes 0", "[driver][record]")
{
    const PrivateRegistry nothing;
    CHECK(Ask(DM_COPY, out.As<DEVMODEW>()) == 1);
    CHECK(out.As<stuDrvDevmode>()->dwNoWaterPrint == 0);
}

TEST_CASE_METHOD(RecordFixture, "the user's stored record is what a document starts from", "[driver][record]")
{
    DEVMODEW stored = {};
    stored.dmSize = 220;
    stored.dmDriverExtra = 12;
    stored.dmPaperSize = 11;
    WriteFileBytes(folder.File(L"QPS@VEL_DevMode.dat"), std::string(reinterpret_cast<char*>(&stored), 220));
    CHECK(Ask(DM_COPY, out.As<DEVMODEW>()) == 1);
    CHECK(memcmp(out.Get(), &stored, 220) == 0);
}

TEST_CASE_METHOD(RecordFixture, "a size query logs its road", "[driver][record][log]")
{
    const LoggingOn logging{"OutputParam", "OutputFunBeginInfo"};
    CHECK(AskLogged(0, nullptr) == 232);
    CHECK(OwnLines(logging, "DrvDocumentPropertySheets") ==
          Lines{"VelUI_dll__DrvDocumentPropertySheets :START......", "INFO - DrvDocumentPropertySheets was invoked.",
                "DEBUG - VelUI(#) : pPSUIInfo = 0x00000000",
                "INFO - DrvDocumentPropertySheets - background interactive",
                "INFO - DrvDocumentPropertySheets - Get devmode size : 232", "Param - VelUI(#) : lReturn = 232",
                "VelUI_dll__DrvDocumentPropertySheets :End  ......"});
}

TEST_CASE_METHOD(RecordFixture, "a missing header is logged", "[driver][record][log]")
{
    const LoggingOn logging{"OutputParam", "OutputFunBeginInfo"};
    CHECK(DrvDocumentPropertySheets(nullptr, 0) == -1);
    const Lines lines = OwnLines(logging, "DrvDocumentPropertySheets");
    REQUIRE(lines.size() == 7);
    CHECK(lines[4] == "WARNING - VelUI(#) : NULL == pDPHdr");
    CHECK(lines[5] == "Param - VelUI(#) : lReturn = -1");
}

TEST_CASE_METHOD(RecordFixture, "a refused mode is logged", "[driver][record][log]")
{
    const LoggingOn logging{"OutputParam", "OutputFunBeginInfo"};
    CHECK(AskLogged(DM_PROMPT, out.As<DEVMODEW>()) == -1);
    const Lines lines = OwnLines(logging, "DrvDocumentPropertySheets");
    REQUIRE(lines.size() == 7);
    CHECK(lines[4] == "WARNING - VelUI(#) : DrvDocumentPropertySheets - unexpected condition");
    CHECK(lines[5] == "Param - VelUI(#) : lReturn = -1");
}

TEST_CASE_METHOD(RecordFixture,
                 "a fill logs the default, the input, the output before and after, each where its step is",
                 "[driver][record][log]")
{
    const LoggingOn logging{"OutputParam", "OutputFunBeginInfo"};
    CHECK(AskLogged(DM_COPY, out.As<DEVMODEW>()) == 1);
    CHECK(Outline(logging, "DrvDocumentPropertySheets") ==
          Lines{"INFO - DrvDocumentPropertySheets was invoked.", "DEBUG - VelUI(#) : pPSUIInfo",
                "INFO - DrvDocumentPropertySheets - background interactive", "> SubSetDevMode",
                "DEBUG - VelUI(#) : stuDefDev", "DEBUG - VelUI(#) : pDPHdr->pdmIn", "DEBUG - VelUI(#) : pDPHdr->pdmOut",
                "DEBUG - VelUI(#) : pDPHdr->cbOut", "> SubConvertDevmodeOut", "DEBUG - VelUI(#) : pDPHdr->pdmOut",
                "> VelUtility::GetDefSetting", "Param - VelUI(#) : lReturn"});
    CHECK(logging.Has("stuDefDev = {devMode.dmSpecVersion = 0401"));
    CHECK(logging.Has("pDPHdr->pdmIn = 0x0000000000000000"));
    CHECK(logging.Has("pDPHdr->cbOut = 286331153")); // 0x11111111
    CHECK(logging.Has(" => {devMode.dmSpecVersion = 0401"));
    const Lines lines = OwnLines(logging, "DrvDocumentPropertySheets");
    CHECK(lines.at(lines.size() - 2) == "Param - VelUI(#) : lReturn = 1");
}

TEST_CASE_METHOD(RecordFixture, "a request that can't be read leaves a warning", "[driver][record][log]")
{
    const PrivateRegistry nothing;
    const LoggingOn logging{"OutputParam", "OutputFunBeginInfo"};
    CHECK(AskLogged(DM_COPY, out.As<DEVMODEW>()) == 1);
    const Lines lines = OwnLines(logging, "DrvDocumentPropertySheets");
    CHECK(lines.at(lines.size() - 3) == "WARNING - VelUI(#) : GetDefSetting failed. Popup confirm dialog.");
}
