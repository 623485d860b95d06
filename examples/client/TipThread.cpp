#include "TipThread.h"

#include <algorithm>

namespace client {

namespace {

constexpr UINT kShow = WM_USER;
constexpr unsigned long kTipTime = 2000;

} // namespace

class TipThread::CWindow : public CKXTipWnd
{
public:
    explicit CWindow(TipThread& owner) : m_owner(owner) {}

protected:
    // Below the asker, so that it stays in sight, as far as the desktop has room for it.
    void MoveBelow(const CRect& rcAsker)
    {
        CRect rc;
        GetWindowRect(&rc);
        const int y = std::min(rcAsker.bottom + 8, GetSystemMetrics(SM_CYSCREEN) - rc.Height());
        SetWindowPos(HWND_TOPMOST, (rcAsker.left + rcAsker.right - rc.Width()) / 2, y, 0, 0,
                     SWP_NOSIZE | SWP_NOACTIVATE);
    }
    LRESULT OnShow(WPARAM, LPARAM)
    {
        // The last of the tips that were asked for while one faded is shown, once.
        for (MSG msg; PeekMessageA(&msg, m_hWnd, kShow, kShow, PM_REMOVE);) {
        }
        CString strText;
        CRect rcAsker;
        {
            const std::lock_guard lock(m_owner.m_lock);
            strText = m_owner.m_strText;
            ::GetWindowRect(m_owner.m_hAsker, &rcAsker);
        }
        MoveBelow(rcAsker);
        ShowTipWnd(strText, kTipTime);
        return 0;
    }
    void OnSetFocus(CWnd*)
    {
        const std::lock_guard lock(m_owner.m_lock);
        ::PostMessage(m_owner.m_hAsker, m_owner.m_nGiveBack, 0, 0);
    }
    void OnDestroy()
    {
        CKXTipWnd::OnDestroy();
        PostQuitMessage(0);
    }
    DECLARE_MESSAGE_MAP()

private:
    TipThread& m_owner;
};

BEGIN_MESSAGE_MAP(TipThread::CWindow, CKXTipWnd)
ON_WM_DESTROY()
ON_WM_SETFOCUS()
ON_MESSAGE(kShow, OnShow)
END_MESSAGE_MAP()

TipThread::TipThread() : m_thread([this] { Run(); }), m_hWnd(m_begun.get_future().get())
{
}

// Sent messages are served even while the tip fades.
TipThread::~TipThread()
{
    SendMessageA(m_hWnd, WM_CLOSE, 0, 0);
    m_thread.join();
}

void TipThread::Show(const CString& str, HWND hAsker, UINT nGiveBack)
{
    {
        const std::lock_guard lock(m_lock);
        m_strText = str;
        m_hAsker = hAsker;
        m_nGiveBack = nGiveBack;
    }
    PostMessage(m_hWnd, kShow, 0, 0);
}

void TipThread::Run()
{
    CWindow window(*this);
    const bool bCreated = window.CreateTipWnd();
    m_begun.set_value(window.m_hWnd);
    if (!bCreated) return;
    for (MSG msg; GetMessageA(&msg, nullptr, 0, 0) > 0;)
        DispatchMessageA(&msg);
}

} // namespace client
