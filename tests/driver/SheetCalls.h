#pragma once
/// Calls of the sheet entry points as the sheet library makes them, without a sheet behind them.

#include "tests/ui/SheetDataFixture.h"
#include "ui/SheetData.h"

#include <prsht.h>

/// A sheet library that takes pages, or refuses them, and keeps what it was given.
struct PageTaker
{
    ~PageTaker()
    {
        for (const HPROPSHEETPAGE hPage : pages)
        {
            DestroyPropertySheetPage(hPage);
        }
    }
    static LONG_PTR CALLBACK Take(HANDLE hComPropSheet, UINT uiFunction, LPARAM lParam1, LPARAM lParam2)
    {
        auto* const pThis = static_cast<PageTaker*>(hComPropSheet);
        pThis->calls.push_back({hComPropSheet, uiFunction, lParam1, lParam2});
        if (uiFunction != CPSFUNC_ADD_HPROPSHEETPAGE || pThis->calls.size() == pThis->uiRefused)
        {
            return 0;
        }
        pThis->pages.push_back(reinterpret_cast<HPROPSHEETPAGE>(lParam1));
        return static_cast<LONG_PTR>(0x100 + pThis->pages.size());
    }

    size_t uiRefused = 0; ///< which call is refused, from 1; 0 for none
    std::vector<LibraryCall> calls;
    std::vector<HPROPSHEETPAGE> pages;
};

/// One sheet's calls of an entry point.
template <typename Header>
struct SheetCalls
{
    using Entry = decltype(DrvDocumentPropertySheets);

    explicit SheetCalls(Entry* pfn) : pfnEntry(pfn)
    {
        header.cbSize = sizeof(header);
        info.cbSize = sizeof(info);
        info.Version = 0x0100;
        info.Flags = PSUIINFO_UNICODE;
        info.hComPropSheet = &taker;
        info.pfnComPropSheet = &PageTaker::Take;
        info.lParamInit = reinterpret_cast<LPARAM>(&header);
    }
    LONG Call(WORD wReason, LPARAM lParam = 0)
    {
        info.Reason = wReason;
        return pfnEntry(&info, lParam);
    }
    /// PROPSHEETUI_REASON_SET_RESULT.
    LONG SetResult(LRESULT lResult)
    {
        SETRESULT_INFO result = {};
        result.cbSize = sizeof(result);
        result.Result = lResult;
        return Call(PROPSHEETUI_REASON_SET_RESULT, reinterpret_cast<LPARAM>(&result));
    }
    stuPassData* Data() const { return reinterpret_cast<stuPassData*>(info.UserData); }

    Entry* pfnEntry;
    PageTaker taker;
    Header header = {};
    PROPSHEETUI_INFO info = {};
};

using DocumentCalls = SheetCalls<DOCUMENTPROPERTYHEADER>;
using DeviceCalls = SheetCalls<DEVICEPROPERTYHEADER>;
