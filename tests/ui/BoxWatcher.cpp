#include "tests/ui/BoxWatcher.h"

#include "tests/ui/PageWindow.h"

#include <catch2/catch_test_macros.hpp>

namespace
{

constexpr int kTextControl = 0xFFFF; ///< the text of the platform's message box

BOOL CALLBACK IsNoBox(HWND hWindow, LPARAM lParam)
{
    DWORD dwProcess = 0;
    GetWindowThreadProcessId(hWindow, &dwProcess);
    wchar_t szClass[16] = {};
    GetClassNameW(hWindow, szClass, 16);
    if (dwProcess != GetCurrentProcessId() || wcscmp(szClass, L"#32770") != 0 || !IsWindowVisible(hWindow) ||
        GetDlgItem(hWindow, kTextControl) == nullptr)
    {
        return TRUE;
    }
    *reinterpret_cast<HWND*>(lParam) = hWindow;
    return FALSE;
}

size_t CountButtons(HWND hBox)
{
    size_t uiButtons = 0;
    for (HWND hChild = GetWindow(hBox, GW_CHILD); hChild != nullptr; hChild = GetWindow(hChild, GW_HWNDNEXT))
    {
        wchar_t szClass[16] = {};
        GetClassNameW(hChild, szClass, 16);
        uiButtons += wcscmp(szClass, L"Button") == 0 && IsWindowVisible(hChild) ? 1 : 0;
    }
    return uiButtons;
}

} // namespace

BoxWatcher::BoxWatcher() : m_hStop(CreateEventW(nullptr, TRUE, FALSE, nullptr))
{
    InitializeCriticalSection(&m_lock);
    m_hThread = CreateThread(nullptr, 0, &BoxWatcher::Run, this, 0, nullptr);
    REQUIRE(m_hThread != nullptr);
}

BoxWatcher::~BoxWatcher()
{
    SetEvent(m_hStop);
    WaitForSingleObject(m_hThread, 20000);
    CloseHandle(m_hThread);
    CloseHandle(m_hStop);
    DeleteCriticalSection(&m_lock);
}

size_t BoxWatcher::Count()
{
    return Boxes().size();
}

std::vector<BoxWatcher::Box> BoxWatcher::Boxes()
{
    EnterCriticalSection(&m_lock);
    std::vector<Box> boxes = m_boxes;
    LeaveCriticalSection(&m_lock);
    return boxes;
}

DWORD WINAPI BoxWatcher::Run(void* pThis)
{
    auto* const pWatcher = static_cast<BoxWatcher*>(pThis);
    while (WaitForSingleObject(pWatcher->m_hStop, 5) == WAIT_TIMEOUT)
    {
        HWND hBox = nullptr;
        EnumWindows(IsNoBox, reinterpret_cast<LPARAM>(&hBox));
        if (hBox != nullptr)
        {
            pWatcher->Answer(hBox);
        }
    }
    return 0;
}

void BoxWatcher::Answer(HWND hBox)
{
    const Box box = {Hand::TextOf(hBox), Hand::TextOf(GetDlgItem(hBox, kTextControl)),
                     GetWindow(hBox, GW_OWNER) != nullptr, CountButtons(hBox)};
    EnterCriticalSection(&m_lock);
    m_boxes.push_back(box);
    LeaveCriticalSection(&m_lock);
    PostMessageW(hBox, WM_COMMAND, IDOK, 0);
    while (IsWindow(hBox) && WaitForSingleObject(m_hStop, 1) == WAIT_TIMEOUT)
    {}
}
