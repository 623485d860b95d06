#include "KXBitmap.h"

#include "draw/BitmapRegion.h"
#include "draw/Tiling.h"
#include "draw/Wrap.h"

#include <algorithm>
#include <utility>

using kx::draw::Minus;
using kx::draw::Plus;
using kx::draw::Times;

namespace {

HDC HandleOf(const CDC* pDC)
{
    return pDC ? pDC->m_hDC : nullptr;
}

} // namespace

int CKXBitmap::LoadBitmapA(const CString& strPath)
{
    return SelectFirstState(m_image.Load(strPath));
}

int CKXBitmap::LoadBitmapA(unsigned int nID)
{
    return SelectFirstState(m_image.Load(nID));
}

void CKXBitmap::AttachBitmap(HBITMAP hBitmap)
{
    SelectFirstState(m_image.Attach(hBitmap));
}

HBITMAP CKXBitmap::DetachBitmap()
{
    return m_image.Detach();
}

int CKXBitmap::SelectFirstState(int bLoaded)
{
    if (!bLoaded) return 0;
    CalcSrcImageRect(0);
    m_nCurState = 0;
    return 1;
}

void CKXBitmap::SetMultiState(int nCount, int bHorz)
{
    m_nMultiState = nCount;
    m_bHorzMultiState = bHorz;
    if (SelectFirstState(m_image.Bitmap() != nullptr) && m_bFillParam) CalcSrcFillRects();
}

void CKXBitmap::SetFillParam(int nFirst, int nLast, int bHorz)
{
    m_nFillFirst = nFirst;
    m_nFillLast = nLast;
    m_bHorzFill = bHorz;
    m_bFillParam = 1;
    if (m_image.Bitmap()) CalcSrcFillRects();
}

void CKXBitmap::CalcSrcImageRect(int nState)
{
    const int W = GetBITMAP().bmWidth;
    const int H = GetBITMAP().bmHeight;
    if (m_nMultiState < 2) {
        m_rcSrcImage = CRect(0, 0, W, H);
    } else if (m_bHorzMultiState) {
        const int w = W / m_nMultiState;
        const int x = Times(w, nState);
        m_rcSrcImage = CRect(x, 0, Plus(x, w), H);
    } else {
        const int h = H / m_nMultiState;
        const int y = Times(h, nState);
        m_rcSrcImage = CRect(0, y, W, Plus(y, h));
    }
}

void CKXBitmap::CalcSrcFillRects()
{
    m_rcSrcFirst = m_rcSrcMiddle = m_rcSrcLast = m_rcSrcImage;
    if (m_bHorzFill) {
        m_rcSrcFirst.right = m_rcSrcMiddle.left = Plus(m_rcSrcImage.left, m_nFillFirst);
        m_rcSrcLast.left = m_rcSrcMiddle.right = Minus(m_rcSrcImage.right, m_nFillLast);
    } else {
        m_rcSrcFirst.bottom = m_rcSrcMiddle.top = Plus(m_rcSrcImage.top, m_nFillFirst);
        m_rcSrcLast.top = m_rcSrcMiddle.bottom = Minus(m_rcSrcImage.bottom, m_nFillLast);
    }
}

// The source of a drawing operation, with the rectangles of that state; null while there is nothing to draw.
HDC CKXBitmap::SelectState(int nState)
{
    if (!m_image.Bitmap()) return nullptr;
    if (m_nMultiState > 1 && nState != m_nCurState) {
        CalcSrcImageRect(nState);
        if (m_bFillParam) CalcSrcFillRects();
        m_nCurState = nState;
    }
    return m_image.DC();
}

// The block copies of a fill: with or without a transparent colour, and named by their places along the fill
// and across it, so that one road serves both directions.
class CKXBitmap::Copier
{
public:
    Copier(const CDC* pDC, HDC hSrc, int bHorz) : m_hDst(HandleOf(pDC)), m_hSrc(hSrc), m_bHorz(bHorz) {}
    Copier(const CDC* pDC, HDC hSrc, int bHorz, COLORREF clrKey) : Copier(pDC, hSrc, bHorz)
    {
        m_bKeyed = true;
        m_clrKey = clrKey;
    }

    struct Span
    {
        int from;
        int to;
        int Length() const { return Minus(to, from); }
    };
    Span Along(const CRect& rc) const { return m_bHorz ? Span{rc.left, rc.right} : Span{rc.top, rc.bottom}; }
    Span Across(const CRect& rc) const { return m_bHorz ? Span{rc.top, rc.bottom} : Span{rc.left, rc.right}; }

    // Copies from the head of a part of the source.
    void Copy(int along, int across, int nAlong, int nAcross, const CRect& rcSrc) const
    {
        if (m_bHorz)
            CopyBlock(along, across, nAlong, nAcross, rcSrc);
        else
            CopyBlock(across, along, nAcross, nAlong, rcSrc);
    }

private:
    void CopyBlock(int x, int y, int cx, int cy, const CRect& rcSrc) const
    {
        if (m_bKeyed)
            TransparentBlt(m_hDst, x, y, cx, cy, m_hSrc, rcSrc.left, rcSrc.top, cx, cy, m_clrKey);
        else
            BitBlt(m_hDst, x, y, cx, cy, m_hSrc, rcSrc.left, rcSrc.top, SRCCOPY);
    }

    HDC m_hDst;
    HDC m_hSrc;
    int m_bHorz;
    bool m_bKeyed = false;
    COLORREF m_clrKey = 0;
};

// One band of a fill: the middle in tiles, the first part, and the last part over both.
void CKXBitmap::DrawBand(const Copier& copier, const CRect& rcDst, int nAcross, int nThickness) const
{
    const auto dst = copier.Along(rcDst);
    const int nFirst = copier.Along(m_rcSrcFirst).Length();
    const int nLast = copier.Along(m_rcSrcLast).Length();
    const int nMiddle = copier.Along(m_rcSrcMiddle).Length();
    const int nStart = Plus(dst.from, nFirst);
    // End parts of a length below 0 make no more room than there is.
    const std::int64_t nRoom =
        std::min(std::int64_t{dst.Length()} - nFirst - nLast, std::int64_t{dst.Length()});
    kx::draw::ForEachTile(nRoom, nMiddle, [&](int offset, int n) {
        copier.Copy(Plus(nStart, offset), nAcross, n, nThickness, m_rcSrcMiddle);
    });
    copier.Copy(dst.from, nAcross, nFirst, nThickness, m_rcSrcFirst);
    copier.Copy(Minus(dst.to, nLast), nAcross, nLast, nThickness, m_rcSrcLast);
}

// A band as thick as the image, at the head of the rectangle.
void CKXBitmap::Fill(const Copier& copier, const CRect& rcDst) const
{
    DrawBand(copier, rcDst, copier.Across(rcDst).from, copier.Across(m_rcSrcMiddle).Length());
}

void CKXBitmap::Draw(CDC* pDC, int x, int y, int nState)
{
    const HDC hSrc = SelectState(nState);
    if (!hSrc) return;
    const CRect& src = m_rcSrcImage;
    BitBlt(HandleOf(pDC), x, y, src.Width(), src.Height(), hSrc, src.left, src.top, SRCCOPY);
}

void CKXBitmap::TransparentDraw(CDC* pDC, int x, int y, COLORREF clr, int nState)
{
    if (!SelectState(nState)) return;
    TransparentDraw(pDC, x, y, m_rcSrcImage.Width(), m_rcSrcImage.Height(), clr, nState);
}

void CKXBitmap::TransparentDraw(CDC* pDC, int x, int y, int cx, int cy, COLORREF clr, int nState)
{
    const HDC hSrc = SelectState(nState);
    if (!hSrc) return;
    const CRect& src = m_rcSrcImage;
    TransparentBlt(HandleOf(pDC), x, y, cx, cy, hSrc, src.left, src.top, src.Width(), src.Height(), clr);
}

void CKXBitmap::DrawFill(CDC* pDC, const CRect& rcDst, int nState)
{
    if (const HDC hSrc = SelectState(nState)) Fill(Copier(pDC, hSrc, m_bHorzFill), rcDst);
}

void CKXBitmap::TransparentDrawFill(CDC* pDC, const CRect& rcDst, COLORREF clr, int nState)
{
    if (const HDC hSrc = SelectState(nState)) Fill(Copier(pDC, hSrc, m_bHorzFill, clr), rcDst);
}

void CKXBitmap::Pave(CDC* pDC, const CRect& rcDst, int nState)
{
    const HDC hSrc = SelectState(nState);
    if (!hSrc) return;
    const Copier copier(pDC, hSrc, m_bHorzFill);
    const auto across = copier.Across(rcDst);
    if (across.from >= across.to) return;
    kx::draw::ForEachTile(across.Length(), copier.Across(m_rcSrcMiddle).Length(),
                          [&](int offset, int n) { DrawBand(copier, rcDst, Plus(across.from, offset), n); });
}

void CKXBitmap::DrawPart(CDC* pDC, const CRect& rcDst, const CRect& rcSrc, int nState)
{
    const HDC hSrc = SelectState(nState);
    if (!hSrc) return;
    BitBlt(HandleOf(pDC), rcDst.left, rcDst.top, rcDst.Width(), rcDst.Height(), hSrc,
           Plus(m_rcSrcImage.left, rcSrc.left), Plus(m_rcSrcImage.top, rcSrc.top), SRCCOPY);
}

void CKXBitmap::TransparentDrawPart(CDC* pDC, const CRect& rcDst, const CRect& rcSrc, COLORREF clr,
                                    int nState)
{
    const HDC hSrc = SelectState(nState);
    if (!hSrc) return;
    TransparentBlt(HandleOf(pDC), rcDst.left, rcDst.top, rcDst.Width(), rcDst.Height(), hSrc,
                   Plus(m_rcSrcImage.left, rcSrc.left), Plus(m_rcSrcImage.top, rcSrc.top), rcSrc.Width(),
                   rcSrc.Height(), clr);
}

int CKXBitmap::GetBits(unsigned char* pBits)
{
    struct
    {
        BITMAPINFO info;
        RGBQUAD more[255]; // a colour table of 8 bits is written behind the header
    } block{};
    BITMAPINFOHEADER& header = block.info.bmiHeader;
    header.biSize = sizeof(header);
    GetDIBits(m_image.DC(), m_image.Bitmap(), 0, 1, nullptr, &block.info, DIB_RGB_COLORS);
    header.biHeight = -header.biHeight;
    const auto nLines = static_cast<UINT>(GetBITMAP().bmHeight);
    return GetDIBits(m_image.DC(), m_image.Bitmap(), 0, nLines, pBits, &block.info, DIB_RGB_COLORS);
}

void CKXBitmap::CreateBitmapRgn(CRgn& rgn, COLORREF clr, int bKeepColor)
{
    if (!m_image.Bitmap()) return;
    const CSize size(GetBITMAP().bmWidth, GetBITMAP().bmHeight);
    const HRGN hRgn = kx::draw::MakeColorRegion(m_image.DC(), m_image.Bitmap(), size, clr, bKeepColor != 0);
    if (!rgn.Attach(hRgn)) DeleteObject(hRgn);
}
