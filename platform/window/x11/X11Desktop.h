#pragma once

#include "platform/sync/Mutex.h"
#include "platform/window/Desktop.h"

#include <memory>
#include <thread>

namespace kx::window {

namespace x11 {
class Session;
}

// The screen of an X server. What is asked of it goes through one connection, and a thread of its own makes
// messages and chores of what the server tells. When the server is lost its windows end by chores, and every
// operation from then on is harmless.
//
// Windows of other processes can be found, but there is no channel for messages to them: what is posted or
// sent to one fails.
class X11Desktop : public Desktop
{
public:
    explicit X11Desktop(std::shared_ptr<x11::Session> session); // throws where no thread can be had
    X11Desktop(const X11Desktop&) = delete;
    X11Desktop& operator=(const X11Desktop&) = delete;
    ~X11Desktop() override;

    SIZE Size() const noexcept override;
    SIZE Monitor() const noexcept override;
    void Leave() noexcept override;

    bool Create(HWND hWnd, const CREATESTRUCTA& create) override;
    void Show(HWND hWnd, bool bVisible) override;
    void SetText(HWND hWnd, const char* pszText) override;
    void Place(Window& window, const RECT& rect) override;
    void Stack(HWND hWnd, Order order) override;
    void Shape(HWND hWnd, const gdi::PixelRegion* region) override;
    void SetOpacity(HWND hWnd, BYTE opacity) override;
    void Focus(HWND hWnd) override;
    bool HasFocus(HWND hWnd) const override;
    void SetOwner(HWND hWnd, HWND hOwner) override;
    void SetCursor(HWND hWnd, HCURSOR hCursor) override;
    void SetCaret(HWND hWnd, POINT place) override;
    void SetIcon(HWND hWnd, const gdi::Surface* pixels) override;
    void Destroy(HWND hWnd) noexcept override;

    void Present(const Window& window, const RECT& rect) override;
    gdi::Surface& Look(const RECT& rect, gdi::Surface& root, gdi::SharedSurface::Lock& lock) override
        KX_REQUIRES(gdi::pixelLock);

    std::vector<HWND> ForeignWindows() const override;
    std::optional<WindowFacts> FindForeign(HWND hWnd) const noexcept override;
    bool PostForeign(HWND, const KXHost::SentMessage&) override { return false; }
    LRESULT SendForeign(HWND, const KXHost::SentMessage&) override { return 0; }

private:
    // Null once it has been left, and in a forked child, who would disturb its parent's connection.
    std::shared_ptr<x11::Session> Session() const noexcept;
    // Reads a rectangle as it is seen; gives nothing where it can't.
    std::optional<gdi::Surface> Read(const RECT& rect) const;

    const int m_process; // counted by forks
    mutable sync::Mutex m_lock;
    std::shared_ptr<x11::Session> m_session KX_GUARDED_BY(m_lock);
    std::thread m_events KX_GUARDED_BY(m_lock);
    std::optional<gdi::Surface> m_seen KX_GUARDED_BY(gdi::pixelLock);
};

} // namespace kx::window
