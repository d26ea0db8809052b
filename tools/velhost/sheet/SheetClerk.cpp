#include "tools/velhost/sheet/SheetClerk.h"

#include "tools/velhost/host/HostModule.h"
#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/sheet/WindowPicture.h"

#include <prsht.h>
#include <commctrl.h>

#include <utility>

namespace VelHost
{
namespace
{

constexpr UINT kStepMilliseconds = 50;

SheetClerk* g_pClerk = nullptr;

BOOL CALLBACK IsNoSheet(HWND hWindow, LPARAM lParam)
{
    if (!IsWindowVisible(hWindow) || SendMessageW(hWindow, PSM_GETTABCONTROL, 0, 0) == 0)
    {
        return TRUE;
    }
    *reinterpret_cast<HWND*>(lParam) = hWindow;
    return FALSE;
}

size_t PageCount(HWND hSheet)
{
    const auto hTabs = reinterpret_cast<HWND>(SendMessageW(hSheet, PSM_GETTABCONTROL, 0, 0));
    return static_cast<size_t>(SendMessageW(hTabs, TCM_GETITEMCOUNT, 0, 0));
}

} // namespace

HWND FindSheetOfThread(DWORD dwThread)
{
    HWND hSheet = nullptr;
    EnumThreadWindows(dwThread, IsNoSheet, reinterpret_cast<LPARAM>(&hSheet));
    return hSheet;
}

SheetClerk::SheetClerk(Orders orders) : m_orders(std::move(orders))
{
    g_pClerk = this;
    // A timer's message comes when nothing else is left to do, painting included.
    m_uiTimer = SetTimer(nullptr, 0, kStepMilliseconds, &SheetClerk::OnTimer);
    if (m_uiTimer == 0)
    {
        ThrowLastError("no timer can be had");
    }
}

SheetClerk::~SheetClerk()
{
    KillTimer(nullptr, m_uiTimer);
    g_pClerk = nullptr;
}

void CALLBACK SheetClerk::OnTimer(HWND, UINT, UINT_PTR, DWORD)
{
    if (g_pClerk != nullptr)
    {
        g_pClerk->Step();
    }
}

void SheetClerk::Step()
{
    const HWND hSheet = FindSheetOfThread(GetCurrentThreadId());
    if (hSheet == nullptr || m_bPressed)
    {
        return;
    }
    if (m_bTurned)
    {
        KeepPicture(hSheet);
        ++m_uiPage;
        m_bTurned = false;
    }
    if (m_uiPage < PageCount(hSheet) && m_strError.empty())
    {
        SendMessageW(hSheet, PSM_SETCURSEL, m_uiPage, 0);
        m_bTurned = true;
        return;
    }
    m_bPressed = true;
    PostMessageW(hSheet, PSM_PRESSBUTTON, m_orders.wButton, 0);
}

void SheetClerk::KeepPicture(HWND hSheet)
{
    if (m_orders.strFolder.empty())
    {
        return;
    }
    const std::wstring strFile =
        JoinPath(m_orders.strFolder, L"page" + std::to_wstring(m_pictures.size() + 1) + L".png");
    try
    {
        WriteWindowPicture(hSheet, strFile);
        m_pictures.push_back(strFile);
    }
    catch (const CommandError& error)
    {
        // No exception may pass through the platform's message loop.
        m_strError = error.what();
    }
}

} // namespace VelHost
