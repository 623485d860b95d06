#include "include/platform/Clock.h"
#include "include/platform/Input.h"
#include "include/platform/Sync.h"
#include "platform/Errno.h"
#include "platform/window/Desktop.h"
#include "platform/window/Queue.h"
#include "platform/window/WindowState.h"
#include "platform/window/WindowTable.h"

#include <memory>

namespace kx::window {

namespace {

void DoChore(Window& window, Chore chore, LPARAM lParam)
{
    switch (chore) {
    case Chore::Destroy:
        DestroyWindow(window.Handle());
        break;
    case Chore::GainFocus: // old once the thread has given the focus to another window meanwhile
        if (!Desktop::Instance().HasFocus(window.Handle())) break;
        if (window.enabled)
            TakeFocus(window.Handle());
        else if (const HWND hModal = window.Owner().input.modal)
            SetFocus(hModal);
        break;
    case Chore::LoseFocus:
        DropCapture(window.Handle());
        DropFocus(window.Handle());
        break;
    case Chore::Place:
        TellPlace(window, (lParam & kMoved) != 0, (lParam & kResized) != 0);
        break;
    case Chore::AskFocus:
        if (window.visible) SetFocus(window.Handle());
        break;
    case Chore::Hide:
        if (!window.visible) DropFocus(window.Handle());
        break;
    }
}

} // namespace

void PostChore(HWND hWnd, Chore chore, LPARAM lParam)
{
    if (const auto window = WindowTable::Instance().Find(hWnd))
        window->Owner().PostChore({hWnd, kChore, static_cast<WPARAM>(chore), lParam, GetTickCount()},
                                  *window);
}

} // namespace kx::window

namespace {

using kx::window::Desktop;
using kx::window::Queue;
using kx::window::SentMessage;
using kx::window::Window;
using kx::window::WindowTable;

using WindowPtr = std::shared_ptr<Window>;

int Done(DWORD dwError) noexcept
{
    return dwError == ERROR_SUCCESS ? 1 : kx::Fail(dwError);
}

int PostTo(Queue& queue, const Window* target, UINT nMsg, WPARAM wParam, LPARAM lParam)
{
    const MSG msg{target ? target->Handle() : nullptr, nMsg, wParam, lParam, GetTickCount()};
    return Done(queue.Post(msg, target));
}

// Sends to a window of another thread and waits for the answer. A thread that has come to its end has no
// queue any more and no windows to be sent to, so a queue of the moment's will do for the wait.
LRESULT SendAcross(const WindowPtr& target, UINT nMsg, WPARAM wParam, LPARAM lParam)
{
    auto own = kx::window::ThisThread();
    if (!own) own = std::make_shared<Queue>(GetCurrentThreadId());
    Queue& receiver = target->Owner();
    const auto message = std::make_shared<SentMessage>(SentMessage{target, nMsg, wParam, lParam, own});
    if (const DWORD error = receiver.Send(message); error != ERROR_SUCCESS) return kx::Fail(error);

    // A procedure that is served here meanwhile may throw: then nobody waits any more.
    struct WithdrawAtExit
    {
        Queue& receiver;
        const SentMessage& message;
        bool answered = false;
        ~WithdrawAtExit()
        {
            if (!answered) receiver.Withdraw(message);
        }
    } withdraw{receiver, *message};
    const LRESULT nResult = kx::window::Queue::WaitForAnswer(*message);
    withdraw.answered = true;
    return nResult;
}

// The window of a filter of this thread; false for one that isn't.
bool FindFilter(HWND hWnd, WindowPtr& window)
{
    if (hWnd) window = kx::window::FindOwn(hWnd);
    return !hWnd || window;
}

// A pressed button gives its window the focus before anyone hears of it.
void FocusOnPress(const MSG& msg)
{
    if (kx::window::IsPress(msg.message) && msg.hwnd && GetFocus() != msg.hwnd) SetFocus(msg.hwnd);
}

} // namespace

int PostMessage(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam)
try {
    if (!hWnd) {
        const auto own = kx::window::ThisThread();
        return own ? PostTo(*own, nullptr, nMsg, wParam, lParam) : kx::Fail(ERROR_INVALID_THREAD_ID);
    }
    if (const auto window = WindowTable::Instance().Find(hWnd))
        return PostTo(window->Owner(), window.get(), nMsg, wParam, lParam);
    const bool bPosted = Desktop::Instance().PostForeign(hWnd, {nMsg, wParam, lParam});
    return bPosted ? 1 : kx::Fail(ERROR_INVALID_WINDOW_HANDLE);
} catch (...) {
    return kx::NoMemory();
}

void PostQuitMessage(int nExitCode)
try {
    if (const auto own = kx::window::ThisThread()) own->PostQuit(nExitCode);
} catch (...) {
    kx::NoMemory();
}

LRESULT SendMessageA(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam)
try {
    const auto window = WindowTable::Instance().Find(hWnd);
    if (window) {
        const bool bOwn = kx::window::IsThisThread(window->Owner());
        return bOwn ? window->Call(nMsg, wParam, lParam) : SendAcross(window, nMsg, wParam, lParam);
    }
    if (!IsWindow(hWnd)) return kx::Fail(ERROR_INVALID_WINDOW_HANDLE);
    return Desktop::Instance().SendForeign(hWnd, {nMsg, wParam, lParam});
} catch (...) {
    return kx::NoMemory();
}

int GetMessageA(MSG* pMsg, HWND hWnd, UINT nMin, UINT nMax)
try {
    const auto refuse = [](DWORD dwError) {
        SetLastError(dwError);
        return -1;
    };
    const auto own = kx::window::ThisThread();
    WindowPtr window;
    if (!pMsg) return refuse(ERROR_INVALID_PARAMETER);
    if (!own) return refuse(ERROR_INVALID_THREAD_ID);
    if (!FindFilter(hWnd, window)) return refuse(ERROR_INVALID_WINDOW_HANDLE);
    int nResult = 0;
    do {
        nResult = own->Get(*pMsg, {window.get(), nMin, nMax});
        if (nResult < 0) return refuse(ERROR_INVALID_WINDOW_HANDLE);
    } while (own->WasInput() && !kx::window::HearInput(*pMsg, true));
    FocusOnPress(*pMsg);
    return nResult;
} catch (...) {
    kx::NoMemory();
    return -1;
}

int PeekMessageA(MSG* pMsg, HWND hWnd, UINT nMin, UINT nMax, UINT nRemove)
try {
    const auto own = kx::window::ThisThread();
    WindowPtr window;
    if (!pMsg) return kx::Fail(ERROR_INVALID_PARAMETER);
    if (!own) return kx::Fail(ERROR_INVALID_THREAD_ID);
    if (!FindFilter(hWnd, window)) return kx::Fail(ERROR_INVALID_WINDOW_HANDLE);
    const bool bRemove = (nRemove & PM_REMOVE) != 0;
    const kx::window::Filter filter{window.get(), nMin, nMax};
    bool bFound = own->Peek(*pMsg, filter, bRemove);
    while (bFound && own->WasInput() && !kx::window::HearInput(*pMsg, bRemove)) {
        if (!bRemove) own->Peek(*pMsg, filter, true);
        bFound = own->Peek(*pMsg, filter, bRemove);
    }
    if (bFound && bRemove) FocusOnPress(*pMsg);
    return bFound;
} catch (...) {
    return kx::NoMemory();
}

LRESULT DispatchMessageA(const MSG* pMsg)
try {
    if (!pMsg || !pMsg->hwnd) return 0;
    const WindowPtr window = kx::window::FindOwn(pMsg->hwnd);
    if (!window) return 0;
    if (pMsg->message == kx::window::kChore) {
        kx::window::DoChore(*window, static_cast<kx::window::Chore>(pMsg->wParam), pMsg->lParam);
        return 0;
    }
    if (pMsg->message == WM_TIMER && pMsg->lParam) {
        const auto pfn = reinterpret_cast<TIMERPROC>(pMsg->lParam);
        pfn(pMsg->hwnd, WM_TIMER, pMsg->wParam, GetTickCount());
        return 0;
    }
    return window->Call(pMsg->message, pMsg->wParam, pMsg->lParam);
} catch (...) {
    return kx::NoMemory();
}

UINT_PTR SetTimer(HWND hWnd, UINT_PTR nId, UINT nPeriod, TIMERPROC pfn)
try {
    const auto window = kx::window::FindOwn(hWnd);
    if (!window) return 0;
    if (nId == 0) nId = 1;
    window->Owner().SetTimer(*window, nId, nPeriod, pfn);
    return nId;
} catch (...) {
    return kx::NoMemory();
}

int KillTimer(HWND hWnd, UINT_PTR nId)
{
    const auto window = kx::window::FindOwn(hWnd);
    return window && window->Owner().KillTimer(*window, nId) ? 1 : 0;
}
