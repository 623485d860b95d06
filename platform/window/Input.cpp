// Input of a person: which window hears it, and as which message.

#include "platform/window/Input.h"

#include "include/platform/Clock.h"
#include "platform/Errno.h"
#include "platform/window/Desktop.h"
#include "platform/window/Queue.h"
#include "platform/window/WindowState.h"
#include "platform/window/WindowTable.h"

#include <cstdlib>
#include <utility>

namespace kx::window {

namespace {

constexpr DWORD kDoubleClickTime = 500; // milliseconds
constexpr int kDoubleClickReach = 2;    // pixels to each side

bool IsMouse(UINT nMsg) noexcept
{
    return nMsg >= WM_MOUSEMOVE && nMsg <= WM_MOUSEWHEEL;
}

bool IsKey(UINT nMsg) noexcept
{
    return nMsg == WM_KEYDOWN || nMsg == WM_KEYUP || nMsg == WM_SYSKEYDOWN || nMsg == WM_SYSKEYUP;
}

void LearnKey(Input& input, const MSG& msg)
{
    const std::size_t key = msg.wParam & 0xFF;
    const bool bDown = msg.message == WM_KEYDOWN || msg.message == WM_SYSKEYDOWN;
    if (bDown && !input.down[key]) input.toggled.flip(key);
    input.down[key] = bDown;
}

// The wheel tells its place on the desktop, all else within the window.
void Redirect(const Input& input, MSG& msg)
{
    const auto from = WindowTable::Instance().Find(msg.hwnd);
    const auto to = WindowTable::Instance().Find(input.capture);
    if (!from || !to || from == to) return;
    const RECT old = from->Rect();
    const RECT now = to->Rect();
    msg.hwnd = input.capture;
    if (msg.message != WM_MOUSEWHEEL)
        msg.lParam = PlaceOf(
            {GET_X_LPARAM(msg.lParam) + old.left - now.left, GET_Y_LPARAM(msg.lParam) + old.top - now.top});
}

bool IsSecondPress(const MSG& first, const MSG& second) noexcept
{
    const auto isNear = [](int a, int b) { return std::abs(a - b) <= kDoubleClickReach; };
    return first.hwnd == second.hwnd && first.message == second.message &&
           second.time - first.time <= kDoubleClickTime &&
           isNear(GET_X_LPARAM(first.lParam), GET_X_LPARAM(second.lParam)) &&
           isNear(GET_Y_LPARAM(first.lParam), GET_Y_LPARAM(second.lParam));
}

// A second press becomes a double click; a third is a first one again.
void LearnPress(Input& input, const Window& window, MSG& msg)
{
    constexpr UINT toDoubleClick = WM_LBUTTONDBLCLK - WM_LBUTTONDOWN;
    const bool bDouble = (window.ClassStyle() & CS_DBLCLKS) && IsSecondPress(input.press, msg);
    input.press = bDouble ? MSG{} : msg;
    if (bDouble) msg.message += toDoubleClick;
}

// False once the window has ended in its handler of WM_SETCURSOR.
bool HearMouse(Input& input, MSG& msg)
{
    if (input.capture) Redirect(input, msg);
    const auto window = WindowTable::Instance().Find(msg.hwnd);
    if (!window) return false;
    input.under = msg.hwnd;
    if (IsPress(msg.message)) LearnPress(input, *window, msg);
    if (!input.capture && msg.message != WM_MOUSEWHEEL)
        window->Call(WM_SETCURSOR, reinterpret_cast<WPARAM>(msg.hwnd),
                     PlaceOf({HTCLIENT, static_cast<LONG>(msg.message)}));
    return !window->ended;
}

void LoseCapture(Input& input, HWND hNext)
{
    const HWND hOld = std::exchange(input.capture, hNext);
    if (hOld && hOld != hNext && IsWindow(hOld))
        SendMessageA(hOld, WM_CAPTURECHANGED, 0, reinterpret_cast<LPARAM>(hNext));
}

} // namespace

int PostInput(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam, bool bLatest)
{
    const auto window = FindAny(hWnd);
    if (!window) return 0;
    const DWORD error =
        window->Owner().PostInput({hWnd, nMsg, wParam, lParam, GetTickCount()}, *window, bLatest);
    return error == ERROR_SUCCESS ? 1 : kx::Fail(error);
}

bool HearInput(MSG& msg, bool bTaken)
{
    const auto window = WindowTable::Instance().Find(msg.hwnd);
    const auto own = ThisThread();
    if (!window || !own) return false;
    Input& input = own->input;
    if (bTaken && IsKey(msg.message)) LearnKey(input, msg);
    if (!window->enabled) {
        if (bTaken && IsPress(msg.message) && input.modal) {
            Desktop::Instance().Stack(input.modal, Order::Top);
            SetFocus(input.modal);
        }
        return false;
    }
    if (msg.message == WM_MOUSELEAVE)
        return bTaken ? std::exchange(window->tracksLeave, false) : window->tracksLeave;
    return !bTaken || !IsMouse(msg.message) || HearMouse(input, msg);
}

void DropCapture(HWND hWnd)
{
    const auto own = ThisThread();
    if (own && own->input.capture == hWnd) LoseCapture(own->input, nullptr);
}

} // namespace kx::window

namespace window = kx::window;

int EnableWindow(HWND hWnd, int bEnable)
try {
    const auto found = window::FindAny(hWnd);
    if (!found) return 0;
    const bool bWas = found->enabled.exchange(bEnable != 0);
    if (bWas == (bEnable != 0)) return !bWas;
    if (!bEnable && window::IsThisThread(found->Owner())) {
        window::DropCapture(hWnd);
        window::DropFocus(hWnd);
    }
    SendMessageA(hWnd, WM_ENABLE, bEnable != 0, 0);
    return !bWas;
} catch (...) {
    return kx::NoMemory();
}

int IsWindowEnabled(HWND hWnd) noexcept
{
    const auto found = window::WindowTable::Instance().Find(hWnd);
    return found && found->enabled;
}

HWND SetCapture(HWND hWnd)
try {
    const auto found = window::FindOwn(hWnd);
    if (!found) return nullptr;
    window::Input& input = found->Owner().input;
    const HWND hOld = input.capture;
    window::LoseCapture(input, hWnd);
    return hOld;
} catch (...) {
    return kx::NoMemory();
}

int ReleaseCapture()
try {
    if (const auto own = window::ThisThread()) window::LoseCapture(own->input, nullptr);
    return 1;
} catch (...) {
    return kx::NoMemory();
}

HWND GetCapture() noexcept
{
    try {
        const auto own = window::ThisThread();
        return own ? own->input.capture : nullptr;
    } catch (...) {
        return kx::NoMemory();
    }
}

int TrackMouseEvent(TRACKMOUSEEVENT* pEvent)
{
    if (!pEvent || !(pEvent->dwFlags & TME_LEAVE)) return kx::Fail(ERROR_INVALID_PARAMETER);
    const auto found = window::FindOwn(pEvent->hwndTrack);
    if (!found) return 0;
    found->tracksLeave = !(pEvent->dwFlags & TME_CANCEL);
    return 1;
}

short GetKeyState(int nKey) noexcept
{
    try {
        const auto own = window::ThisThread();
        if (!own || nKey < 0 || nKey > 0xFF) return 0;
        const auto key = static_cast<std::size_t>(nKey);
        return static_cast<short>((own->input.down[key] ? 0x8000 : 0) | (own->input.toggled[key] ? 1 : 0));
    } catch (...) {
        return kx::NoMemory();
    }
}

HCURSOR LoadCursorA(HINSTANCE hInstance, const char* pszName) noexcept
{
    const auto number = reinterpret_cast<std::uintptr_t>(pszName);
    const bool bSystem = !hInstance && (number - 32512 <= 4 || number - 32642 <= 8) && number != 32647;
    if (!bSystem) SetLastError(ERROR_INVALID_PARAMETER);
    return bSystem ? reinterpret_cast<HCURSOR>(number) : nullptr;
}

HCURSOR SetCursor(HCURSOR hCursor)
try {
    const auto own = window::ThisThread();
    if (!own) return nullptr;
    if (own->input.under) window::Desktop::Instance().SetCursor(own->input.under, hCursor);
    return std::exchange(own->input.cursor, hCursor);
} catch (...) {
    return kx::NoMemory();
}

int SetCaretPos(int x, int y)
try {
    const HWND hFocus = GetFocus();
    if (!hFocus) return kx::Fail(ERROR_ACCESS_DENIED);
    window::Desktop::Instance().SetCaret(hFocus, {x, y});
    return 1;
} catch (...) {
    return kx::NoMemory();
}
