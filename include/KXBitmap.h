#pragma once

#include "KXBitmapHandle.h"

// One bitmap that holds several states of a control, side by side or one above the other. A state is drawn at
// its natural size, as a part, with a transparent colour, or at any length from a fixed first part, a
// repeated middle part and a fixed last part.
//
// A client loads, then calls SetFillParam and SetMultiState in either order; SetMultiState alone may come
// before the load. Nothing is drawn while there is no bitmap, and to a null `pDC`. A state outside the image,
// or a part of it, names pixels that aren't there: they are left out, and with them the whole of a
// transparent copy that stretches. A rectangle may be of any size: of more than 4,096 tiles only those are
// drawn that lie in the clip box of `pDC`. Copies share surface and bitmap (KXBitmapHandle.h), so an object
// and its copies are used by one thread at a time.
class KX_API CKXBitmap
{
public:
    CKXBitmap() = default;

    // Load a bitmap file (BMP), or a bitmap resource by its 16-bit number, from the module that has it. The
    // old image is gone in any case, and the rectangle is that of state 0; the fill rectangles stay until
    // SetFillParam, SetMultiState or a change of state. 1 on success, 0 on failure: there is nothing to draw
    // then.
    int LoadBitmapA(const CString& strPath);
    int LoadBitmapA(unsigned int nID);

    // Takes over a bitmap that the caller made.
    void AttachBitmap(HBITMAP hBitmap);
    // Gives an attached bitmap back to the caller, who ends it; null if none was attached. The object is
    // empty then.
    HBITMAP DetachBitmap();

    // How many states there are (below 2: the whole image is the only one), side by side unless `bHorz` is 0.
    // Pixels that are left over in dividing the image belong to no state.
    void SetMultiState(int nCount, int bHorz);
    // Lengths in pixels of a fill's fixed first and last part, along x unless `bHorz` is 0.
    void SetFillParam(int nFirst, int nLast, int bHorz);

    // The states that SetMultiState was told last; 1 and 1 at first.
    int GetMultiState() const { return m_nMultiState; }
    int IsHorzMultiState() const { return m_bHorzMultiState; }
    // The current state's rectangle in the image.
    const CRect& GetSrcImageRect() const { return m_rcSrcImage; }
    // The record of the bitmap; all zero before the first load.
    const BITMAP& GetBITMAP() const { return m_image.Record(); }
    // The handles stay this object's.
    HBITMAP& GetHBITMAP() { return m_image.Bitmap(); }
    HDC& GetHDC() { return m_image.DC(); }

    // Draws a state at its natural size.
    void Draw(CDC* pDC, int x, int y, int nState);
    // The same without the pixels of colour `clr`, at its natural size or stretched to `cx` by `cy`.
    void TransparentDraw(CDC* pDC, int x, int y, COLORREF clr, int nState);
    void TransparentDraw(CDC* pDC, int x, int y, int cx, int cy, COLORREF clr, int nState);

    // Draws the middle part in tiles, then the first, then the last, along `rcDst`; the size across is the
    // image's.
    void DrawFill(CDC* pDC, const CRect& rcDst, int nState);
    void TransparentDrawFill(CDC* pDC, const CRect& rcDst, COLORREF clr, int nState);
    // Repeats the fill in bands across the other axis, over all of `rcDst`.
    void Pave(CDC* pDC, const CRect& rcDst, int nState);

    // Draws what lies at `rcSrc`'s position in the state, at `rcDst`'s size.
    void DrawPart(CDC* pDC, const CRect& rcDst, const CRect& rcSrc, int nState);
    // Stretches the block `rcSrc` of the state into `rcDst`, without the pixels of colour `clr`.
    void TransparentDrawPart(CDC* pDC, const CRect& rcDst, const CRect& rcSrc, COLORREF clr, int nState);

    // Copies the bitmap's rows in its own depth, each padded to 4 bytes, top row first, into a buffer that
    // holds them all. The number of rows; 0 on failure.
    int GetBits(unsigned char* pBits);

    // Makes of the whole image the region of the pixels that aren't `clr`, or with `bKeepColor` of those that
    // are. `rgn` comes in without a region, and is left so when there is no bitmap or too little memory.
    void CreateBitmapRgn(CRgn& rgn, COLORREF clr, int bKeepColor);

protected:
    // The steps of the object's life taken singly: make the surface unless there is one; end it; take the
    // bitmap out of it and end that.
    void CreateBitmapDC() { m_image.CreateBitmapDC(); }
    void DeleteBitmapDC() { m_image.DeleteBitmapDC(); }
    void DeleteBitmap() { m_image.DeleteBitmap(); }

    // Works out where a state, and the three parts of a fill of it, lie in the image.
    void CalcSrcImageRect(int nState);
    void CalcSrcFillRects();

private:
    class Copier;

    int SelectFirstState(int bLoaded);
    HDC SelectState(int nState);
    void CopyKeyed(HDC hDst, int x, int y, const CRect& rcSrc, COLORREF clrKey) const;
    void DrawBand(const Copier& copier, const CRect& rcDst, int nAcross, int nThickness) const;
    void Fill(const Copier& copier, const CRect& rcDst) const;

    CKXBitmapHandle m_image;
    int m_nFillFirst = 0;
    int m_nFillLast = 0;
    int m_bFillParam = 0;
    int m_bHorzFill = 1;
    int m_nMultiState = 1;
    int m_bHorzMultiState = 1;
    CRect m_rcSrcImage;
    CRect m_rcSrcFirst;
    CRect m_rcSrcMiddle;
    CRect m_rcSrcLast;
    int m_nCurState = -1;
};
