// velhost print: what the page is, read from the PostScript that comes out, and how the command fails. Each case is
// [alone]: Windows looks for printers in the devices section of win.ini, and a process keeps for good in which registry
// it has found the place of that section, which is that of its first case.

#include "settings/DriverDevmode.h"
#include "state/DataFiles.h"
#include "tests/common/InstallFixture.h"
#include "tools/velhost/report/Encoding.h"

#include <catch2/catch_test_macros.hpp>
#include <catch2/matchers/catch_matchers_string.hpp>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <regex>

using Catch::Matchers::ContainsSubstring;

namespace
{

/// The user's stored record, as the sheet's OK stores it.
DEVMODEW Stored(short nPaper, short nOrientation, short nColour, short nDuplex)
{
    DEVMODEW record = {};
    record.dmSpecVersion = kSpecVersion;
    record.dmDriverVersion = kDriverVersion;
    record.dmSize = kDevmodeSize;
    record.dmDriverExtra = kDriverExtra;
    record.dmFields = 0x9903;
    record.dmPaperSize = nPaper;
    record.dmOrientation = nOrientation;
    record.dmColor = nColour;
    record.dmDuplex = nDuplex;
    record.dmCopies = 1;
    return record;
}

/// All that a pattern's first group matches.
std::vector<std::string> Found(const std::string& strText, const char* pszPattern)
{
    const std::regex pattern(pszPattern);
    std::vector<std::string> found;
    for (auto match = std::sregex_iterator(strText.begin(), strText.end(), pattern); match != std::sregex_iterator();
         ++match)
    {
        found.push_back((*match)[1]);
    }
    return found;
}

/// The different ones of texts, in order: Wine 10 states a paper's size in two places.
std::vector<std::string> Distinct(std::vector<std::string> texts)
{
    std::sort(texts.begin(), texts.end());
    texts.erase(std::unique(texts.begin(), texts.end()), texts.end());
    return texts;
}

/// @return whether a page has ink that is neither black nor white nor grey.
bool HasColour(const std::string& strPage)
{
    for (const std::string& strInk : Found(strPage, "([0-9.]+ [0-9.]+ [0-9.]+) setrgbcolor"))
    {
        const std::string strRed = strInk.substr(0, strInk.find(' '));
        if (strInk != strRed + " " + strRed + " " + strRed)
        {
            return true;
        }
    }
    return false;
}

using Texts = std::vector<std::string>;

/// What a stored record must make of the page.
struct PageCase
{
    const char* pszName;
    short nPaper, nOrientation, nColour, nDuplex;
    const char* pszSize; ///< the paper in points, short side first
    int iWidth, iHeight; ///< the same, as numbers
    const char* pszOrientation;
    const char* pszDuplex;
};

// Points are millimetres * 72 / 25.4, rounded: A4 210 x 297 mm are 595.3 x 841.9, A3 297 x 420 are 841.9 x 1190.6.
const PageCase kPages[] = {
    {"A4", DMPAPER_A4, 1, 1, 1, "595 842", 595, 842, "Portrait", "/Duplex false"},
    {"A3, lying, colour, both sides", DMPAPER_A3, 2, 2, 2, "842 1191", 842, 1191, "Landscape",
     "/Duplex true /Tumble false"},
    {"Letter, short edge", DMPAPER_LETTER, 1, 1, 3, "612 792", 612, 792, "Portrait", "/Duplex true /Tumble true"},
    // 16K, 184 x 260 mm, and large 16K, 210 x 285 mm, whose number is the driver's own.
    {"16K", 93, 2, 1, 1, "522 737", 522, 737, "Landscape", "/Duplex false"},
    // The custom paper has no size that the platform's driver would take: it is laid on A4.
    {"custom", 256, 1, 1, 1, "595 842", 595, 842, "Portrait", "/Duplex false"},
    {"large 16K", 257, 1, 2, 1, "595 808", 595, 808, "Portrait", "/Duplex false"},
};

/// Checks size and orientation of the one page of a job.
void CheckPage(const std::string& strJob, const PageCase& page)
{
    CHECK(Distinct(Found(strJob, "/PageSize \\[([0-9 ]+)\\]")) == Texts{page.pszSize});
    // Said of the document with Wine 8, of the page with Wine 10.
    CHECK(Found(strJob, "%%(?:Page)?Orientation: (\\w+)") == Texts{page.pszOrientation});
    CHECK(Found(strJob, "<<(/Duplex [^>]*)>>") == Texts{page.pszDuplex});
    CHECK(Found(strJob, "%%(EOF)") == Texts{"EOF"});
    CHECK(Found(strJob, "%%Page: (\\d)") == Texts{"1"});
    CHECK(HasColour(strJob) == (page.nColour == DMCOLOR_COLOR));
    // The description's margin is 12 points. The platform's driver cuts each edge to whole dots and then to whole
    // points.
    int box[4] = {};
    REQUIRE(std::sscanf(Found(strJob, "%%BoundingBox: ([0-9 ]+)").at(0).c_str(), "%d %d %d %d", &box[0], &box[1],
                        &box[2], &box[3]) == 4);
    CHECK(std::abs(box[0] - 12) + std::abs(box[1] - 12) == 0);
    CHECK((page.iWidth - 12 - box[2] >= 0 && page.iWidth - 12 - box[2] <= 1));
    CHECK((page.iHeight - 12 - box[3] >= 0 && page.iHeight - 12 - box[3] <= 1));
}

constexpr double kMargin = 12.0 / 72;                      // inches, on each side
constexpr double kAcross = 571.0 / 72, kDown = 818.0 / 72; // the printable part of A4

/// Checks the grid's lines of one direction: one at each whole centimetre from the paper's edge, over the whole
/// printable part.
/// @param positions,ends of the lines in dots from the printable part's corner, as the job has them.
void CheckGrid(const Texts& positions, const Texts& ends, size_t uiLines, double dDots, double dLength)
{
    REQUIRE(positions.size() == uiLines);
    for (size_t ui = 0; ui < uiLines; ++ui)
    {
        CHECK(std::stol(positions[ui]) == std::lround((static_cast<double>(ui + 1) / 2.54 - kMargin) * dDots));
        // The platform's driver cuts the printable part to whole dots, and may take one more.
        const long nEnd = std::stol(ends[ui]);
        CHECK((nEnd == std::floor(dLength * dDots) || nEnd == std::ceil(dLength * dDots)));
    }
}

} // namespace

TEST_CASE_METHOD(InstallFixture,
                 "the test page has the paper, the orientation, the colour and the sides that are stored",
                 "[velhost][print][alone]")
{
    REQUIRE(Install().iExitCode == 0);
    const std::string strPrinter = VelHost::ToUtf8(PrinterName());
    const std::wstring strFile = folder.File(L"page.ps");

    // Nothing stored: the module's own default, to the port.
    REQUIRE(Run({"print", "--printer", strPrinter}).iExitCode == 0);
    CheckPage(ReadFileBytes(PortFile()), kPages[0]);
    for (const PageCase& page : kPages)
    {
        CAPTURE(page.pszName);
        const DEVMODEW record = Stored(page.nPaper, page.nOrientation, page.nColour, page.nDuplex);
        REQUIRE(VelUtility::SetDevDef(&record) == 0);
        REQUIRE(Run({"print", "--printer", strPrinter, "--to", VelHost::ToUtf8(strFile)}).iExitCode == 0);
        CheckPage(ReadFileBytes(strFile), page);
    }
}

TEST_CASE_METHOD(InstallFixture,
                 "the test page's grid is whole centimetres from the paper's edge, in a frame at the "
                 "printable one",
                 "[velhost][print][alone]")
{
    REQUIRE(Install().iExitCode == 0);
    REQUIRE(Run({"print", "--printer", VelHost::ToUtf8(PrinterName())}).iExitCode == 0);
    const std::string strJob = ReadFileBytes(PortFile());
    // 600 dots an inch with Wine 8, 300 with Wine 10.
    const Texts resolution = Found(strJob, "\n72 (\\d+) div [^\n]*scale");
    REQUIRE(resolution.size() == 1);
    const double dDots = std::stod(resolution[0]);
    CheckGrid(Found(strJob, "\n(\\d+) 0 moveto\n\\1 \\d{4} lineto"),
              Found(strJob, "\n(?:\\d+) 0 moveto\n\\d+ (\\d{4}) lineto"), 20, dDots, kDown);
    CheckGrid(Found(strJob, "\n0 (\\d+) moveto\n\\d{4} \\1 lineto"),
              Found(strJob, "\n0 \\d+ moveto\n(\\d{4}) \\d+ lineto"), 29, dDots, kAcross);
    // Half a millimetre is the frame's pen: its middle is half of that from the edge, on each side.
    const long nPen = std::lround(0.25 / 25.4 * dDots);
    const long nRight = static_cast<long>(kAcross * dDots) - nPen;
    const auto frame = [&](long nBottom) {
        const std::string strLeft = std::to_string(nPen), strRight = std::to_string(nRight);
        const std::string strTop = " " + std::to_string(nPen), strBottom = " " + std::to_string(nBottom);
        const auto count = [&strJob](const std::string& strFrom, const std::string& strTo) {
            return Found(strJob, ("\n(" + strFrom + ") moveto\n" + strTo + " lineto").c_str()).size();
        };
        return std::vector<size_t>{
            count(strLeft + strTop, strRight + strTop), count(strRight + strTop, strRight + strBottom),
            count(strRight + strBottom, strLeft + strBottom), count(strLeft + strBottom, strLeft + strTop)};
    };
    // The lower edge may be one dot further down: the same cut as with the lines of the grid.
    const long nBottom = static_cast<long>(kDown * dDots) - nPen;
    CHECK((frame(nBottom) == std::vector<size_t>(4, 1) || frame(nBottom + 1) == std::vector<size_t>(4, 1)));
}

TEST_CASE_METHOD(InstallFixture, "print says why it can't: no printer, no file, a port that asks, a record that lies",
                 "[velhost][print][alone]")
{
    REQUIRE(Install().iExitCode == 0);
    const std::string strPrinter = VelHost::ToUtf8(PrinterName());
    const std::string strFile = VelHost::ToUtf8(folder.File(L"page.ps"));
    const auto failure = [&](const std::vector<std::string>& arguments) {
        const CommandEnd end = Run(arguments);
        CHECK(end.iExitCode == 1);
        return end.strError;
    };
    CHECK_THAT(failure({"print", "--printer", "no such", "--to", strFile}), ContainsSubstring("there is no printer"));
    CHECK_THAT(failure({"print", "--printer", strPrinter, "--to", "C:\\no such\\page.ps"}),
               ContainsSubstring("can't write C:\\no such\\page.ps"));
    CHECK_THAT(failure({"print", "--printer", strPrinter, "--to", VelHost::ToUtf8(folder.Path())}),
               ContainsSubstring("can't write "));
    CHECK(ReadFileBytes(PortFile()).empty());

    DEVMODEW record = Stored(DMPAPER_A4, 1, 1, 1);
    record.dmSize = 1000;
    REQUIRE(VelUtility::SetDevDef(&record) == 0);
    CHECK_THAT(failure({"print", "--printer", strPrinter, "--to", strFile}), ContainsSubstring("declares 1000 and 12"));
    record.dmSize = kDevmodeSize;
    REQUIRE(VelUtility::SetDevDef(&record) == 0);

    const std::wstring strPrinterKey = L"System\\CurrentControlSet\\Control\\Print\\Printers\\" + PrinterName();
    registry.SetText(strPrinterKey, L"Port", L"FILE:");
    CHECK_THAT(failure({"print", "--printer", strPrinter}), ContainsSubstring("name one with --to FILE"));
}

TEST_CASE_METHOD(InstallFixture, "print begins no page where the module is registered as all three files",
                 "[velhost][print][alone]")
{
    REQUIRE(Install().iExitCode == 0);
    // The form that install gave once. A page that was begun would never end.
    const std::wstring strDriverKey = L"System\\CurrentControlSet\\Control\\Print\\Environments\\Windows x64\\Drivers\\"
                                      L"Version-3\\VelUI Printer Driver";
    registry.SetText(strDriverKey, L"Driver", L"VelUI.dll");
    registry.SetText(strDriverKey, L"Data File", L"VelUI.dll");
    const CommandEnd end = Run({"print", "--printer", VelHost::ToUtf8(PrinterName())});
    CHECK(end.iExitCode == 1);
    CHECK_THAT(end.strError, ContainsSubstring("velhost install mends its own"));
    CHECK(ReadFileBytes(PortFile()).empty());
}

TEST_CASE_METHOD(InstallFixture, "what is chosen on a driven sheet is printed, until it is forgotten",
                 "[velhost][print][sheets][alone]")
{
    REQUIRE(Install().iExitCode == 0);
    const auto print = [this] {
        WriteFileBytes(PortFile(), "");
        REQUIRE(Run({"print", "--printer", VelHost::ToUtf8(PrinterName())}).iExitCode == 0);
        return ReadFileBytes(PortFile());
    };
    REQUIRE(Run({"sheet", "document", "--paper", "A3", "--orientation", "landscape", "--colour", "colour", "--sides",
                 "long", "--press", "ok"})
                .iExitCode == 0);
    CheckPage(print(), kPages[1]);

    // A choice that can't be made closes the sheet by its cancel button.
    const CommandEnd unknown =
        Run({"sheet", "document", "--paper", "A33", "--orientation", "portrait", "--press", "ok"});
    CHECK(unknown.iExitCode == 1);
    CHECK_THAT(unknown.strError, ContainsSubstring("the printer has no paper \"A33\""));
    // Neither does a choice without a button to press.
    CHECK(Run({"sheet", "document", "--paper", "A5"}).iExitCode == 0);
    CheckPage(print(), kPages[1]);

    CHECK(Run({"sheet", "document", "--sides", "one", "--press", "ok"}).iExitCode == 0);
    CHECK(print().find("<</Duplex false>>") != std::string::npos);
    CHECK(Run({"devmode", "--forget"}).iExitCode == 0);
    CheckPage(print(), kPages[0]);
    CHECK(Run({"devmode", "--forget"}).iExitCode == 0);
}
