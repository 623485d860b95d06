#pragma once

#include "SkinPainter.h"

namespace client {

// A top-level window that is drawn from the current skin, and anew when it hears of another skin or language.
class SkinnedWindow
{
public:
    struct Look
    {
        const char* pszName;
        const char* pszTitle; // the key of its title; null: no frame
        bool bActive;
        bool bMinMaxBox;
        void (*Paint)(SkinPainter& painter, const CRect& rcClient);
        // The field where one types; null: none.
        CRect (*Field)(const CRect& rcClient) = nullptr;
    };

    // `rc` on the desktop.
    SkinnedWindow(const CRect& rc, const Look& look);
    SkinnedWindow(const SkinnedWindow&) = delete;
    SkinnedWindow& operator=(const SkinnedWindow&) = delete;
    ~SkinnedWindow();

    // Draws it in the current skin.
    void Redraw();
    // How often it heard of another skin.
    int SkinsHeard() const { return m_nSkinsHeard; }

private:
    static LRESULT OnMessage(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam);
    void OnChange(UINT nMsg);
    void Type(char byte);

    CSize m_size;
    CString m_strTyped;
    Look m_look;
    HWND m_hWnd;
    int m_nSkinsHeard = 0;
};

} // namespace client
