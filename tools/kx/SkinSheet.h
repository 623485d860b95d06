#pragma once

#include <KXCommonClass.h>

namespace kx::skin {
struct SkinFile;
}

namespace kx::tool {

// A drawing of all that a skin has: frames, every bitmap in every state with the state's number, backgrounds,
// icons, colours and text.
class SkinSheet
{
public:
    static constexpr int kWidth = 1000;

    // Loads and draws the skin in a directory, which ends in a backslash. What is missing leaves its place
    // empty.
    explicit SkinSheet(const CString& strDir);

    HBITMAP Bitmap() const { return m_surface.GetHBitmap(); }
    HDC DC() const { return m_surface.GetHDC(); }
    int Height() const { return m_nHeight; }

private:
    void Draw();
    void Heading(const char* pszText);
    void Label(const CRect& rc, const CString& str, UINT nFormat = DT_LEFT);
    void Text(const CRect& rc, const CString& str, COLORREF clr, UINT nFormat);
    void Frames();
    void Frame(const CRect& rc, bool bFront);
    void Background(const CRect& rc);
    int CaptionButtons(const CRect& rc, bool bFront);
    void Strips(const char* pszDir);
    void Strip(const skin::SkinFile& file);
    void Pictures();
    void Colors();
    void Sample();
    CSize Fitting(CSize size) const;
    void Advance(int nHeight);

    CKXSkinWndRes m_wnd;
    CKXSkinIMListRes m_list;
    CKXSkinOtherRes m_other;
    const CString m_strDir;
    const CString m_strIni;
    const CString m_strName;
    CKXMemoryDC m_surface;
    CFont m_font;
    CFont m_small;
    CFont m_bold;
    CFont m_title;
    bool m_bMeasure = true; // the first round only finds out how high all of it is
    int m_x = 0;            // where the next strip goes
    int m_y = 0;
    int m_nRow = 0; // how high the row of strips is
    int m_nHeight = 0;
};

} // namespace kx::tool
