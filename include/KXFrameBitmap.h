#pragma once

#include "KXBitmapHandle.h"

// Draws a frame of any size from one small bitmap of four corners and four edges: the corners at their
// natural size, the edges in tiles between them, the centre filled with a colour or left alone. Copies share
// surface and bitmap (KXBitmapHandle.h), so an object and its copies are used by one thread at a time.
class KX_API CKXFrameBitmap
{
public:
    CKXFrameBitmap() = default;

    // The same as CKXBitmap's. SetBitmapOptions follows each of them.
    int LoadBitmapA(const CString& strPath) { return m_image.Load(strPath); }
    int LoadBitmapA(unsigned int nID) { return m_image.Load(nID); }
    void AttachBitmap(HBITMAP hBitmap) { m_image.Attach(hBitmap); }
    HBITMAP DetachBitmap() { return m_image.Detach(); }
    const BITMAP& GetBITMAP() const { return m_image.Record(); }
    HBITMAP& GetHBITMAP() { return m_image.Bitmap(); }
    HDC& GetHDC() { return m_image.DC(); }

    // Cuts the image into its areas by the sizes of its corners, which may differ: the left edge is as wide
    // as the top left corner, the right edge as the top right one; the top edge is as high as the top left
    // corner, the bottom edge as the bottom left one.
    void SetBitmapOptions(CSize sizeTopLeft, CSize sizeTopRight, CSize sizeBottomLeft, CSize sizeBottomRight);

    // Draws into `rc` on `pDC`, which isn't null: the centre with `clrCenter` if `bFillCenter` is non-zero,
    // the top, bottom, left and right edges, then the corners over them.
    void Draw(CDC* pDC, const CRect& rc, int bFillCenter, COLORREF clrCenter);

protected:
    // The steps of the object's life taken singly: make the surface unless there is one; end it; take the
    // bitmap out of it and end that.
    void CreateBitmapDC() { m_image.CreateBitmapDC(); }
    void DeleteBitmapDC() { m_image.DeleteBitmapDC(); }
    void DeleteBitmap() { m_image.DeleteBitmap(); }

    // Tiles the block `rcSrc` of the image along `rcDst`, along x unless `bHorz` is 0. The size across is
    // `rcSrc`'s.
    void DrawFill(CDC* pDC, const CRect& rcDst, const CRect& rcSrc, int bHorz);

private:
    void DrawCorner(CDC* pDC, int x, int y, const CRect& rcSrc);
    void CopyBlock(CDC* pDC, int x, int y, int cx, int cy, const CRect& rcSrc);

    CKXBitmapHandle m_image;
    CRect m_rcTopLeft;
    CRect m_rcTopRight;
    CRect m_rcBottomLeft;
    CRect m_rcBottomRight;
    CRect m_rcTop;
    CRect m_rcBottom;
    CRect m_rcLeft;
    CRect m_rcRight;
    int m_nInsetLeft = 0;
    int m_nInsetRight = 0;
    int m_nInsetTop = 0;
    int m_nInsetBottom = 0;
};
