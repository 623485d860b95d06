#include "Short.h"

// A window with a message map, and a tip that comes and goes by itself; on a desktop in memory, or on the
// display with the argument "display".
namespace {

class HelloWnd : public CWnd
{
public:
    int Create()
    {
        const char* pszClass = AfxRegisterWndClass(0, nullptr, nullptr, nullptr);
        return CreateEx(0, pszClass, "hello", WS_POPUP | WS_VISIBLE, CRect(20, 20, 220, 120), nullptr, 0);
    }
    void OnPaint()
    {
        CPaintDC dc(this);
        CRect rc;
        GetClientRect(rc);
        dc.FillSolidRect(rc, RGB(235, 240, 250));
        dc.DrawText("hello", rc, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
    }
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(HelloWnd, CWnd)
ON_WM_PAINT()
END_MESSAGE_MAP()

} // namespace

int main(int nArgs, char**)
{
    if (nArgs == 1) KXHost::UseMemoryDesktop(400, 300);
    KXHost::UseVirtualClock(0, KXHost::VirtualSleep::Advances); // so that fades take no time here
    HelloWnd window;
    if (!window.Create()) return 1;
    window.UpdateWindow();
    CKXTipWnd tip;
    if (!tip.CreateTipWnd()) return 1;
    tip.ShowTipWnd("well done", 1000);
    const bool bSaved = KXHost::SaveDesktop(KXHost::ToSystemPath(Beside("windows.png")));
    tip.DestroyWindow();
    window.DestroyWindow();
    KXHost::UseRealClock();
    return bSaved ? 0 : 1;
}
