#include "include/platform/MessageBox.h"
#include "include/platform/Input.h"
#include "include/platform/WindowPaint.h"
#include "platform/Errno.h"
#include "platform/gdi/Rect.h"
#include "platform/text/CharWalk.h"
#include "platform/text/Conversion.h"
#include "platform/window/Desktop.h"
#include "platform/window/HeadlessDesktop.h"
#include "platform/window/Queue.h"
#include "platform/window/WindowTable.h"

#include <algorithm>
#include <cerrno>
#include <string>
#include <utility>
#include <vector>

namespace kx::window {

namespace {

constexpr char kClass[] = "KXMessageBox";
constexpr char kButtonText[] = "OK";
constexpr UINT kTextFormat = DT_WORDBREAK | DT_NOPREFIX;
constexpr std::size_t kMostText = 4'000; // more than a screen shows
constexpr int kMargin = 20;
constexpr int kTextWidth = 400;
constexpr int kLeastWidth = 200;
constexpr SIZE kButton{88, 26};
constexpr COLORREF kFace = RGB(240, 240, 240);
constexpr COLORREF kButtonFace = RGB(225, 225, 225);
constexpr COLORREF kPressedFace = RGB(204, 228, 247);
constexpr COLORREF kEdge = RGB(0, 120, 215);

bool Contains(const RECT& rect, int x, int y) noexcept
{
    return x >= rect.left && x < rect.right && y >= rect.top && y < rect.bottom;
}

void Fill(HDC hDC, const RECT& rect, COLORREF clr)
{
    const HBRUSH hBrush = CreateSolidBrush(clr);
    FillRect(hDC, &rect, hBrush);
    DeleteObject(hBrush);
}

// Lets no other window of the thread hear the mouse and the keys until the scope ends.
class Modal
{
public:
    Modal(Queue& owner, HWND hBox) : m_input(owner.input), m_outer(std::exchange(m_input.modal, hBox))
    {
        for (const HWND hWnd : WindowTable::Instance().Handles(&owner))
            if (hWnd != hBox && IsWindowEnabled(hWnd)) m_disabled.push_back(hWnd);
        for (const HWND hWnd : m_disabled)
            EnableWindow(hWnd, 0);
    }
    Modal(const Modal&) = delete;
    Modal& operator=(const Modal&) = delete;
    ~Modal()
    {
        m_input.modal = m_outer;
        for (const HWND hWnd : m_disabled)
            EnableWindow(hWnd, 1);
    }

private:
    Input& m_input;
    const HWND m_outer;
    std::vector<HWND> m_disabled;
};

// The window of the thread that a box belongs to: the one that has the focus, or the newest that is seen.
HWND OwnerOf(const Queue& queue)
{
    if (const HWND hFocus = GetFocus()) return hFocus;
    HWND hOwner = nullptr;
    for (const HWND hWnd : WindowTable::Instance().Handles(&queue))
        if (IsWindowVisible(hWnd)) hOwner = hWnd;
    return hOwner;
}

// A message in a window of the calling thread in the middle of the desktop, above the others, which hear no
// input meanwhile.
class Box
{
public:
    explicit Box(const char* pszText) : m_text(text::CutAtChar(pszText, kMostText)) { Arrange(); }
    Box(const Box&) = delete;
    Box& operator=(const Box&) = delete;
    ~Box()
    {
        if (m_window) DestroyWindow(m_window);
    }

    // Waits until the button is pressed, by Enter, Space or Escape too, or the window is closed; the thread's
    // messages are dispatched meanwhile. A WM_QUIT among them ends it and stays the thread's. Gives IDOK, or
    // 0 at once where no window can be made.
    int Run();

private:
    static LRESULT Procedure(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam);
    LRESULT Hear(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam);
    void Arrange();
    void Draw(HDC hDC);
    void DrawButton(HDC hDC);
    void Press(HWND hWnd, bool bPressed);

    const std::string m_text;
    RECT m_textRect{};
    RECT m_buttonRect{};
    SIZE m_size{};
    bool m_bPressed = false;
    HWND m_window = nullptr; // null again when it has ended
};

// A text that is too high for the desktop is cut at its bottom, so that the button stays in reach.
void Box::Arrange()
{
    const int nScreenHeight = GetSystemMetrics(SM_CYSCREEN);
    RECT text{0, 0, kTextWidth, 0};
    const HDC hDC = CreateCompatibleDC(nullptr);
    DrawTextA(hDC, m_text.data(), static_cast<int>(m_text.size()), &text, kTextFormat | DT_CALCRECT);
    DeleteDC(hDC);
    const int nWidth = std::clamp<int>(text.right, kLeastWidth, kTextWidth);
    const int nMostHeight = std::max<int>(nScreenHeight - 4 * kMargin - kButton.cy, kMargin);
    const int nHeight = std::min<int>(text.bottom, nMostHeight);
    m_textRect = {kMargin, kMargin, kMargin + nWidth, kMargin + nHeight};
    m_size = {nWidth + 2 * kMargin, nHeight + 3 * kMargin + kButton.cy};
    const int x = (m_size.cx - kButton.cx) / 2;
    const int y = m_textRect.bottom + kMargin;
    m_buttonRect = {x, y, x + kButton.cx, y + kButton.cy};
}

void Box::DrawButton(HDC hDC)
{
    RECT rect = m_buttonRect;
    Fill(hDC, rect, kEdge);
    rect = {rect.left + 1, rect.top + 1, rect.right - 1, rect.bottom - 1};
    Fill(hDC, rect, m_bPressed ? kPressedFace : kButtonFace);
    DrawTextA(hDC, kButtonText, -1, &rect, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
}

void Box::Draw(HDC hDC)
{
    Fill(hDC, {0, 0, m_size.cx, m_size.cy}, kFace);
    SetBkMode(hDC, TRANSPARENT);
    RECT text = m_textRect;
    DrawTextA(hDC, m_text.data(), static_cast<int>(m_text.size()), &text, kTextFormat);
    DrawButton(hDC);
}

void Box::Press(HWND hWnd, bool bPressed)
{
    if (m_bPressed == bPressed) return;
    m_bPressed = bPressed;
    InvalidateRect(hWnd, &m_buttonRect, 1);
}

LRESULT Box::Procedure(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam)
{
    if (nMsg == WM_NCCREATE) {
        const auto* create = reinterpret_cast<const CREATESTRUCTA*>(lParam);
        SetWindowLongPtrA(hWnd, GWLP_USERDATA, reinterpret_cast<std::intptr_t>(create->lpCreateParams));
    }
    auto* box = reinterpret_cast<Box*>(GetWindowLongPtrA(hWnd, GWLP_USERDATA));
    return box ? box->Hear(hWnd, nMsg, wParam, lParam) : DefWindowProcA(hWnd, nMsg, wParam, lParam);
}

LRESULT Box::Hear(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam)
{
    const bool bOver = Contains(m_buttonRect, GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam));
    switch (nMsg) {
    case WM_ERASEBKGND:
        Draw(reinterpret_cast<HDC>(wParam));
        return 1;
    case WM_LBUTTONDOWN:
        Press(hWnd, bOver);
        return 0;
    case WM_LBUTTONUP:
        if (m_bPressed && bOver)
            DestroyWindow(hWnd);
        else
            Press(hWnd, false);
        return 0;
    case WM_KEYDOWN:
        if (wParam == VK_RETURN || wParam == VK_ESCAPE || wParam == VK_SPACE) DestroyWindow(hWnd);
        return 0;
    case WM_NCDESTROY:
        m_window = nullptr;
        SetWindowLongPtrA(hWnd, GWLP_USERDATA, 0);
        return 0;
    default:
        return DefWindowProcA(hWnd, nMsg, wParam, lParam);
    }
}

int Box::Run()
{
    static const WNDCLASSA cls{Procedure, kClass};
    [[maybe_unused]] static const WORD atom = RegisterClassA(&cls);
    const int x = (GetSystemMetrics(SM_CXSCREEN) - m_size.cx) / 2;
    const int y = (GetSystemMetrics(SM_CYSCREEN) - m_size.cy) / 2;
    const std::string title = text::FromUtf8Lossy(program_invocation_short_name);
    const auto own = ThisThread();
    if (!own) return 0;
    const HWND hOwner = OwnerOf(*own);
    m_window = CreateWindowExA(0, kClass, title.c_str(), WS_CAPTION, x, y, m_size.cx, m_size.cy, nullptr,
                               nullptr, nullptr, this);
    if (!m_window) return 0;
    MSG msg;
    {
        const Modal modal(*own, m_window);
        if (hOwner) Desktop::Instance().SetOwner(m_window, hOwner);
        SetWindowPos(m_window, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_SHOWWINDOW);
        while (m_window && GetMessageA(&msg, nullptr, 0, 0) > 0)
            DispatchMessageA(&msg);
    }
    if (hOwner && IsWindowVisible(hOwner)) SetFocus(hOwner);
    if (m_window) PostQuitMessage(static_cast<int>(msg.wParam));
    return IDOK;
}

} // namespace

} // namespace kx::window

// A box that nobody can see is recorded for the host.
int AfxMessageBox(const char* pszText, UINT nType, UINT nHelpId)
try {
    const CString text(pszText);
    if (kx::window::Desktop::Instance().IsSeen())
        if (const int nAnswer = kx::window::Box(text).Run()) return nAnswer;
    return kx::window::HeadlessDesktop::Instance().RecordMessageBox({text, nType, nHelpId});
} catch (...) {
    return kx::NoMemory();
}
