#pragma once
/// A property sheet as a person sees it: shown on a thread of its own, worked with from the test's.

#include <windows.h>
#include <prsht.h>

#include <functional>
#include <string>

/// Shows a sheet and closes it.
class OpenSheet
{
public:
    /// @param show shows the sheet and returns when it is closed; runs on the sheet's thread.
    explicit OpenSheet(std::function<void()> show);
    /// Cancels a sheet that is still open.
    ~OpenSheet();
    OpenSheet(const OpenSheet&) = delete;
    OpenSheet& operator=(const OpenSheet&) = delete;

    HWND Get() const { return m_hSheet; }
    int PageCount() const;
    /// Turns to a page. @return its window.
    HWND TurnTo(int iPage) const;
    /// The tab's text.
    std::wstring TabText(int iPage) const;
    bool ApplyEnabled() const;
    /// The number of the control that has the keyboard's focus; a combo box's for the box in it. 0 when none has it.
    int Focus() const;
    /// Presses a key and waits until the sheet has worked on it.
    void PressKey(WORD wKey) const;
    /// Presses "Apply".
    void Apply() const;
    /// Presses PSBTN_OK or PSBTN_CANCEL and waits for the sheet's end.
    void Close(WPARAM wButton);

private:
    static DWORD WINAPI Run(void* pThis);

    std::function<void()> m_show;
    HANDLE m_hThread = nullptr;
    DWORD m_dwThread = 0;
    HWND m_hSheet = nullptr;
};
