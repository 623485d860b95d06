#pragma once

#include "platform/Dc.h"

// The parts of the caller's device that a call changes, put back as each goes out of scope.
namespace kx::wordtest {

// Null selects nothing.
class Selected
{
public:
    Selected(CDC& dc, HGDIOBJ hObject) : m_hDC(dc), m_hOld(SelectObject(m_hDC, hObject)) {}
    Selected(const Selected&) = delete;
    Selected& operator=(const Selected&) = delete;
    ~Selected()
    {
        if (m_hOld) SelectObject(m_hDC, m_hOld);
    }

private:
    HDC m_hDC;
    HGDIOBJ m_hOld;
};

// A font, and the colour and mode that letters are drawn in: by default those of the device.
class Lettering
{
public:
    Lettering(CDC& dc, const CFont* pFont)
        : m_dc(dc),
          m_font(dc, pFont ? pFont->GetSafeHandle() : nullptr),
          m_clrOld(dc.GetTextColor()),
          m_nOldMode(dc.GetBkMode())
    {
    }
    Lettering(CDC& dc, const CFont* pFont, COLORREF clr) : Lettering(dc, pFont) { SetColor(clr); }
    Lettering(const Lettering&) = delete;
    Lettering& operator=(const Lettering&) = delete;
    ~Lettering()
    {
        m_dc.SetBkMode(m_nOldMode);
        m_dc.SetTextColor(m_clrOld);
    }

    void SetColor(COLORREF clr) { m_dc.SetTextColor(clr); }
    void LetGroundShow() { m_dc.SetBkMode(TRANSPARENT); }

private:
    CDC& m_dc;
    Selected m_font;
    COLORREF m_clrOld;
    int m_nOldMode;
};

} // namespace kx::wordtest
