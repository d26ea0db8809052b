#include "bench/Benches.h"
#include "bench/floors/SheetFloor.h"

#include <functional>
#include <memory>
#include <vector>

namespace
{

/// Works through all messages that wait, so that everything is painted.
void Pump()
{
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
    {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

/// A sheet with its pages on Windows' own, open until the object ends.
class ShownSheet
{
public:
    /// Returns when the first page is visible and painted.
    explicit ShownSheet(std::vector<HPROPSHEETPAGE>& pages)
    {
        PROPSHEETHEADERW sheet = {};
        sheet.dwSize = sizeof(sheet);
        sheet.dwFlags = PSH_MODELESS;
        sheet.pszCaption = L"VelPrinter";
        sheet.nPages = static_cast<UINT>(pages.size());
        sheet.phpage = pages.data();
        m_hSheet = reinterpret_cast<HWND>(PropertySheetW(&sheet));
        ShowWindow(m_hSheet, SW_SHOW);
        Pump();
    }
    ~ShownSheet()
    {
        DestroyWindow(m_hSheet);
        Pump();
    }
    ShownSheet(const ShownSheet&) = delete;
    ShownSheet& operator=(const ShownSheet&) = delete;

    bool HasVisiblePage() const
    {
        const auto hPage = reinterpret_cast<HWND>(SendMessageW(m_hSheet, PSM_GETCURRENTPAGEHWND, 0, 0));
        return hPage != nullptr && IsWindowVisible(hPage);
    }

private:
    HWND m_hSheet;
};

/// The sheet library's part in a document sheet.
class HostedDocument
{
public:
    HostedDocument(const BenchModule& module, PDEVMODEW pdmIn) : m_module(module)
    {
        m_header.cbSize = sizeof(m_header);
        m_header.fMode = DM_IN_BUFFER | DM_IN_PROMPT;
        m_header.pdmIn = pdmIn;
        Call(PROPSHEETUI_REASON_INIT, reinterpret_cast<LPARAM>(&m_header));
        PROPSHEETUI_INFO_HEADER info = {};
        info.cbSize = sizeof(info);
        Call(PROPSHEETUI_REASON_GET_INFO_HEADER, reinterpret_cast<LPARAM>(&info));
    }
    ~HostedDocument() { Call(PROPSHEETUI_REASON_DESTROY, 1); }
    HostedDocument(const HostedDocument&) = delete;
    HostedDocument& operator=(const HostedDocument&) = delete;

    std::vector<HPROPSHEETPAGE> pages;

private:
    static LONG_PTR CALLBACK AddPage(HANDLE hComPropSheet, UINT uiFunction, LPARAM lParam, LPARAM)
    {
        if (uiFunction != CPSFUNC_ADD_HPROPSHEETPAGE)
        {
            return 0;
        }
        static_cast<HostedDocument*>(hComPropSheet)->pages.push_back(reinterpret_cast<HPROPSHEETPAGE>(lParam));
        return lParam;
    }

    void Call(WORD wReason, LPARAM lParam)
    {
        PROPSHEETUI_INFO info = {};
        info.cbSize = sizeof(info);
        info.Version = 0x0100;
        info.Flags = PSUIINFO_UNICODE;
        info.Reason = wReason;
        info.hComPropSheet = this;
        info.pfnComPropSheet = &HostedDocument::AddPage;
        info.lParamInit = reinterpret_cast<LPARAM>(&m_header);
        info.UserData = m_ulUserData;
        m_module.pfnDocument(&info, lParam);
        m_ulUserData = info.UserData;
    }

    const BenchModule& m_module;
    DOCUMENTPROPERTYHEADER m_header = {};
    ULONG_PTR m_ulUserData = 0;
};

stuDrvDevmode g_in = RecordOfPaper(DMPAPER_A4);

/// Nanoseconds from a sheet's first step to its visible page; 0 when no page shows.
/// @param makePages hands out an object with the sheet's pages in it, which lives as long as the sheet.
template <typename MakePages>
double TimeSheet(MakePages makePages)
{
    const double dStart = NowNanoseconds();
    auto document = makePages();
    const ShownSheet sheet(document->pages);
    const double dTime = NowNanoseconds() - dStart;
    return sheet.HasVisiblePage() ? dTime : 0;
}

/// The pages of a bare sheet.
struct BarePages
{
    std::vector<HPROPSHEETPAGE> pages;
};

constexpr int kRounds = 101;

void Compare(Results& results, const std::string& strMeasure, const std::function<double()>& timeFloor,
             const std::function<double()>& timeOurs, Goal goal)
{
    timeFloor();
    timeOurs();
    std::vector<double> floors;
    std::vector<double> ours;
    for (int iRound = 0; iRound < kRounds; ++iRound)
    {
        const bool bFloorFirst = iRound % 2 == 0;
        double dFloor = bFloorFirst ? timeFloor() : 0;
        const double dOurs = timeOurs();
        dFloor = bFloorFirst ? dFloor : timeFloor();
        if (dFloor > 0 && dOurs > 0)
        {
            floors.push_back(dFloor);
            ours.push_back(dOurs);
        }
    }
    if (!floors.empty())
    {
        results.Add(RowOfPairs(strMeasure, floors, ours, goal));
    }
}

} // namespace

void BenchSheet(Results& results, const BenchClient& client, const BenchModule& module, DWORD dwClientPid)
{
    client.UseSample();
    const auto makeBare = [&] { return std::make_unique<BarePages>(BarePages{FloorPages(module.Handle())}); };
    const auto makeBareWithStore = [&] {
        FloorSheetStore(dwClientPid);
        return makeBare();
    };
    const auto makeOurs = [&] { return std::make_unique<HostedDocument>(module, &g_in.stuDevmode); };
    const auto timeOurs = [&] { return TimeSheet(makeOurs); };
    Compare(
        results, "document sheet, INIT to visible page, sample", [&] { return TimeSheet(makeBare); }, timeOurs,
        RatioGoal(1.2));
    Compare(
        results, "the same to a bare sheet with the contract's store calls",
        [&] { return TimeSheet(makeBareWithStore); }, timeOurs, RatioGoal(kNoLimit));
}
