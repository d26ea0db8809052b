#pragma once
/// A text of the process that is found once and never changes again.

#include <atomic>
#include <memory>
#include <string>
#include <utility>

/// Holder of such a text, without a lock. Threads that find it at the same time may each come with a text of their own:
/// the first one's stays, and all of them go on with that one. Whoever has a reference to it may read it until the
/// module goes.
class KeptText
{
public:
    KeptText() noexcept = default;
    ~KeptText() { delete m_pText.load(); }
    KeptText(const KeptText&) = delete;
    KeptText& operator=(const KeptText&) = delete;

    /// The text, or null while there is none.
    const std::wstring* Get() const noexcept { return m_pText.load(); }
    /// Keeps a text, unless there is one already. @return the one that is kept.
    const std::wstring& Keep(std::wstring strText)
    {
        auto pText = std::make_unique<const std::wstring>(std::move(strText));
        const std::wstring* pKept = nullptr;
        if (m_pText.compare_exchange_strong(pKept, pText.get()))
        {
            pKept = pText.release();
        }
        return *pKept;
    }

private:
    std::atomic<const std::wstring*> m_pText{nullptr};
};
