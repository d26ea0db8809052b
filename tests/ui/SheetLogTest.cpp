// The log of a whole document sheet: the built module reads the sample configuration, with every switch on, from the
// client's folder.

#include "tests/common/BuiltModule.h"
#include "tests/ui/OpenSheet.h"
#include "tests/ui/PageWindow.h"
#include "tests/ui/SheetDataFixture.h"
#include "tools/velhost/install/LogSetup.h"
#include "tools/velhost/sheet/SheetLibrary.h"

#include <boost/algorithm/string/predicate.hpp>

#include <catch2/catch_test_macros.hpp>

#include <algorithm>
#include <memory>
#include <regex>
#include <sstream>

namespace
{

using Lines = std::vector<std::string>;

struct SheetLogFixture : ClientFixture
{
    SheetLogFixture()
    {
        WriteCaps(PaperKeys(kPapers, kAbleKeys));
        VelHost::WriteLogConfig(BesideTests(L"sample\\LogConfig.conf"), folder.File(L"LogConfig.conf"), folder.Path());
        std::string strConfig = ReadFileBytes(folder.File(L"LogConfig.conf"));
        strConfig = std::regex_replace(strConfig, std::regex(R"(\n(Output\w+\.VelUI_dll)=false)"), "\n$1=true");
        WriteFileBytes(folder.File(L"LogConfig.conf"), strConfig);
    }
    /// Shows the sheet, applies another paper, and presses OK; the module is gone behind it.
    void UseSheet()
    {
        const BuiltModule module;
        stuDrvDevmode in = PlainRecord();
        stuDrvDevmode out = in;
        DOCUMENTPROPERTYHEADER header = {};
        header.cbSize = sizeof(header);
        header.pdmIn = &in.stuDevmode;
        header.pdmOut = &out.stuDevmode;
        VelHost::SheetLibrary library(module.DocumentSheets, reinterpret_cast<LPARAM>(&header));
        OpenSheet sheet([&library] { library.Show(nullptr, L"VelPrinter"); });
        Hand::ChoosePaper(GetDlgItem(sheet.TurnTo(0), 1006), 1);
        sheet.Apply();
        sheet.TurnTo(1);
        sheet.Close(PSBTN_OK);
        CHECK(out.stuDevmode.dmPaperSize == 8);
    }
    /// The log without time stamps and thread ids, line numbers and addresses masked, without empty lines.
    Lines ReadLog() const
    {
        static const std::regex head(R"(^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} (\[ThreadID:\d+\] )?)");
        static const std::regex line(R"((VelUI|SubVelUi|ClientInfo|PsFolder|FileLocker|BaseMutex)\(\d+\))");
        static const std::regex address("0x[0-9A-F]{16}");
        Lines lines;
        std::istringstream log(ReadFileBytes(folder.File(L"VelUI.log")));
        for (std::string strLine; std::getline(log, strLine);)
        {
            strLine.erase(std::remove(strLine.begin(), strLine.end(), '\r'), strLine.end());
            strLine = std::regex_replace(strLine, head, "");
            strLine = std::regex_replace(strLine, line, "$1(#)");
            strLine = std::regex_replace(strLine, address, "0x#");
            if (!strLine.empty())
            {
                lines.push_back(strLine);
            }
        }
        return lines;
    }
};

/// A function's scope, and what stands in it.
struct Scope
{
    std::string strFunction;
    std::string strOuter; ///< the function in whose scope it stands; empty for an export
    Lines lines;          ///< its own, without its START and End, dumps and the rest of long messages
};

/// Reads the log from top to bottom. Fails when scopes are not nested.
std::vector<Scope> ReadScopes(const Lines& lines)
{
    const std::string strStart = " :START......";
    const std::string strEnd = " :End  ......";
    std::vector<Scope> done;
    std::vector<Scope> open;
    for (const std::string& strLine : lines)
    {
        if (boost::ends_with(strLine, strStart))
        {
            open.push_back({strLine.substr(0, strLine.size() - strStart.size()),
                            open.empty() ? std::string() : open.back().strFunction,
                            {}});
        }
        else if (boost::ends_with(strLine, strEnd))
        {
            CAPTURE(strLine);
            REQUIRE(!open.empty());
            REQUIRE(strLine == open.back().strFunction + strEnd);
            done.push_back(open.back());
            open.pop_back();
        }
        else if (std::regex_search(strLine, std::regex("^(INFO|DEBUG|WARNING|ERROR|FATAL|Param) - ")))
        {
            REQUIRE(!open.empty());
            open.back().lines.push_back(strLine);
        }
    }
    CHECK(open.empty());
    return done;
}

/// The lines of a call of the entry point with a reason.
Lines CallLines(const char* pszReason, bool bResult)
{
    Lines lines = {"INFO - DrvDocumentPropertySheets was invoked.",
                   "INFO - DrvDocumentPropertySheets - interactive by property pages",
                   std::string("INFO - DrvDocumentPropertySheets - pPSUIInfo->Reason = PROPSHEETUI_REASON_") +
                       pszReason};
    if (bResult)
    {
        lines.push_back("Param - VelUI(#) : lReturn = 1");
    }
    return lines;
}

} // namespace

TEST_CASE_METHOD(SheetLogFixture, "the log of a sheet that was opened, changed and applied reads from top to bottom",
                 "[ui][log][driven]")
{
    UseSheet();
    const Lines lines = ReadLog();
    const std::vector<Scope> scopes = ReadScopes(lines);

    std::vector<Lines> calls;
    for (const Scope& scope : scopes)
    {
        if (scope.strFunction == "VelUI_dll__DrvDocumentPropertySheets")
        {
            calls.push_back(scope.lines);
        }
    }
    Lines opened = CallLines("INIT", true);
    opened.insert(opened.begin() + 3,
                  "DEBUG - VelUI(#) : (DEVMODE *)((DOCUMENTPROPERTYHEADER *)(pPSUIInfo->lParamInit))->pdmIn = 0x# => "
                  "{devMode.dmSpecVersion = 0401");
    // Apply: the settings page. OK: the settings page, and the advanced one, which has been shown meanwhile.
    const std::vector<Lines> expected = {opened,
                                         CallLines("GET_INFO_HEADER", true),
                                         CallLines("SET_RESULT", false),
                                         CallLines("SET_RESULT", false),
                                         CallLines("SET_RESULT", false),
                                         CallLines("DESTROY", true)};
    CHECK(calls == expected);

    // Every own function that took part has its scope.
    for (const char* const pszFunction : {"GetPaperInfoList",
                                          "SubAddpropertySheet",
                                          "ProSetPage",
                                          "SubInitPaperSize",
                                          "GetDevDefPaperName",
                                          "SubInitOrientation",
                                          "On_Radio_Stand",
                                          "Sub_On_Combo",
                                          "SubInitOther",
                                          "On_Check_Duplex",
                                          "Sub_On_Edit",
                                          "SubSetDlgData",
                                          "VelUtility::SetDevDef",
                                          "ProSeniorPage",
                                          "SubDefDlgSenior",
                                          "SubGetDlgSenior",
                                          "VelUtility::GetDefSetting",
                                          "VelUtility::MakeDefSetting",
                                          "VelUtility::GetComputerCaps",
                                          "SubLoadString"})
    {
        CAPTURE(pszFunction);
        CHECK(std::any_of(scopes.begin(), scopes.end(), [pszFunction](const Scope& scope) {
            return scope.strFunction == std::string("VelUI_dll__") + pszFunction;
        }));
    }
    // It lasts as long as the function: what the function calls stands in it.
    const std::pair<const char*, const char*> kNested[] = {
        {"GetPaperInfoList", "DrvDocumentPropertySheets"},
        {"VelUtility::GetComputerCaps", "GetPaperInfoList"},
        {"SubAddpropertySheet", "DrvDocumentPropertySheets"},
        {"SubInitPaperSize", "ProSetPage"},
        {"GetDevDefPaperName", "SubInitPaperSize"},
        {"Sub_On_Combo", "ProSetPage"},
        {"Sub_On_Combo", "On_Radio_Stand"},
        {"ProSetPage", "Sub_On_Combo"}, // told of the texts that it writes
        {"SubInitOrientation", "ProSetPage"},
        {"VelUtility::GetComputerCaps", "SubInitOrientation"},
        {"On_Radio_Stand", "SubInitOrientation"},
        {"SubInitOther", "ProSetPage"},
        {"VelUtility::GetComputerCaps", "SubInitOther"},
        {"On_Check_Duplex", "SubInitOther"},
        {"Sub_On_Edit", "ProSetPage"},
        {"SubSetDlgData", "ProSetPage"},
        {"VelUtility::SetDevDef", "SubSetDlgData"},
        {"VelUtility::GetDefSetting", "ProSeniorPage"},
        {"VelUtility::MakeDefSetting", "ProSeniorPage"},
        {"SubDefDlgSenior", "ProSeniorPage"},
        {"SubGetDlgSenior", "ProSeniorPage"},
    };
    for (const auto& nested : kNested)
    {
        CAPTURE(nested.first, nested.second);
        CHECK(std::any_of(scopes.begin(), scopes.end(), [&nested](const Scope& scope) {
            return scope.strFunction == std::string("VelUI_dll__") + nested.first &&
                   scope.strOuter == std::string("VelUI_dll__") + nested.second;
        }));
    }
    // What the printer can do is asked for the list of papers, and then by each part of the page.
    Lines queries;
    for (const std::string& strLine : lines)
    {
        if (strLine.rfind("DEBUG - GetComputerCaps(", 0) == 0)
        {
            queries.push_back(strLine.substr(24));
        }
    }
    CHECK(queries == Lines{"2)", "2)", "16)", "2)", "3)", "17)", "32)", "7)"});
    // Each debug line is followed by the functions that were running.
    const std::string strDumpHead = "@_@ ---------\tCall\tStack\t-----------";
    const auto dumps = std::count_if(lines.begin(), lines.end(), [&strDumpHead](const std::string& strLine) {
        return strLine.find(strDumpHead) != std::string::npos;
    });
    size_t uiDumped = 0;
    for (const Scope& scope : scopes)
    {
        uiDumped += std::count_if(scope.lines.begin(), scope.lines.end(), [](const std::string& strLine) {
            return strLine.rfind("DEBUG", 0) == 0 || strLine.rfind("ERROR", 0) == 0 || strLine.rfind("FATAL", 0) == 0;
        });
    }
    CHECK(uiDumped > 10);
    CHECK(static_cast<size_t>(dumps) == uiDumped);
}

TEST_CASE_METHOD(SheetLogFixture, "the sample configuration's first filter rule silences the settings page's procedure",
                 "[ui][log][driven]")
{
    std::string strConfig = ReadFileBytes(folder.File(L"LogConfig.conf"));
    const size_t uiRule = strConfig.find("#filter.module");
    REQUIRE(uiRule != std::string::npos);
    std::string strRule = strConfig.substr(uiRule, strConfig.find("\n#\n", uiRule) - uiRule);
    strRule.erase(std::remove(strRule.begin(), strRule.end(), '#'), strRule.end());
    WriteFileBytes(folder.File(L"LogConfig.conf"), strConfig + strRule + "\n");
    UseSheet();
    const Lines lines = ReadLog();
    const auto has = [&lines](const std::string& strText) {
        return std::find(lines.begin(), lines.end(), strText) != lines.end();
    };
    CHECK_FALSE(has("VelUI_dll__ProSetPage :START......"));
    CHECK(has("VelUI_dll__ProSeniorPage :START......"));
    CHECK(has("VelUI_dll__SubSetDlgData :START......"));
}
