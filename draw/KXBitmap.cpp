#include "KXBitmap.h"

#include "draw/BitmapRegion.h"
#include "draw/Tiling.h"
#include "internal/Wrap.h"

#include <algorithm>
#include <utility>

using kx::Minus;
using kx::Plus;
using kx::Times;
using kx::draw::Span;

namespace {

HDC HandleOf(const CDC* pDC)
{
    return pDC ? pDC->m_hDC : nullptr;
}

int LengthOf(Span span)
{
    return Minus(span.to, span.from);
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
    m_image.Attach(hBitmap);
    SelectFirstState(1);
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

// A copy without the pixels of a colour. The platform refuses a source block that leaves the image, so what
// isn't there is cut off first.
void CKXBitmap::CopyKeyed(HDC hDst, int x, int y, const CRect& rcSrc, COLORREF clrKey) const
{
    const std::int64_t right = std::int64_t{rcSrc.left} + rcSrc.Width();
    const std::int64_t bottom = std::int64_t{rcSrc.top} + rcSrc.Height();
    CRect cut(std::max<LONG>(rcSrc.left, 0), std::max<LONG>(rcSrc.top, 0),
              static_cast<int>(std::min<std::int64_t>(right, GetBITMAP().bmWidth)),
              static_cast<int>(std::min<std::int64_t>(bottom, GetBITMAP().bmHeight)));
    if (cut.IsRectEmpty()) cut = rcSrc;
    TransparentBlt(hDst, Plus(x, Minus(cut.left, rcSrc.left)), Plus(y, Minus(cut.top, rcSrc.top)),
                   cut.Width(), cut.Height(), m_image.DC(), cut.left, cut.top, cut.Width(), cut.Height(),
                   clrKey);
}

// The block copies of a fill: with or without a transparent colour, and named by their places along the fill
// and across it, so that one road serves both directions.
class CKXBitmap::Copier
{
public:
    Copier(const CKXBitmap& bitmap, const CDC* pDC) : m_bitmap(bitmap), m_hDst(HandleOf(pDC)) {}
    Copier(const CKXBitmap& bitmap, const CDC* pDC, COLORREF clrKey) : Copier(bitmap, pDC)
    {
        m_bKeyed = true;
        m_clrKey = clrKey;
    }

    Span Along(const CRect& rc) const { return SpanOf(rc, m_bHorz); }
    Span Across(const CRect& rc) const { return SpanOf(rc, !m_bHorz); }
    Span SeenAlong() const { return kx::draw::SeenOf(m_hDst, m_bHorz); }
    Span SeenAcross() const { return kx::draw::SeenOf(m_hDst, !m_bHorz); }

    // Copies from the head of a part of the source.
    void Copy(int along, int across, int nAlong, int nAcross, const CRect& rcSrc) const
    {
        if (m_bHorz)
            CopyBlock(along, across, nAlong, nAcross, rcSrc);
        else
            CopyBlock(across, along, nAcross, nAlong, rcSrc);
    }

private:
    static Span SpanOf(const CRect& rc, bool bHorz)
    {
        return bHorz ? Span{rc.left, rc.right} : Span{rc.top, rc.bottom};
    }
    void CopyBlock(int x, int y, int cx, int cy, const CRect& rcSrc) const
    {
        const int left = rcSrc.left;
        const int top = rcSrc.top;
        if (m_bKeyed)
            m_bitmap.CopyKeyed(m_hDst, x, y, CRect(left, top, Plus(left, cx), Plus(top, cy)), m_clrKey);
        else
            BitBlt(m_hDst, x, y, cx, cy, m_bitmap.m_image.DC(), left, top, SRCCOPY);
    }

    const CKXBitmap& m_bitmap;
    HDC m_hDst;
    bool m_bHorz = m_bitmap.m_bHorzFill != 0;
    bool m_bKeyed = false;
    COLORREF m_clrKey = 0;
};

// One band of a fill: the middle in tiles, the first part, and the last part over both.
void CKXBitmap::DrawBand(const Copier& copier, const CRect& rcDst, int nAcross, int nThickness) const
{
    const Span dst = copier.Along(rcDst);
    const int nFirst = LengthOf(copier.Along(m_rcSrcFirst));
    const int nLast = LengthOf(copier.Along(m_rcSrcLast));
    const int nMiddle = LengthOf(copier.Along(m_rcSrcMiddle));
    const std::int64_t nStart = std::int64_t{dst.from} + nFirst;
    const std::int64_t nRoom = dst.to - nStart - nLast;
    kx::draw::ForEachTile(
        nStart, nRoom, nMiddle, [&] { return copier.SeenAlong(); },
        [&](int at, int n) { copier.Copy(at, nAcross, n, nThickness, m_rcSrcMiddle); });
    copier.Copy(dst.from, nAcross, nFirst, nThickness, m_rcSrcFirst);
    copier.Copy(Minus(dst.to, nLast), nAcross, nLast, nThickness, m_rcSrcLast);
}

// A band as thick as the image, at the head of the rectangle.
void CKXBitmap::Fill(const Copier& copier, const CRect& rcDst) const
{
    DrawBand(copier, rcDst, copier.Across(rcDst).from, LengthOf(copier.Across(m_rcSrcMiddle)));
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
    if (SelectState(nState)) CopyKeyed(HandleOf(pDC), x, y, m_rcSrcImage, clr);
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
    if (SelectState(nState)) Fill(Copier(*this, pDC), rcDst);
}

void CKXBitmap::TransparentDrawFill(CDC* pDC, const CRect& rcDst, COLORREF clr, int nState)
{
    if (SelectState(nState)) Fill(Copier(*this, pDC, clr), rcDst);
}

void CKXBitmap::Pave(CDC* pDC, const CRect& rcDst, int nState)
{
    if (!SelectState(nState)) return;
    const Copier copier(*this, pDC);
    const Span across = copier.Across(rcDst);
    kx::draw::ForEachTile(
        across.from, std::int64_t{across.to} - across.from, LengthOf(copier.Across(m_rcSrcMiddle)),
        [&] { return copier.SeenAcross(); }, [&](int at, int n) { DrawBand(copier, rcDst, at, n); });
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
    BITMAPINFO info{};
    BITMAPINFOHEADER& header = info.bmiHeader;
    header.biSize = sizeof(header);
    GetDIBits(m_image.DC(), m_image.Bitmap(), 0, 1, nullptr, &info, DIB_RGB_COLORS);
    header.biHeight = -header.biHeight;
    const auto nLines = static_cast<UINT>(GetBITMAP().bmHeight);
    return GetDIBits(m_image.DC(), m_image.Bitmap(), 0, nLines, pBits, &info, DIB_RGB_COLORS);
}

void CKXBitmap::CreateBitmapRgn(CRgn& rgn, COLORREF clr, int bKeepColor)
{
    if (!m_image.Bitmap()) return;
    const CSize size(GetBITMAP().bmWidth, GetBITMAP().bmHeight);
    const HRGN hRgn = kx::draw::MakeColorRegion(m_image.DC(), m_image.Bitmap(), size, clr, bKeepColor != 0);
    if (!rgn.Attach(hRgn)) DeleteObject(hRgn);
}
