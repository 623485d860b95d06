#include "SkinnedWindow.h"

#include "SkinFrame.h"
#include "SpellingTest.h"

#include <cstdio>

namespace {
constexpr char szClass[] = "SkinnedWindow";
}

client::SkinnedWindow::SkinnedWindow(const CRect& rc, const Look& look)
    : m_size(rc.Width(), rc.Height()), m_look(look)
{
    const WNDCLASSA windowClass{OnMessage, szClass};
    RegisterClassA(&windowClass); // the first window's call; it stays until the last has gone
    const CString strTitle = look.pszTitle ? TextOf(look.pszTitle) : CString();
    m_hWnd = CreateWindowExA(0, szClass, strTitle, look.pszTitle ? 0 : WS_POPUP, rc.left, rc.top, m_size.cx,
                             m_size.cy);
    SetWindowLongPtrA(m_hWnd, GWLP_USERDATA, reinterpret_cast<std::intptr_t>(this));
    ShowWindow(m_hWnd, SW_SHOW);
}

client::SkinnedWindow::~SkinnedWindow()
{
    DestroyWindow(m_hWnd);
    UnregisterClassA(szClass);
}

LRESULT client::SkinnedWindow::OnMessage(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam)
{
    auto* pWindow = reinterpret_cast<SkinnedWindow*>(GetWindowLongPtrA(hWnd, GWLP_USERDATA));
    if (pWindow && nMsg == WM_CHAR) pWindow->Type(static_cast<char>(wParam));
    if (pWindow && nMsg == WM_SETFOCUS) pWindow->Redraw();
    if (!pWindow || (nMsg != WM_KXSKINCHANGED && nMsg != WM_KXLANCHANGED))
        return DefWindowProcA(hWnd, nMsg, wParam, lParam);
    pWindow->OnChange(nMsg);
    return 0;
}

void client::SkinnedWindow::OnChange(UINT nMsg)
{
    if (m_look.pszTitle) SetWindowTextA(m_hWnd, TextOf(m_look.pszTitle));
    if (nMsg == WM_KXSKINCHANGED) {
        ++m_nSkinsHeard;
        std::printf("      %s heard message %u\n", m_look.pszName, nMsg);
    }
    Redraw();
}

// Characters of an input method come byte by byte, and its candidates appear where one types.
void client::SkinnedWindow::Type(char byte)
{
    constexpr int nMost = 30;
    if (m_look.Field && TypeByte(m_strTyped, byte, byte >= ' ', nMost)) Redraw();
}

// Into a surface first, so that nothing flickers, then as a whole in the window's shape.
void client::SkinnedWindow::Redraw()
{
    CKXMemoryDC surface;
    surface.Create(m_size.cx, m_size.cy);
    {
        SkinPainter painter(surface.GetDC());
        CRect rc(0, 0, m_size.cx, m_size.cy);
        if (m_look.pszTitle)
            rc = PaintFrame(painter, m_size, TextOf(m_look.pszTitle), m_look.bActive,
                            m_look.bMinMaxBox ? Boxes::All : Boxes::Usual, m_look.bActive ? Hot : Normal);
        m_look.Paint(painter, rc);
        if (m_look.Field) {
            const CRect rcField = m_look.Field(rc);
            painter.Edit(rcField, m_strTyped);
            if (GetFocus() == m_hWnd)
                SetCaretPos(rcField.left + 6 + painter.TextWidth(m_strTyped), rcField.bottom);
        }
    }
    if (m_look.pszTitle) {
        CRgn rgn;
        MakeWindowRgn(*CKXSkinResManager::GetSingletonPtr()->GetWndRes(), m_size, rgn);
        SetWindowRgn(m_hWnd, static_cast<HRGN>(rgn.Detach()), 0);
    }
    const HDC hDC = GetDC(m_hWnd);
    BitBlt(hDC, 0, 0, m_size.cx, m_size.cy, surface.GetHDC(), 0, 0, SRCCOPY);
    ReleaseDC(m_hWnd, hDC);
}
