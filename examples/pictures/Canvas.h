#pragma once

#include <KXCommonClass.h>

namespace pictures {

inline constexpr COLORREF kKey = 0xFF00FF;
inline constexpr COLORREF kPaper = RGB(255, 255, 255);
inline constexpr COLORREF kInk = RGB(60, 66, 74);
inline constexpr COLORREF kGround = RGB(226, 234, 222); // shows through where something is transparent

inline constexpr COLORREF kMark = RGB(190, 70, 50); // outlines, and what points at things

// The skin that is shown and where the pictures go, with their last backslashes; set before anything is
// drawn.
inline CString strSkin;
inline CString strTarget;

// A picture is drawn on this.
class Canvas
{
public:
    Canvas(int cx, int cy) : m_size(cx, cy)
    {
        m_surface.Create(cx, cy);
        DC().FillSolidRect(0, 0, cx, cy, kPaper);
        m_font.CreatePointFont(80, "DejaVu Sans");
        m_pOldFont = DC().SelectObject(&m_font);
        DC().SetBkMode(TRANSPARENT);
        DC().SetTextColor(kInk);
    }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;
    ~Canvas() { DC().SelectObject(m_pOldFont); }

    CDC& DC() { return m_surface.GetDC(); }
    void Label(int x, int y, const char* psz) { DC().TextOut(x, y, psz); }
    void Ground(const CRect& rc) { DC().FillSolidRect(rc, kGround); }
    void Outline(const CRect& rc)
    {
        for (const CRect& line : {CRect(rc.left, rc.top, rc.right, rc.top + 1),
                                  CRect(rc.left, rc.bottom - 1, rc.right, rc.bottom),
                                  CRect(rc.left, rc.top, rc.left + 1, rc.bottom),
                                  CRect(rc.right - 1, rc.top, rc.right, rc.bottom)})
            DC().FillSolidRect(line, kMark);
    }

    // Twice as large, so that single pixels are seen. False if nothing was painted.
    bool Save(const char* pszName)
    {
        bool bPainted = false;
        for (int y = 0; y < m_size.cy && !bPainted; ++y)
            for (int x = 0; x < m_size.cx && !bPainted; ++x) {
                const COLORREF clr = DC().GetPixel(x, y);
                bPainted = clr != kPaper && clr != kGround && clr != kInk;
            }
        CKXMemoryDC large;
        large.Create(2 * m_size.cx, 2 * m_size.cy);
        large.GetDC().StretchBlt(0, 0, 2 * m_size.cx, 2 * m_size.cy, &DC(), 0, 0, m_size.cx, m_size.cy,
                                 SRCCOPY);
        return CKXGdiplusBitmap(large.GetHBitmap()).SaveToFile(strTarget + pszName + ".png", "image/png") &&
               bPainted;
    }

private:
    CSize m_size;
    CKXMemoryDC m_surface;
    CFont m_font;
    CFont* m_pOldFont = nullptr;
};

// Draws the pictures of the page about skins: one of each file, named "skin-" and the file's name without its
// extension, and some for the keys. False if one fails.
bool DrawSkinPage();

} // namespace pictures
