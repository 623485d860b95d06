#pragma once

#include "platform/window/Desktop.h"
#include "platform/window/headless/Recent.h"

#include <map>
#include <mutex>

namespace kx::window {

// A desktop in memory: nothing is seen, windows of other processes are those that the host puts there, and
// message boxes are recorded for it. Works from static destructors too.
class HeadlessDesktop : public Desktop
{
public:
    static HeadlessDesktop& Instance();

    bool Create(HWND, const CREATESTRUCTA&) override { return true; }
    void Show(HWND, bool) override {}
    void SetText(HWND, const char*) override {}
    void Destroy(HWND) noexcept override {}

    std::vector<HWND> ForeignWindows() const override;
    std::optional<WindowFacts> FindForeign(HWND hWnd) const noexcept override;
    bool PostForeign(HWND hWnd, const KXHost::SentMessage& message) override;
    LRESULT SendForeign(HWND hWnd, const KXHost::SentMessage& message) override;
    int ShowMessageBox(const KXHost::MessageBoxRecord& box) override;

    // ---- For the host

    HWND AddForeign(const WindowFacts& facts);
    void RemoveForeign(HWND hWnd);
    std::vector<KXHost::SentMessage> TakeMessages(HWND hWnd);
    std::vector<KXHost::MessageBoxRecord> TakeMessageBoxes();

private:
    struct Foreign
    {
        WindowFacts facts;
        Recent<KXHost::SentMessage> received;
    };

    mutable std::mutex m_lock;
    std::map<HWND, Foreign> m_foreign;
    Recent<KXHost::MessageBoxRecord> m_boxes;
};

} // namespace kx::window
