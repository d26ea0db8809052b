#pragma once

#include <windows.h>

#include <string>
#include <vector>

/// Answers the message boxes that this process shows, on a thread of its own, and remembers them.
class BoxWatcher
{
public:
    struct Box
    {
        std::wstring strCaption;
        std::wstring strText;
        bool bOwned;      ///< whether another window owns it
        size_t uiButtons; ///< push buttons in it
    };

    BoxWatcher();
    ~BoxWatcher();
    BoxWatcher(const BoxWatcher&) = delete;
    BoxWatcher& operator=(const BoxWatcher&) = delete;

    /// Boxes that have come up and gone so far.
    size_t Count();
    std::vector<Box> Boxes();

private:
    static DWORD WINAPI Run(void* pThis);
    void Answer(HWND hBox);

    CRITICAL_SECTION m_lock;
    std::vector<Box> m_boxes;
    HANDLE m_hStop;
    HANDLE m_hThread;
};
