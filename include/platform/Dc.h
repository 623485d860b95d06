#pragma once

#include "Gdi.h"
#include "GdiObject.h"
#include "String.h"

// The framework's wrapper of a surface. It owns its handle and ends it with itself, unless it was detached or
// the wrapper came from FromHandle. Not copyable. Without a handle nothing is drawn and every operation
// fails.
class KX_API CDC : public CObject
{
    DECLARE_DYNAMIC(CDC)

public:
    CDC() = default;
    CDC(const CDC&) = delete;
    CDC& operator=(const CDC&) = delete;
    // Ends the surface if it is this object's own.
    ~CDC() override;

    // The handle; null without a surface.
    HDC GetSafeHdc() const { return m_hDC; }
    operator HDC() const { return m_hDC; }
    int Attach(HDC hDC);
    HDC Detach();
    // A memory surface compatible with `pDC`, or with the desktop's where that is null; 0 when there is one
    // already or none can be made.
    int CreateCompatibleDC(CDC* pDC);
    int DeleteDC();
    // The thread's own wrapper of a handle; it owns nothing and lives at least as long as the handle.
    static CDC* FromHandle(HDC hDC);

    // Select an object and return what it displaced; null when that fails or `pObject` is null.
    CBitmap* SelectObject(CBitmap* pObject);
    CPen* SelectObject(CPen* pObject);
    CBrush* SelectObject(CBrush* pObject);
    CFont* SelectObject(CFont* pObject);
    // A region is copied into the clip and displaces nothing: null.
    CGdiObject* SelectObject(CGdiObject* pObject);
    // Gives SelectClipRgn's result for the region; RGN_ERROR, with nothing changed, without one.
    int SelectObject(CRgn* pRgn);
    CGdiObject* SelectStockObject(int nIndex);

    // These do as the platform's operations of their names, and give the value before.
    COLORREF SetTextColor(COLORREF clr) { return ::SetTextColor(m_hDC, clr); }
    COLORREF GetTextColor() const { return ::GetTextColor(m_hDC); }
    COLORREF SetBkColor(COLORREF clr) { return ::SetBkColor(m_hDC, clr); }
    COLORREF GetBkColor() const { return ::GetBkColor(m_hDC); }
    int SetBkMode(int nMode) { return ::SetBkMode(m_hDC, nMode); }
    int GetBkMode() const { return ::GetBkMode(m_hDC); }

    // Fills with one colour, which becomes the surface's background colour too. Sides beyond the range of
    // coordinates stay at its end.
    void FillSolidRect(const RECT* pRect, COLORREF clr);
    void FillSolidRect(int x, int y, int cx, int cy, COLORREF clr);
    void FillRect(const RECT* pRect, CBrush* pBrush);
    int FillRgn(CRgn* pRgn, CBrush* pBrush);
    int Rectangle(const RECT* pRect)
    {
        return ::Rectangle(m_hDC, pRect->left, pRect->top, pRect->right, pRect->bottom);
    }
    // These do as the platform's operations of their names, on this surface.
    int Rectangle(int nLeft, int nTop, int nRight, int nBottom)
    {
        return ::Rectangle(m_hDC, nLeft, nTop, nRight, nBottom);
    }
    // A rectangle with corners that are quarters of an ellipse of that size.
    int RoundRect(const RECT* pRect, POINT ptEllipse);
    COLORREF GetPixel(int x, int y) const { return ::GetPixel(m_hDC, x, y); }
    COLORREF SetPixel(int x, int y, COLORREF clr) { return ::SetPixel(m_hDC, x, y, clr); }
    int DrawIcon(int x, int y, HICON hIcon) { return ::DrawIcon(m_hDC, x, y, hIcon); }

    // A null source copies nothing and gives 0.
    int BitBlt(int x, int y, int cx, int cy, CDC* pSrc, int xSrc, int ySrc, DWORD dwRop);
    int StretchBlt(int x, int y, int cx, int cy, CDC* pSrc, int xSrc, int ySrc, int cxSrc, int cySrc,
                   DWORD dwRop);
    int TransparentBlt(int x, int y, int cx, int cy, CDC* pSrc, int xSrc, int ySrc, int cxSrc, int cySrc,
                       UINT clrKey);

    // These do as the platform's operations of their names, on this surface.
    int GetClipBox(RECT* pRect) const { return ::GetClipBox(m_hDC, pRect); }
    int SelectClipRgn(CRgn* pRgn);

    // Draws a text into a rectangle, or measures it, by the DT_ flags.
    int DrawText(const CString& str, RECT* pRect, UINT nFormat);
    int DrawText(const char* psz, int nLength, RECT* pRect, UINT nFormat);
    int TextOut(int x, int y, const CString& str);
    CSize GetTextExtent(const CString& str) const;

    // The handle; null without a surface.
    HDC m_hDC = nullptr;
};
