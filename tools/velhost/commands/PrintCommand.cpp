#include "tools/velhost/commands/Commands.h"
#include "tools/velhost/host/CapsQuery.h"
#include "tools/velhost/host/Files.h"
#include "tools/velhost/host/Spooler.h"
#include "tools/velhost/print/ChosenSettings.h"
#include "tools/velhost/print/TestPage.h"
#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/Encoding.h"
#include "tools/velhost/report/Output.h"

#include <cmath>
#include <memory>

namespace VelHost
{
namespace
{

constexpr char kTitle[] = "VelUI test page";
constexpr wchar_t kJobName[] = L"VelUI test page";

/// The port that asks a person for a file's name.
constexpr wchar_t kAskingPort[] = L"FILE:";

struct PrintOptions
{
    std::string strPrinter = kDefaultPrinter;
    std::string strTo;
    bool bJson = false;
};

/// A printer's device, ready to draw on; given back at the end of the object's life.
class PrinterDevice
{
public:
    /// Throws CommandError when the driver's rendering half does not take the record.
    PrinterDevice(const std::wstring& strPrinter, const std::vector<BYTE>& record)
        : m_hDevice(
              CreateDCW(L"WINSPOOL", strPrinter.c_str(), nullptr, reinterpret_cast<const DEVMODEW*>(record.data())))
    {
        if (m_hDevice == nullptr)
        {
            throw CommandError("no page can be drawn for the printer \"" + ToUtf8(strPrinter) +
                               "\": its driver renders nothing; velhost install mends its own");
        }
        if (Cap(LOGPIXELSX) <= 0 || Cap(LOGPIXELSY) <= 0 || Cap(HORZRES) <= 0 || Cap(VERTRES) <= 0)
        {
            DeleteDC(m_hDevice);
            throw CommandError("the driver of the printer \"" + ToUtf8(strPrinter) +
                               "\" tells of a page without dots; velhost install mends its own");
        }
    }
    ~PrinterDevice() { DeleteDC(m_hDevice); }
    PrinterDevice(const PrinterDevice&) = delete;
    PrinterDevice& operator=(const PrinterDevice&) = delete;

    HDC Get() const noexcept { return m_hDevice; }
    int Cap(int iIndex) const { return GetDeviceCaps(m_hDevice, iIndex); }
    /// @return what a number of dots is in millimetres, to a tenth.
    double Millimetres(int iDots, int iDotsPerInch) const { return std::round(iDots * 254.0 / Cap(iDotsPerInch)) / 10; }

private:
    HDC m_hDevice;
};

/// A job that is being printed. One that is not finished is taken back, so that no half page comes out.
class PrintJob
{
public:
    /// @param strTo a file, or empty for the printer's port.
    PrintJob(HDC hDevice, const std::wstring& strTo) : m_hDevice(hDevice)
    {
        DOCINFOW info = {};
        info.cbSize = sizeof(info);
        info.lpszDocName = kJobName;
        info.lpszOutput = strTo.empty() ? nullptr : strTo.c_str();
        m_iJob = StartDocW(hDevice, &info);
        if (m_iJob <= 0)
        {
            ThrowCommandError("the spooler takes no job");
        }
    }
    ~PrintJob()
    {
        if (!m_bFinished)
        {
            AbortDoc(m_hDevice);
        }
    }
    PrintJob(const PrintJob&) = delete;
    PrintJob& operator=(const PrintJob&) = delete;

    int Number() const noexcept { return m_iJob; }
    void DrawPage(const TestPageContent& content)
    {
        if (StartPage(m_hDevice) <= 0)
        {
            ThrowCommandError("no page can be begun");
        }
        DrawTestPage(m_hDevice, content);
        if (EndPage(m_hDevice) <= 0)
        {
            ThrowCommandError("the page can't be printed");
        }
    }
    void Finish()
    {
        m_bFinished = EndDoc(m_hDevice) > 0;
        if (!m_bFinished)
        {
            ThrowCommandError("the job can't be finished");
        }
    }

private:
    HDC m_hDevice;
    int m_iJob;
    bool m_bFinished = false;
};

/// Makes the file empty. The spooler tells nobody when it can't write a job's file: that is found out here.
void EmptyOutput(const std::wstring& strTo)
{
    WriteBinaryFile(strTo, nullptr, 0);
}

/// Throws CommandError when the spooler has written nothing.
void CheckOutput(const std::wstring& strTo)
{
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    if (!GetFileAttributesExW(strTo.c_str(), GetFileExInfoStandard, &data) ||
        (data.nFileSizeLow == 0 && data.nFileSizeHigh == 0))
    {
        throw CommandError("the spooler took the job and wrote nothing to " + ToUtf8(strTo));
    }
}

std::string PortToPrintTo(const PrinterDescription& printer, const std::wstring& strTo)
{
    if (strTo.empty() && IsSameName(printer.strPort, kAskingPort))
    {
        throw CommandError("the printer's port is FILE:, which asks for a file's name; name one with --to FILE");
    }
    return ToUtf8(strTo.empty() ? printer.strPort : strTo);
}

int RunPrint(const PrintOptions& options)
{
    const std::wstring strPrinter = FromUtf8(options.strPrinter);
    const std::wstring strTo = options.strTo.empty() ? std::wstring() : AbsolutePath(options.strTo);
    const std::string strWhere = PortToPrintTo(DescribePrinter(strPrinter), strTo);
    const std::vector<BYTE> record = UserDefaultRecord(strPrinter);
    RequireHonestSizes(record);
    TestPageContent content = {kTitle, ChosenSettings(record, SpoolerCaps(strPrinter)), false};

    const PrinterDevice device(strPrinter, record);
    const int iPlanesAndBits = device.Cap(PLANES) * device.Cap(BITSPIXEL);
    content.bColour = AsksForColour(record) && iPlanesAndBits > 1;
    const auto size = [&](int iAcross, int iDown) {
        return Json::array(
            {device.Millimetres(device.Cap(iAcross), LOGPIXELSX), device.Millimetres(device.Cap(iDown), LOGPIXELSY)});
    };
    ItemReport report;
    report.Add("printer", options.strPrinter);
    report.Add("printed to", strWhere);
    for (const auto& [strName, strChoice] : content.settings)
    {
        report.Add(strName, strChoice);
    }
    report.Add("paper in mm", size(PHYSICALWIDTH, PHYSICALHEIGHT));
    report.Add("printable in mm", size(HORZRES, VERTRES));
    report.Add("dots per inch", Json::array({device.Cap(LOGPIXELSX), device.Cap(LOGPIXELSY)}));

    if (!strTo.empty())
    {
        EmptyOutput(strTo);
    }
    PrintJob job(device.Get(), strTo);
    job.DrawPage(content);
    job.Finish();
    if (!strTo.empty())
    {
        CheckOutput(strTo);
    }
    report.PrintOut(options.bJson);
    return kExitGood;
}

} // namespace

void AddPrintCommand(CommandSyntax& program, int& iExitCode)
{
    CommandSyntax command = program.AddCommand(
        "print", "Prints a test page with the user's default settings, as an application does: the settings in words,\n"
                 "a frame at the printable edge, a grid in centimetres.");
    const auto pOptions = std::make_shared<PrintOptions>();
    AddPrinterOption(command, pOptions->strPrinter);
    command
        .AddOption("--to", pOptions->strTo,
                   "Print into this file, which is overwritten; to the printer's port by default")
        .Type("FILE");
    AddJsonFlag(command, pOptions->bJson);
    command.OnRun([pOptions, &iExitCode] { iExitCode = RunPrint(*pOptions); });
}

} // namespace VelHost
