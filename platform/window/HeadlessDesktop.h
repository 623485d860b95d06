#pragma once

#include "platform/sync/Mutex.h"
#include "platform/window/Desktop.h"
#include "platform/window/Window.h"
#include "platform/window/WindowStack.h"

#include <iterator>
#include <list>
#include <map>

namespace kx::window {

// The newest 1,000 of what was recorded.
template <class T>
class Recent
{
public:
    static constexpr std::size_t kMax = 1'000;

    void Add(const T& item)
    {
        if (m_items.size() == kMax) m_items.pop_front();
        m_items.push_back(item);
    }

    // Gives them, oldest first, and forgets them.
    std::vector<T> Take()
    {
        std::vector<T> items(std::make_move_iterator(m_items.begin()),
                             std::make_move_iterator(m_items.end()));
        m_items.clear();
        return items;
    }

private:
    std::list<T> m_items; // which takes no memory while it is empty
};

// A desktop in memory, which is seen by those who read its pixels: windows of other processes are
// those that the host puts there, and message boxes are recorded for it. Works from static destructors too.
class HeadlessDesktop : public Desktop
{
public:
    static HeadlessDesktop& Instance() noexcept;

    SIZE Size() const noexcept override;

    bool Create(HWND hWnd, const CREATESTRUCTA& create) override;
    void Show(HWND, bool) override {}
    void SetText(HWND, const char*) override {}
    void Place(Window& window, const RECT& rect) override { window.SetRect(rect); }
    void Stack(HWND hWnd, Order order) override;
    void Shape(HWND, const gdi::PixelRegion*) override {}
    void SetOpacity(HWND, BYTE) override {}
    void Focus(HWND) override {}
    void Destroy(HWND hWnd) noexcept override;

    void Present(const Window&, const RECT&) override {}
    gdi::Surface& Look(const RECT& rect, gdi::Surface& root) override KX_REQUIRES(screen::pixelLock);

    std::vector<HWND> ForeignWindows() const override;
    std::optional<WindowFacts> FindForeign(HWND hWnd) const noexcept override;
    bool PostForeign(HWND hWnd, const KXHost::SentMessage& message) override;
    LRESULT SendForeign(HWND hWnd, const KXHost::SentMessage& message) override;
    bool IsSeen() const noexcept override { return false; }

    // ---- For the host

    void SetSize(SIZE size);
    HWND AddForeign(const WindowFacts& facts);
    void RemoveForeign(HWND hWnd);
    std::vector<KXHost::SentMessage> TakeMessages(HWND hWnd);
    // The answer that nobody gives: IDOK.
    int RecordMessageBox(const KXHost::MessageBoxRecord& box);
    std::vector<KXHost::MessageBoxRecord> TakeMessageBoxes();

private:
    struct Foreign
    {
        WindowFacts facts;
        Recent<KXHost::SentMessage> received;
    };

    mutable sync::Mutex m_lock;
    SIZE m_size KX_GUARDED_BY(m_lock){DESKTOP_WIDTH, DESKTOP_HEIGHT};
    WindowStack m_stack KX_GUARDED_BY(m_lock);
    std::optional<gdi::Surface> m_seen KX_GUARDED_BY(screen::pixelLock);
    std::map<HWND, Foreign> m_foreign KX_GUARDED_BY(m_lock);
    Recent<KXHost::MessageBoxRecord> m_boxes KX_GUARDED_BY(m_lock);
};

} // namespace kx::window
