#pragma once
/// A document sheet shown and timed, with the bench in the sheet library's place.

#include "bench/Clock.h"
#include "support/module/PrinterInterface.h"

#include <windows.h>

#include <commctrl.h>
#include <prsht.h>
#include <vector>

/// Works through all messages that wait, so that everything is painted.
inline void Pump()
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
    HostedDocument(decltype(&DrvDocumentPropertySheets) pfnDocument, PDEVMODEW pdmIn) : m_pfnDocument(pfnDocument)
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
        m_pfnDocument(&info, lParam);
        m_ulUserData = info.UserData;
    }

    decltype(&DrvDocumentPropertySheets) m_pfnDocument;
    DOCUMENTPROPERTYHEADER m_header = {};
    ULONG_PTR m_ulUserData = 0;
};

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
