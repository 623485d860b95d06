#include "include/platform/GdiPlus.h"
#include "platform/gdiplus/Calls.h"
#include "platform/gdiplus/Image.h"

#include <new>

namespace Gdiplus {

using namespace DllExports;

void End::operator()(GpImage* p) const noexcept
{
    GdipDisposeImage(p);
}

// ---- Image

Image::Image(const WCHAR* pszPath, int)
{
    GpImage* pImage = nullptr;
    const Status status = GdipLoadImageFromFile(pszPath, &pImage);
    Take(pImage, status);
}

Image::Image(IStream* pStream, int bUseEmbeddedColorManagement)
{
    GpImage* pImage = nullptr;
    const Status status = bUseEmbeddedColorManagement ? GdipLoadImageFromStreamICM(pStream, &pImage)
                                                      : GdipLoadImageFromStream(pStream, &pImage);
    Take(pImage, status);
}

Image::~Image() = default;

void Image::Take(GpImage* pImage, Status status)
{
    m_pImage.reset(pImage);
    Keep(status);
}

Status Image::Keep(Status status) const
{
    return kx::gdiplus::KeepIn(m_lastResult, status);
}

Status Image::GetLastStatus() const
{
    return kx::gdiplus::TakeFrom(m_lastResult);
}

UINT Image::GetWidth() const
{
    UINT nWidth = 0;
    Keep(GdipGetImageWidth(Native(), &nWidth));
    return nWidth;
}

UINT Image::GetHeight() const
{
    UINT nHeight = 0;
    Keep(GdipGetImageHeight(Native(), &nHeight));
    return nHeight;
}

PixelFormat Image::GetPixelFormat() const
{
    PixelFormat format = PixelFormatUndefined;
    Keep(GdipGetImagePixelFormat(Native(), &format));
    return format;
}

Status Image::RotateFlip(RotateFlipType type)
{
    return Keep(GdipImageRotateFlip(Native(), type));
}

Image* Image::GetThumbnailImage(UINT nWidth, UINT nHeight, GetThumbnailImageAbort pfnAbort, void* pData)
{
    auto* const pObject = new (std::nothrow) Image();
    if (!pObject) return nullptr;
    GpImage* pThumbnail = nullptr;
    const Status status = GdipGetImageThumbnail(Native(), nWidth, nHeight, &pThumbnail, pfnAbort, pData);
    pObject->Take(pThumbnail, Keep(status));
    return pObject;
}

// ---- Frames and properties

UINT Image::GetFrameDimensionsCount() const
{
    UINT nCount = 0;
    Keep(GdipImageGetFrameDimensionsCount(Native(), &nCount));
    return nCount;
}

Status Image::GetFrameDimensionsList(GUID* pDimensions, UINT nCount) const
{
    return Keep(GdipImageGetFrameDimensionsList(Native(), pDimensions, nCount));
}

UINT Image::GetFrameCount(const GUID* pDimension) const
{
    UINT nCount = 0;
    Keep(GdipImageGetFrameCount(Native(), pDimension, &nCount));
    return nCount;
}

Status Image::SelectActiveFrame(const GUID* pDimension, UINT nFrame)
{
    return Keep(GdipImageSelectActiveFrame(Native(), pDimension, nFrame));
}

UINT Image::GetPropertyItemSize(PROPID id) const
{
    UINT nSize = 0;
    Keep(GdipGetPropertyItemSize(Native(), id, &nSize));
    return nSize;
}

Status Image::GetPropertyItem(PROPID id, UINT nSize, PropertyItem* pItem) const
{
    return Keep(GdipGetPropertyItem(Native(), id, nSize, pItem));
}

Status Image::Save(const WCHAR* pszPath, const CLSID* pEncoder, const EncoderParameters* pParameters) const
{
    return Keep(GdipSaveImageToFile(Native(), pszPath, pEncoder, pParameters));
}

Status Image::Save(IStream* pStream, const CLSID* pEncoder, const EncoderParameters* pParameters) const
{
    return Keep(GdipSaveImageToStream(Native(), pStream, pEncoder, pParameters));
}

// ---- Bitmap

Bitmap::Bitmap(const WCHAR* pszPath, int)
{
    GpBitmap* pBitmap = nullptr;
    const Status status = GdipCreateBitmapFromFile(pszPath, &pBitmap);
    Take(pBitmap, status);
}

Bitmap::Bitmap(IStream* pStream, int)
{
    GpBitmap* pBitmap = nullptr;
    const Status status = GdipCreateBitmapFromStream(pStream, &pBitmap);
    Take(pBitmap, status);
}

Bitmap::Bitmap(HBITMAP hBitmap, void* hPalette)
{
    GpBitmap* pBitmap = nullptr;
    const Status status = GdipCreateBitmapFromHBITMAP(hBitmap, hPalette, &pBitmap);
    Take(pBitmap, status);
}

Bitmap::Bitmap(INT nWidth, INT nHeight, PixelFormat format) : Bitmap(nWidth, nHeight, 0, format, nullptr)
{
}

Bitmap::Bitmap(INT nWidth, INT nHeight, INT nStride, PixelFormat format, BYTE* pScan0)
{
    GpBitmap* pBitmap = nullptr;
    const Status status = GdipCreateBitmapFromScan0(nWidth, nHeight, nStride, format, pScan0, &pBitmap);
    Take(pBitmap, status);
}

// All pictures are bitmaps.
Status Bitmap::GetPixel(INT x, INT y, Color* pColor) const
{
    ARGB color = 0;
    if (!pColor) return Keep(InvalidParameter);
    const Status status = Keep(GdipBitmapGetPixel(static_cast<GpBitmap*>(Native()), x, y, &color));
    if (status == Ok) *pColor = Color(color);
    return status;
}

Status Bitmap::SetPixel(INT x, INT y, const Color& color)
{
    return Keep(GdipBitmapSetPixel(static_cast<GpBitmap*>(Native()), x, y, color.GetValue()));
}

} // namespace Gdiplus
