#pragma once

#include "include/platform/String.h"
#include "include/platform/Window.h"
#include "platform/Handles.h"
#include "platform/gdi/PixelRegion.h"
#include "platform/screen/Screen.h"
#include "platform/sync/Mutex.h"

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kx::window {

struct WindowClass
{
    CString name;
    CString key; // the name with its ASCII letters folded
    WNDPROC proc;
    HBRUSH background; // null: none
    UINT style;
    HCURSOR cursor; // null: none
    HICON icon;     // likewise
};

// The classes of windows by name. A class's atom tells its place here. Any thread.
class ClassTable
{
public:
    static ClassTable& Instance();

    // Give an error number, ERROR_SUCCESS when done.
    DWORD Add(const WNDCLASSA& cls, WORD& atom);
    DWORD Remove(const char* pszNameOrAtom);
    // Null for no such class. A class that is held by anyone can't be removed.
    std::shared_ptr<const WindowClass> Find(const char* pszNameOrAtom) const;

private:
    using ClassPtr = std::shared_ptr<const WindowClass>;

    std::size_t IndexOf(const char* pszNameOrAtom) const KX_REQUIRES(m_lock);
    std::size_t IndexOfKey(const CString& key) const KX_REQUIRES(m_lock);

    mutable sync::Mutex m_lock;
    std::vector<ClassPtr> m_classes KX_GUARDED_BY(m_lock); // null where a class was removed
};

class Queue;

// The rectangle of that place and size: a size below 0 counts as none, and the far sides stay within an int.
KX_API RECT RectOf(int x, int y, int nWidth, int nHeight) noexcept;
constexpr SIZE SizeOf(const RECT& rect) noexcept
{
    return {rect.right - rect.left, rect.bottom - rect.top};
}
// The rectangle in its own coordinates.
constexpr RECT WithinItself(const RECT& rect) noexcept
{
    return {0, 0, rect.right - rect.left, rect.bottom - rect.top};
}

// A window of this process. Held by shared_ptr: callers may use it after WindowTable has removed it.
class Window
{
public:
    static constexpr HandleKind HANDLE_KIND = HandleKind::Window;

    // The hook is the procedure, or with null the class's.
    Window(std::shared_ptr<const WindowClass> cls, WNDPROC hook, std::shared_ptr<Queue> owner,
           const CREATESTRUCTA& create);

    HWND Handle() const noexcept { return m_handle; }
    // A number that is greater for a younger window, of this process or another.
    std::uintptr_t Age() const noexcept { return m_age; }
    // Once, before another thread may know of the window.
    void SetHandle(HWND hWnd, std::uintptr_t nAge) noexcept
    {
        m_handle = hWnd;
        m_age = nAge;
    }
    DWORD ProcessId() const noexcept { return m_processId; }
    // The queue of the thread that made it.
    Queue& Owner() const noexcept { return *m_owner; }
    WNDPROC Procedure() const noexcept { return m_proc; }
    WNDPROC ClassProcedure() const noexcept { return m_classProc; }
    // Runs the procedure, on the owning thread.
    LRESULT Call(UINT nMsg, WPARAM wParam, LPARAM lParam) const
    {
        return m_proc(m_handle, nMsg, wParam, lParam);
    }
    // Lets the class be removed, whoever still holds this window. By the owning thread.
    void LeaveClass() noexcept { m_class.reset(); }

    HBRUSH Background() const noexcept { return m_background; }
    UINT ClassStyle() const noexcept { return m_classStyle; }
    HCURSOR ClassCursor() const noexcept { return m_classCursor; }

    // Its place on the desktop.
    KX_API RECT Rect() const;
    KX_API void SetRect(const RECT& rect);

    std::string Text() const;
    void SetText(const char* pszText);

    std::atomic<bool> visible{false};
    std::atomic<bool> enabled{true};
    std::atomic<BYTE> opacity{255};
    std::atomic<HICON> icon{nullptr};
    std::atomic<std::intptr_t> userData{0};

    // Null until something is drawn.
    std::shared_ptr<screen::Backing> backing KX_GUARDED_BY(screen::pixelLock);
    // The part of it that is seen; nothing: all.
    std::optional<gdi::PixelRegion> shape KX_GUARDED_BY(screen::pixelLock);
    // It has been painted since it was shown.
    bool appeared KX_GUARDED_BY(screen::pixelLock) = false;

    // The owning thread's alone: its end has begun, it asked to hear that the mouse leaves it, and which
    // animation of it is the newest.
    bool ending = false;
    bool tracksLeave = false;
    unsigned animation = 0;
    // No message reaches it any more. The owning thread sets it under its queue's lock, under which others
    // look at it before they queue something for the window.
    std::atomic<bool> ended{false};

private:
    HWND m_handle = nullptr;
    std::uintptr_t m_age = 0;
    const DWORD m_processId;
    const WNDPROC m_proc;
    const WNDPROC m_classProc;
    const HBRUSH m_background;
    const UINT m_classStyle;
    const HCURSOR m_classCursor;
    std::shared_ptr<const WindowClass> m_class;
    const std::shared_ptr<Queue> m_owner;
    mutable sync::Mutex m_lock;
    RECT m_rect KX_GUARDED_BY(m_lock);
    std::string m_text KX_GUARDED_BY(m_lock);
};

} // namespace kx::window
