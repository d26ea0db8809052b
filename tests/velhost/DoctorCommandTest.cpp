// velhost doctor as it is called: exit codes, what it prints, and its page of the documents.

#include "tests/velhost/DoctorFixture.h"
#include "tools/velhost/host/OtherProgram.h"
#include "tools/velhost/report/Output.h"

#include <catch2/catch_test_macros.hpp>

#include <algorithm>
#include <map>
#include <regex>
#include <sstream>
#include <stdexcept>

using namespace VelHost;

namespace
{

constexpr DWORD kPatience = 60000; // milliseconds

ProgramRun Doctor(const std::wstring& strArguments)
{
    return RunProgram(L"\"" + BesideTests(L"velhost.exe") + L"\" doctor " + strArguments, kPatience);
}

std::vector<std::string> CodesIn(const Json& report)
{
    std::vector<std::string> codes;
    for (const Json& finding : report.at("findings"))
    {
        codes.push_back(finding.at("code").get<std::string>());
    }
    return codes;
}

bool IsOneLine(const std::string& strText)
{
    return std::count(strText.begin(), strText.end(), '\n') == 1 && strText.back() == '\n';
}

/// A section of docs/doctor.md, by its heading's code.
struct Section
{
    std::string strTitle;
    std::string strText;
};

std::map<std::string, Section> ReadPage()
{
    std::istringstream page(ReadFileBytes(BesideTests(L"doctor.md")));
    const std::regex heading("### ([A-Z]{3}[0-9]{2}): (.*)");
    std::map<std::string, Section> sections;
    Section* pSection = nullptr;
    for (std::string strLine; std::getline(page, strLine);)
    {
        strLine.erase(std::remove(strLine.begin(), strLine.end(), '\r'), strLine.end());
        std::smatch match;
        if (std::regex_match(strLine, match, heading))
        {
            CAPTURE(strLine);
            pSection = &sections[match[1]];
            REQUIRE(pSection->strTitle.empty()); // no code twice
            pSection->strTitle = match[2];
        }
        else if (strLine.compare(0, 1, "#") == 0)
        {
            pSection = nullptr;
        }
        else if (pSection != nullptr)
        {
            pSection->strText += strLine + " ";
        }
    }
    return sections;
}

} // namespace

TEST_CASE("docs/doctor.md has a section for each finding of the doctor, and no other", "[velhost][doctor]")
{
    std::map<std::string, Section> sections = ReadPage();
    for (const FindingKind& kind : AllKinds())
    {
        CAPTURE(kind.pszCode);
        const auto found = sections.find(kind.pszCode);
        CHECK(found != sections.end());
        if (found == sections.end())
        {
            continue;
        }
        const Section& section = found->second;
        CHECK(section.strTitle == kind.pszTitle);
        CHECK(section.strText.find("**Symptom.** ") != std::string::npos);
        CHECK(section.strText.find("**Cause.** ") != std::string::npos);
        // The cure begins with the words that the doctor says.
        CHECK(section.strText.find(std::string("**Cure.** ") + kind.pszCure) != std::string::npos);
        sections.erase(found);
    }
    for (const auto& [strCode, section] : sections)
    {
        CAPTURE(strCode);
        FAIL_CHECK("the page explains a finding that the doctor does not know");
    }
}

TEST_CASE("docs/troubleshooting.md names only findings that the doctor knows", "[velhost][doctor]")
{
    const std::string strPage = ReadFileBytes(BesideTests(L"troubleshooting.md"));
    const std::regex code("\\b[A-Z]{3}[0-9]{2}\\b");
    int iNamed = 0;
    for (std::sregex_iterator it(strPage.begin(), strPage.end(), code); it != std::sregex_iterator(); ++it)
    {
        const std::string strCode = it->str();
        CAPTURE(strCode);
        CHECK(std::any_of(AllKinds().begin(), AllKinds().end(),
                          [&strCode](const FindingKind& kind) { return strCode == kind.pszCode; }));
        ++iNamed;
    }
    CHECK(iNamed > 20);
}

TEST_CASE("each finding's code stands in one table, once", "[velhost][doctor]")
{
    std::vector<std::string> codes;
    for (const FindingKind& kind : AllKinds())
    {
        codes.emplace_back(kind.pszCode);
    }
    std::sort(codes.begin(), codes.end());
    CHECK(std::adjacent_find(codes.begin(), codes.end()) == codes.end());
}

TEST_CASE("a finding of no kind is a fault of the program", "[velhost][doctor]")
{
    Findings findings(AllKinds());
    CHECK_THROWS_AS(findings.Add("REG99", L"", L""), std::logic_error);
    findings.Add("REG01", L"here", L"this");
    CHECK(findings.Has("REG01"));
    CHECK_FALSE(findings.Has("REG02"));
    REQUIRE(findings.List().size() == 1);
    CHECK(findings.List().front().pKind->pszCode == std::string("REG01"));
    CHECK(findings.List().front().strWhere == L"here");
    CHECK(findings.List().front().strDetail == L"this");
}

TEST_CASE_METHOD(ClientFixture,
                 "velhost doctor ends with 0 when all is good, 1 with findings, 2 when it could not look",
                 "[velhost][doctor][program]")
{
    WriteFileBytes(ConfigFile(), ReadFileBytes(BesideTests(L"sample\\Config.ini")));
    const DoctorPrinter printer(*this);
    DoctorClient resident(*this, L"VelprintD.exe");
    resident.Start();

    const ProgramRun good = Doctor(L"--json --printer " + printer.Name());
    CAPTURE(good.strOutput, good.strErrors);
    CHECK(good.dwExitCode == 0);
    const Json report = Json::parse(good.strOutput);
    CHECK(CodesIn(report).empty());
    CHECK(report.at("unseen").empty());
    CHECK(report.at("good").size() >= 10); // 4 folders, the client and its tools, the driver, the printer
    CHECK(report.at("good").front().at("area") == "registry");

    // Asking the printer would start the client, which a look must not do.
    resident.Stop();
    const std::wstring strRan = resident.Program() + L".ran";
    REQUIRE(DeleteFileW(strRan.c_str()));
    const ProgramRun blind = Doctor(L"--json --without-client");
    CAPTURE(blind.strOutput);
    CHECK(blind.dwExitCode == 2);
    CHECK(CodesIn(Json::parse(blind.strOutput)).empty());
    CHECK(Json::parse(blind.strOutput).at("unseen").size() == 1);

    CHECK(RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"Software\\Vel-soft\\Client") == ERROR_SUCCESS);
    const ProgramRun faulty = Doctor(L"--json");
    CAPTURE(faulty.strOutput);
    CHECK(faulty.dwExitCode == 1);
    const Json faults = Json::parse(faulty.strOutput);
    CHECK(CodesIn(faults) == std::vector<std::string>{"REG01", "CLI03"});
    const Json& first = faults.at("findings").front();
    CHECK(first.at("title") == "The client's registry key is missing");
    CHECK(first.at("where") == "HKEY_LOCAL_MACHINE\\Software\\Vel-soft\\Client");
    CHECK(first.at("cure") == "Install the client, or run velhost install.");

    const ProgramRun text = Doctor(L"");
    CHECK(text.dwExitCode == 1);
    CHECK(text.strOutput.find("REG01  The client's registry key is missing\n") != std::string::npos);
    CHECK(text.strOutput.find("do:    Install the client, or run velhost install.\n") != std::string::npos);
    CHECK(text.strOutput.find("2 findings") != std::string::npos);
    CHECK_FALSE(PathExists(strRan)); // nobody has started it again
}

TEST_CASE("velhost doctor tells of a file that is no module in one line", "[velhost][doctor][program]")
{
    const TempFolder folder;
    WriteFileBytes(folder.File(L"empty.dll"), "");
    CreateDirectoryW(folder.File(L"folder.dll").c_str(), nullptr);
    WriteSparseFile(folder.File(L"huge.dll"), 100 * 1024 * 1024);
    for (const std::wstring& strName :
         {std::wstring(L"none.dll"), std::wstring(L"empty.dll"), std::wstring(L"folder.dll"), std::wstring(L"huge.dll"),
          std::wstring(300, L'x')})
    {
        const ProgramRun run = Doctor(L"--module \"" + folder.File(strName) + L"\"");
        CAPTURE(run.strErrors);
        CHECK(run.dwExitCode == 2);
        CHECK(run.strOutput.empty());
        CHECK(IsOneLine(run.strErrors));
        CHECK(run.strErrors.find(strName == std::wstring(300, L'x') ? "xxxxxxxx" : ".dll") != std::string::npos);
    }
}
