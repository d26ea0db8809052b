#pragma once

#include "tools/velhost/sheet/SheetChoices.h"

#include <windows.h>

#include <string>
#include <vector>

namespace VelHost
{

/// Closes the sheet that the current thread shows next, without a user: turns to each page in turn, makes
/// the choices on the first one, keeps a picture of each if that is wanted, and presses a button. It works inside the
/// sheet's own message loop, each step once everything is painted.
class SheetClerk
{
public:
    struct Orders
    {
        std::wstring strFolder; ///< existing folder for "page1.png", "page2.png" and so on; empty for no pictures
        WPARAM wButton;         ///< PSBTN_OK or PSBTN_CANCEL; after an error it is always cancel
        SheetChoices choices;   ///< for the document sheet's first page
    };

    /// Starts waiting for the sheet. One clerk a process at a time.
    explicit SheetClerk(Orders orders);
    ~SheetClerk();
    SheetClerk(const SheetClerk&) = delete;
    SheetClerk& operator=(const SheetClerk&) = delete;

    /// Pictures that were written, full paths.
    const std::vector<std::wstring>& Pictures() const noexcept { return m_pictures; }
    /// What went wrong with a choice or a picture; empty when nothing did.
    const std::string& Error() const noexcept { return m_strError; }

private:
    static void CALLBACK OnTimer(HWND hWindow, UINT uiMessage, UINT_PTR uiTimer, DWORD dwTime);
    void Step();
    /// Does a part of the work, and keeps what went wrong with it.
    template <typename Part>
    void Try(Part part);
    void KeepPicture(HWND hSheet);

    Orders m_orders;
    UINT_PTR m_uiTimer;
    size_t m_uiPage = 0;
    bool m_bTurned = false; ///< whether m_uiPage is on show
    bool m_bPressed = false;
    std::vector<std::wstring> m_pictures;
    std::string m_strError;
};

/// @return the property sheet that a thread shows, or null.
HWND FindSheetOfThread(DWORD dwThread);

} // namespace VelHost
