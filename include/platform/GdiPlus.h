#pragma once

// Classes over the calls of GdiPlusFlat.h, which say what each operation does. An object exists even where it
// could not be made, as from a file that is no picture: its operations then do nothing and say so by status.
// An object ends what it was made of.

#include "GdiPlusFlat.h"

#include <memory>

namespace Gdiplus {

// A colour of four bytes.
class Color
{
public:
    constexpr Color() = default;
    // From one number, or from its parts, opaque where none is told.
    constexpr explicit Color(ARGB argb) : m_argb(argb) {}
    constexpr Color(BYTE r, BYTE g, BYTE b) : Color(255, r, g, b) {}
    constexpr Color(BYTE a, BYTE r, BYTE g, BYTE b)
        : m_argb(ARGB{a} << 24 | ARGB{r} << 16 | ARGB{g} << 8 | ARGB{b})
    {
    }
    // The number; and the same from a COLORREF, opaque.
    constexpr ARGB GetValue() const { return m_argb; }
    constexpr void SetFromCOLORREF(COLORREF clr)
    {
        *this = Color(GetRValue(clr), GetGValue(clr), GetBValue(clr));
    }

private:
    ARGB m_argb = 0xFF000000;
};

// Ends an object of the flat calls.
struct End
{
    // Ends the object; null is allowed.
    KX_API void operator()(GpImage* p) const noexcept;
    KX_API void operator()(GpGraphics* p) const noexcept;
    KX_API void operator()(GpImageAttributes* p) const noexcept;
    KX_API void operator()(GpBrush* p) const noexcept;
    KX_API void operator()(GpPath* p) const noexcept;
    KX_API void operator()(GpRegion* p) const noexcept;
    KX_API void operator()(GpPen* p) const noexcept;
};

// A picture.
class KX_API Image
{
public:
    // Loads a file or a stream; the status tells whether that succeeded.
    explicit Image(const WCHAR* pszPath, int bUseEmbeddedColorManagement = 0);
    explicit Image(IStream* pStream, int bUseEmbeddedColorManagement = 0);
    virtual ~Image();
    Image(const Image&) = delete;
    Image& operator=(const Image&) = delete;

    // Size and format; 0 without a picture. RotateFlip turns it in place.
    UINT GetWidth() const;
    UINT GetHeight() const;
    PixelFormat GetPixelFormat() const;
    Status RotateFlip(RotateFlipType type);
    // A new object, which the caller owns; null without memory.
    Image* GetThumbnailImage(UINT nWidth, UINT nHeight, GetThumbnailImageAbort pfnAbort = nullptr,
                             void* pData = nullptr);

    // Frames and properties, as the flat calls of these names.
    UINT GetFrameDimensionsCount() const;
    Status GetFrameDimensionsList(GUID* pDimensions, UINT nCount) const;
    UINT GetFrameCount(const GUID* pDimension) const;
    Status SelectActiveFrame(const GUID* pDimension, UINT nFrame);
    UINT GetPropertyItemSize(PROPID id) const;
    Status GetPropertyItem(PROPID id, UINT nSize, PropertyItem* pItem) const;

    // Encodes the picture into a file or a stream.
    Status Save(const WCHAR* pszPath, const CLSID* pEncoder,
                const EncoderParameters* pParameters = nullptr) const;
    Status Save(IStream* pStream, const CLSID* pEncoder,
                const EncoderParameters* pParameters = nullptr) const;

    // The last failure since the last call of this; Ok without one.
    Status GetLastStatus() const;

    // The picture, null where there is none; it stays the object's.
    GpImage* Native() const { return m_pImage.get(); }

protected:
    Image() = default;
    // Owns the picture from here on, with the status that it was made with.
    void Take(GpImage* pImage, Status status);
    Status Keep(Status status) const;

private:
    std::unique_ptr<GpImage, End> m_pImage;
    mutable Status m_lastResult = Ok;
};

// A picture made of pixels.
class KX_API Bitmap : public Image
{
public:
    // Loads, copies a bitmap, or makes one of own or of the caller's pixels.
    explicit Bitmap(const WCHAR* pszPath, int bUseEmbeddedColorManagement = 0);
    explicit Bitmap(IStream* pStream, int bUseEmbeddedColorManagement = 0);
    Bitmap(HBITMAP hBitmap, void* hPalette);
    Bitmap(INT nWidth, INT nHeight, PixelFormat format = PixelFormat32bppARGB);
    Bitmap(INT nWidth, INT nHeight, INT nStride, PixelFormat format, BYTE* pScan0);

    // One pixel; InvalidParameter outside of the picture.
    Status GetPixel(INT x, INT y, Color* pColor) const;
    Status SetPixel(INT x, INT y, const Color& color);
};

// How a picture's colours are changed in drawing it.
class KX_API ImageAttributes
{
public:
    // Nothing is changed until a matrix is set.
    ImageAttributes();
    Status SetColorMatrix(const ColorMatrix* pMatrix, ColorMatrixFlags flags = ColorMatrixFlagsDefault,
                          ColorAdjustType type = ColorAdjustTypeDefault);
    Status GetLastStatus() const;
    GpImageAttributes* Native() const { return m_pAttributes.get(); }

private:
    std::unique_ptr<GpImageAttributes, End> m_pAttributes;
    mutable Status m_lastResult = Ok;
};

// A brush fills areas.
class KX_API Brush
{
public:
    // Ends the brush.
    virtual ~Brush();
    Brush(const Brush&) = delete;
    Brush& operator=(const Brush&) = delete;
    Status GetLastStatus() const;
    GpBrush* Native() const { return m_pBrush.get(); }

protected:
    Brush() = default;
    // Owns the brush from here on, with the status that it was made with.
    void Take(GpBrush* pBrush, Status status);
    Status Keep(Status status) const;

private:
    std::unique_ptr<GpBrush, End> m_pBrush;
    mutable Status m_lastResult = Ok;
};

// A gradient between two points.
class KX_API LinearGradientBrush : public Brush
{
public:
    // WrapModeTile.
    LinearGradientBrush(const Point& first, const Point& second, const Color& colorFirst,
                        const Color& colorSecond);
};

// A path of rectangles.
class KX_API GraphicsPath
{
public:
    // An empty path.
    explicit GraphicsPath(FillMode mode = FillModeAlternate);
    Status AddRectangle(INT x, INT y, INT nWidth, INT nHeight);
    Status GetLastStatus() const;
    GpPath* Native() const { return m_pPath.get(); }

private:
    std::unique_ptr<GpPath, End> m_pPath;
    mutable Status m_lastResult = Ok;
};

// A gradient from a path's centre to its edge.
class KX_API PathGradientBrush : public Brush
{
public:
    // Made of a path, which is copied.
    explicit PathGradientBrush(const GraphicsPath* pPath);
    Status SetCenterColor(const Color& color);
    Status SetCenterPoint(const Point& point);
    Status SetSurroundColors(const Color* pColors, INT* pnCount);
};

// A set of pixels, for drawing on surfaces of this layer.
class KX_API Region
{
public:
    // A copy of the platform's region.
    explicit Region(HRGN hRgn);
    Status GetLastStatus() const;
    GpRegion* Native() const { return m_pRegion.get(); }

private:
    std::unique_ptr<GpRegion, End> m_pRegion;
    mutable Status m_lastResult = Ok;
};

// A tool that outlines are drawn with.
class KX_API Pen
{
public:
    // Made of a colour, so many pixels wide.
    explicit Pen(const Color& color, REAL nWidth = 1.0F);
    Status GetLastStatus() const;
    GpPen* Native() const { return m_pPen.get(); }

private:
    std::unique_ptr<GpPen, End> m_pPen;
    mutable Status m_lastResult = Ok;
};

class KX_API Graphics
{
public:
    // On a surface, which stays the caller's and outlives it.
    explicit Graphics(HDC hDC);
    explicit Graphics(Image* pImage);
    Graphics(const Graphics&) = delete;
    Graphics& operator=(const Graphics&) = delete;

    // Draws a picture, whole or in part, at its size or stretched.
    Status DrawImage(Image* pImage, INT x, INT y);
    Status DrawImage(Image* pImage, INT x, INT y, INT nWidth, INT nHeight);
    Status DrawImage(Image* pImage, REAL x, REAL y, REAL nWidth, REAL nHeight, REAL xSrc, REAL ySrc,
                     REAL nSrcWidth, REAL nSrcHeight, Unit unit, const ImageAttributes* pAttributes = nullptr,
                     DrawImageAbort pfnAbort = nullptr, void* pData = nullptr);
    // Fills or outlines.
    Status FillRectangle(const Brush* pBrush, INT x, INT y, INT nWidth, INT nHeight);
    Status FillRegion(const Brush* pBrush, const Region* pRegion);
    Status DrawRectangle(const Pen* pPen, INT x, INT y, INT nWidth, INT nHeight);
    Status GetLastStatus() const;
    GpGraphics* Native() const { return m_pGraphics.get(); }

private:
    Status Keep(Status status) const;

    std::unique_ptr<GpGraphics, End> m_pGraphics;
    mutable Status m_lastResult = Ok;
};

} // namespace Gdiplus
