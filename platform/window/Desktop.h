#pragma once

#include "include/platform/Host.h"
#include "include/platform/Window.h"
#include "platform/screen/Screen.h"

#include <chrono>
#include <memory>
#include <optional>
#include <vector>

namespace kx::window {

class Window;

// Facts about a window of any process, which everyone may know.
struct WindowFacts
{
    DWORD threadId;
    DWORD processId;
    bool visible;
};

enum class Order
{
    Top,        // above all of its kind, which are the topmost and the others
    Bottom,     // below all
    Topmost,    // from now on one of the topmost
    NotTopmost, // no longer
};

// The place where windows appear, as far as it differs between desktops. The messages of this process's
// windows are none of its business: what a desktop learns of them (input, a wish to close) it gives them with
// PostMessage and PostChore.
//
// Any thread may call any operation, and no lock is held during the call. What concerns a window of this
// process is called on the window's thread, but for Show and SetText. A handle that ended, or never was, is
// harmless.
class Desktop
{
public:
    // The process's desktop, chosen at the first use; that in memory where a display can't be had.
    static Desktop& Instance() noexcept;
    // Chooses another from now on; false while there are windows.
    static bool Use(Desktop& desktop);
    // The desktop of a display, or with null of DISPLAY; null for a server that hasn't answered within the
    // limit.
    static std::unique_ptr<Desktop> Open(const char* pszDisplay, std::chrono::milliseconds limit);
    // Lets it live, for those who still use it, until the library goes.
    static Desktop& Keep(std::unique_ptr<Desktop> desktop);
    virtual ~Desktop() = default;

    // From the origin to the right and bottom end of all monitors.
    virtual SIZE Size() const noexcept = 0;
    // The primary monitor, whose top left is the origin.
    virtual SIZE Monitor() const noexcept { return Size(); }
    // Whether a person may see it, and answer what is asked there.
    virtual bool IsSeen() const noexcept { return true; }
    // Another has taken its place: it gives back what it holds of the system's. Without the lock of the
    // desktop's pixels.
    virtual void Disconnect() noexcept {}

    // ---- Windows of this process

    // A window begins, still hidden; false if it can't. The record is valid during the call.
    virtual bool Create(HWND hWnd, const CREATESTRUCTA& create) = 0;
    virtual void Show(HWND hWnd, bool bVisible) = 0;
    virtual void SetText(HWND hWnd, const char* pszText) = 0;
    // Sets the window's rectangle too: at once with what it asks for or learns of the place itself, so that
    // the last word is the same here and there.
    virtual void Place(Window& window, const RECT& rect) = 0;
    virtual void Stack(HWND hWnd, Order order) = 0;
    // Cut to a region of its own coordinates, or with null whole.
    virtual void Shape(HWND, const gdi::PixelRegion*) {}
    // Opaque at first: 255.
    virtual void SetOpacity(HWND hWnd, BYTE opacity) = 0;
    // Gives the keyboard to a window, or with null to none of this process.
    virtual void Focus(HWND hWnd) = 0;
    // Whether a window that was given the keyboard has it still, and no other one was asked for since.
    virtual bool HasFocus(HWND) const { return true; }
    virtual void Destroy(HWND hWnd) noexcept = 0;
    // A window stays above another of this process, which is disabled as long as it lives.
    virtual void SetOwner(HWND, HWND) {}
    // Sets the look of the mouse over a window: one of LoadCursorA's, or null for nothing.
    virtual void SetCursor(HWND, HCURSOR) {}
    // Tells where in a window text is being written.
    virtual void SetCaret(HWND, POINT) {}
    // Pixels of 0xAARRGGBB by which a window is known; null for none.
    virtual void SetIcon(HWND, const gdi::Surface*) {}

    // ---- Pixels

    // The desktop's pixels below all windows, made of that size at the first use; null for a lack of memory.
    static std::shared_ptr<screen::Backing> Root(SIZE size) KX_REQUIRES(screen::pixelLock);
    // A rectangle of a window's pixels has changed, or with the first call since Show all of them count: only
    // from then on there is something to see of it.
    virtual void Present(const Window& window, const RECT& rect) = 0;
    // The desktop as it is seen, of which the rectangle is up to date; `root` is what lies under all windows.
    // The pixels are of the root's size. screen::pixelLock is free while a display is waited for.
    virtual gdi::Surface& Look(const RECT& rect, gdi::Surface& root) KX_REQUIRES(screen::pixelLock) = 0;

    // ---- Windows of other processes, whose handles are numbers of NewAge

    virtual std::vector<HWND> ForeignWindows() const = 0;
    virtual std::optional<WindowFacts> FindForeign(HWND hWnd) const noexcept = 0;
    // False for no such window.
    virtual bool PostForeign(HWND hWnd, const KXHost::SentMessage& message) = 0;
    virtual LRESULT SendForeign(HWND hWnd, const KXHost::SentMessage& message) = 0;
};

// The module for X11 gives this.
struct Functions
{
    // Stands for Desktop::Open.
    std::unique_ptr<Desktop> (*open)(const char* pszDisplay, std::chrono::milliseconds limit);
};

} // namespace kx::window
