#pragma once

// The framework's wrappers of drawing objects. A wrapper owns its handle and ends it with itself, unless the
// handle was detached, or the wrapper came from FromHandle: such a one is the thread's, owns nothing and
// lives at least as long as its handle. Not copyable. A wrapper without a handle answers everything with
// failure. One thread at a time.

#include "Gdi.h"
#include "Object.h"

// A drawing object: ends it at its own end, unless it was detached.
class KX_API CGdiObject : public CObject
{
    DECLARE_DYNAMIC(CGdiObject)

public:
    CGdiObject() = default;
    CGdiObject(const CGdiObject&) = delete;
    CGdiObject& operator=(const CGdiObject&) = delete;
    // Ends the object that it has.
    ~CGdiObject() override;

    // Takes a handle over; 0 for null or when there is one already.
    int Attach(HGDIOBJ hObject);
    HGDIOBJ Detach();
    // Ends the object; 0 if there is none or it can't be ended.
    int DeleteObject();
    HGDIOBJ GetSafeHandle() const { return m_hObject; }
    // Does the same as GetObjectA.
    int GetObject(int nSize, void* pBuffer) const { return GetObjectA(m_hObject, nSize, pBuffer); }
    static CGdiObject* FromHandle(HGDIOBJ hObject);

    // The handle; null without an object.
    HGDIOBJ m_hObject = nullptr;
};

// A bitmap.
class KX_API CBitmap : public CGdiObject
{
    DECLARE_DYNAMIC(CBitmap)

public:
    // The handle, and what the operations of these names do.
    operator HBITMAP() const { return static_cast<HBITMAP>(m_hObject); }
    int CreateCompatibleBitmap(class CDC* pDC, int cx, int cy);
    int LoadBitmapA(UINT nId);
    int GetBitmap(BITMAP* pBitmap) const { return GetObject(sizeof(BITMAP), pBitmap); }
    static CBitmap* FromHandle(HBITMAP hBitmap);
};

// A pen: what outlines are drawn with.
class KX_API CPen : public CGdiObject
{
    DECLARE_DYNAMIC(CPen)

public:
    CPen() = default;
    // Makes the pen, as CreatePen does.
    CPen(int nStyle, int nWidth, COLORREF clr) { CreatePen(nStyle, nWidth, clr); }
    operator HPEN() const { return static_cast<HPEN>(m_hObject); }
    int CreatePen(int nStyle, int nWidth, COLORREF clr);
    static CPen* FromHandle(HPEN hPen);
};

// A brush: what areas are filled with.
class KX_API CBrush : public CGdiObject
{
    DECLARE_DYNAMIC(CBrush)

public:
    CBrush() = default;
    // Makes the brush, as CreateSolidBrush does.
    explicit CBrush(COLORREF clr) { CreateSolidBrush(clr); }
    operator HBRUSH() const { return static_cast<HBRUSH>(m_hObject); }
    int CreateSolidBrush(COLORREF clr);
    static CBrush* FromHandle(HBRUSH hBrush);
};

// A font.
class KX_API CFont : public CGdiObject
{
    DECLARE_DYNAMIC(CFont)

public:
    // The handle, and what the operations of these names do.
    operator HFONT() const { return static_cast<HFONT>(m_hObject); }
    int CreateFontIndirectA(const LOGFONTA* pFont);
    // `nPointSize` in tenths of a point, at the resolution of `pDC`'s device (96 dots an inch).
    int CreatePointFont(int nPointSize, const char* pszFace, CDC* pDC = nullptr);
    int GetLogFont(LOGFONTA* pFont) const { return GetObject(sizeof(LOGFONTA), pFont); }
    // This thread's object of a handle.
    static CFont* FromHandle(HFONT hFont);
};

// A region: a set of pixels.
class KX_API CRgn : public CGdiObject
{
    DECLARE_DYNAMIC(CRgn)

public:
    // The handle, and what the operations of these names do.
    operator HRGN() const { return static_cast<HRGN>(m_hObject); }
    int CreateRectRgn(int nLeft, int nTop, int nRight, int nBottom);
    int CreateRoundRectRgn(int nLeft, int nTop, int nRight, int nBottom, int cx, int cy);
    int CombineRgn(const CRgn* pRgn1, const CRgn* pRgn2, int nMode);
    int PtInRegion(int x, int y) const { return ::PtInRegion(*this, x, y); }
    int GetRgnBox(RECT* pRect) const { return ::GetRgnBox(*this, pRect); }
    static CRgn* FromHandle(HRGN hRgn);
};
