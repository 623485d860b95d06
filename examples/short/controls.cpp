#include "Short.h"

#include <algorithm>
#include <utility>

// A control that a client draws itself: a dial that follows mouse, wheel and keys. What a person would do
// with it is posted here, as the desktop would.
namespace {

class Dial : public CWnd
{
public:
    static constexpr int MIDDLE = 50;

    int Create()
    {
        return CreateEx(0, AfxRegisterWndClass(CS_DBLCLKS), "volume", WS_POPUP | WS_VISIBLE,
                        CRect(10, 10, 111, 40), nullptr, 0);
    }
    int Value() const { return m_nValue; }
    bool IsHot() const { return m_bHot; }
    int Width() const { return m_nWidth; }

    void OnPaint()
    {
        CPaintDC dc(this);
        dc.FillSolidRect(0, 0, m_nWidth, 30, IsWindowEnabled() ? RGB(255, 255, 255) : RGB(220, 220, 220));
        dc.FillSolidRect(0, 0, m_nValue, 30, m_bHot ? RGB(90, 150, 220) : RGB(40, 90, 150));
    }
    void OnMouseMove(UINT, CPoint point)
    {
        TRACKMOUSEEVENT event;
        event.dwFlags = TME_LEAVE;
        event.hwndTrack = GetSafeHwnd();
        m_bHot = TrackMouseEvent(&event) != 0; // until WM_MOUSELEAVE
        if (GetCapture() == GetSafeHwnd()) Set(point.x);
    }
    LRESULT OnMouseLeave(WPARAM, LPARAM)
    {
        m_bHot = false;
        return 0;
    }
    void OnLButtonDown(UINT, CPoint point)
    {
        SetCapture(); // so that the mouse may leave the dial while the button is held
        Set(point.x);
    }
    void OnLButtonUp(UINT, CPoint) { ReleaseCapture(); }
    void OnCaptureChanged(CWnd*) { Invalidate(); }
    void OnLButtonDblClk(UINT, CPoint) { Set(MIDDLE); }
    void OnRButtonDown(UINT, CPoint)
    {
        m_nBefore = std::exchange(m_nValue, 0);
    } // mute, as long as it is held
    void OnRButtonUp(UINT, CPoint) { Set(m_nBefore); }
    int OnMouseWheel(UINT, short nTurn, CPoint)
    {
        Set(m_nValue + 10 * nTurn / WHEEL_DELTA);
        return 1;
    }
    void OnKeyUp(UINT nKey, UINT, UINT)
    {
        if (nKey == VK_HOME) Set(0);
    }
    void OnSysKeyDown(UINT nKey, UINT nRepeat, UINT nFlags)
    {
        if (nKey >= '0' && nKey <= '9') Set(static_cast<int>(nKey - '0') * 10); // Alt and a digit
        CWnd::OnSysKeyDown(nKey, nRepeat, nFlags);
    }
    void OnKillFocus(CWnd*) { Invalidate(); }
    void OnEnable(int) { Invalidate(); }
    void OnMove(int, int) { Invalidate(); }
    void OnSize(UINT, int cx, int) { m_nWidth = cx; }
    void OnClose() { DestroyWindow(); }
    DECLARE_MESSAGE_MAP()

private:
    void Set(int nValue)
    {
        m_nValue = std::clamp(nValue, 0, 100);
        Invalidate();
    }

    int m_nValue = MIDDLE;
    int m_nBefore = MIDDLE;
    int m_nWidth = 101;
    bool m_bHot = false;
};

BEGIN_MESSAGE_MAP(Dial, CWnd)
ON_WM_PAINT()
ON_WM_MOUSEMOVE()
ON_MESSAGE(WM_MOUSELEAVE, OnMouseLeave)
ON_WM_LBUTTONDOWN()
ON_WM_LBUTTONUP()
ON_WM_CAPTURECHANGED()
ON_WM_LBUTTONDBLCLK()
ON_WM_RBUTTONDOWN()
ON_WM_RBUTTONUP()
ON_WM_MOUSEWHEEL()
ON_WM_KEYUP()
ON_WM_SYSKEYDOWN()
ON_WM_KILLFOCUS()
ON_WM_ENABLE()
ON_WM_MOVE()
ON_WM_SIZE()
ON_WM_CLOSE()
END_MESSAGE_MAP()

// The dial's value once a message has been handled, and all that followed from it.
int After(Dial& dial, UINT nMsg, WPARAM wParam = 0, LPARAM lParam = 0)
{
    KXHost::PostInput(dial.GetSafeHwnd(), nMsg, wParam, lParam);
    MSG msg;
    while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE))
        DispatchMessageA(&msg);
    return dial.Value();
}

} // namespace

int main()
{
    KXHost::UseMemoryDesktop(200, 150);
    Dial dial;
    if (!dial.Create()) return 1;
    char szName[16];
    GetWindowTextA(dial.GetSafeHwnd(), szName, sizeof szName);

    const bool bDragged = After(dial, WM_LBUTTONDOWN, MK_LBUTTON, 20) == 20 &&
                          After(dial, WM_MOUSEMOVE, MK_LBUTTON, 170) == 100 && dial.IsHot() &&
                          After(dial, WM_LBUTTONUP) == 100;
    const bool bTurned = After(dial, WM_MOUSEWHEEL, static_cast<WPARAM>(-WHEEL_DELTA) << 16) == 90 &&
                         After(dial, WM_RBUTTONDOWN) == 0 && After(dial, WM_RBUTTONUP) == 90;
    const bool bKeys = After(dial, WM_SYSKEYDOWN, '3', 1) == 30 && After(dial, WM_KEYUP, VK_HOME, 1) == 0;
    dial.EnableWindow(0);
    const bool bDeaf = After(dial, WM_LBUTTONDOWN, MK_LBUTTON, 20) == 0;
    dial.EnableWindow(1);
    std::printf("%s: dragged %d, turned %d, keys %d, deaf %d\n", szName, bDragged, bTurned, bKeys, bDeaf);
    dial.SetWindowPos(nullptr, 20, 20, 121, 30, SWP_NOZORDER | SWP_NOACTIVATE);
    const HWND hDial = dial.GetSafeHwnd();
    After(dial, WM_CLOSE);
    return bDragged && bTurned && bKeys && bDeaf && dial.Width() == 121 && !IsWindow(hDial) &&
                   dial.IsKindOf(CWnd::GetThisClass())
               ? 0
               : 1;
}
