#pragma once

#include "include/platform/Window.h"
#include "platform/window/ClassTable.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <string>

namespace kx::window {

class Queue;

// A window of this process. Those who work with it share it, so it outlives its end in the WindowTable.
class Window
{
public:
    Window(HWND handle, std::shared_ptr<const WindowClass> cls, std::shared_ptr<Queue> owner,
           const CREATESTRUCTA& create);

    HWND Handle() const noexcept { return m_handle; }
    DWORD ProcessId() const noexcept { return m_processId; }
    // The queue of the thread that made it.
    Queue& Owner() const noexcept { return *m_owner; }
    WNDPROC Procedure() const noexcept { return m_proc; }
    // Runs the procedure, on the owning thread.
    LRESULT Call(UINT nMsg, WPARAM wParam, LPARAM lParam) const
    {
        return m_proc(m_handle, nMsg, wParam, lParam);
    }
    // Lets the class be removed, whoever still holds this window. By the owning thread.
    void LeaveClass() noexcept { m_class.reset(); }

    // Where it lies on the desktop.
    const RECT& Rect() const noexcept { return m_rect; }

    std::string Text() const;
    void SetText(const char* pszText);

    std::atomic<bool> visible{false};
    std::atomic<std::intptr_t> userData{0};

    // The owning thread's alone: its end has begun.
    bool ending = false;
    // No message reaches it any more. Set by the owning thread under its queue's lock, so that thread may
    // read it without.
    bool ended = false;

private:
    const HWND m_handle;
    const DWORD m_processId;
    const WNDPROC m_proc;
    std::shared_ptr<const WindowClass> m_class;
    const std::shared_ptr<Queue> m_owner;
    const RECT m_rect;
    mutable std::mutex m_textLock;
    std::string m_text;
};

} // namespace kx::window
