#pragma once

#include "include/platform/Host.h"
#include "include/platform/Window.h"

#include <optional>
#include <vector>

namespace kx::window {

// What anyone may know of a window of any process.
struct WindowFacts
{
    DWORD threadId;
    DWORD processId;
    bool visible;
};

// Where windows appear: what differs between desktops. The messages of this process's windows are none of its
// business: what a desktop learns of them (input, a wish to close) it gives them with PostMessage.
//
// Any thread may call any operation, and no lock is held during the call. What concerns a window of this
// process is called on the window's thread, but for Show and SetText. A handle that ended, or never was, is
// harmless.
class Desktop
{
public:
    // The process's desktop, chosen at the first use.
    static Desktop& Instance();
    virtual ~Desktop() = default;

    // ---- Windows of this process

    // A window begins, still hidden; false if it can't. The record is valid during the call.
    virtual bool Create(HWND hWnd, const CREATESTRUCTA& create) = 0;
    virtual void Show(HWND hWnd, bool bVisible) = 0;
    virtual void SetText(HWND hWnd, const char* pszText) = 0;
    virtual void Destroy(HWND hWnd) noexcept = 0;

    // ---- Windows of other processes, which it numbers with NewHandle

    virtual std::vector<HWND> ForeignWindows() const = 0;
    virtual std::optional<WindowFacts> FindForeign(HWND hWnd) const noexcept = 0;
    // False for no such window.
    virtual bool PostForeign(HWND hWnd, const KXHost::SentMessage& message) = 0;
    virtual LRESULT SendForeign(HWND hWnd, const KXHost::SentMessage& message) = 0;

    // ---- Message boxes

    // Waits for the answer, where there is one to be had, and returns it (an ID... number).
    virtual int ShowMessageBox(const KXHost::MessageBoxRecord& box) = 0;
};

} // namespace kx::window
