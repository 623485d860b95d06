#pragma once

// Pictures, drawing with alpha, and gradient brushes, as plain calls. GdiPlus.h has classes over them.
//
// Each call gives a status, 0 (Ok) on success. Before GdiplusStartup, and after the last GdiplusShutdown,
// each gives GdiplusNotInitialized and does nothing else, except those that end an object: they end it. A
// null object or result gives InvalidParameter; on failure a result that is an object becomes null. Paths are
// UTF-16. An object is used by one thread at a time, different ones by any.

#include "../KXExport.h"
#include "Gdi.h"
#include "GdiPlusTypes.h"
#include "Stream.h"

#include <cstdint>

namespace Gdiplus {

// Objects that the calls name; all of them are made and ended by calls alone.
class GpImage;
class GpBitmap; // is a GpImage
class GpGraphics;
class GpImageAttributes;
class GpBrush;
class GpLineGradient; // is a GpBrush
class GpPathGradient; // is a GpBrush
class GpPath;
class GpRegion;
class GpPen;

// Starts are counted; each token is ended once. UnsupportedGdiplusVersion for another version than 1.
// `pOutput` may be null. Any thread.
KX_API GpStatus GdiplusStartup(std::uintptr_t* pToken, const GdiplusStartupInput* pInput,
                               GdiplusStartupOutput* pOutput);
KX_API void GdiplusShutdown(std::uintptr_t nToken);

namespace DllExports {

// ---- Pictures

// Pictures are BMP, PNG, JPEG, GIF, TIFF (BigTIFF too) and ICO (its largest image), told by their first
// bytes. FileNotFound or AccessDenied for what can't be opened, UnknownImageFormat, OutOfMemory for one
// beyond the limits, GenericError for a broken picture, and one that claims more pixels than its bytes can
// tell. What is no picture by its first bytes isn't read further. Without the library's module for pictures
// all but BMP and ICO are of an unknown format, for loading and saving.
//
// A picture that is cut off is read as far as it goes, if a row of it is there (a strip of a TIFF, whose
// description comes first): the rows that lack are transparent, in a JPEG grey, in a progressive one blurred.
// Without a row it is broken, as is an ICO or a compressed BMP that is cut.
//
// A JPEG's orientation is not applied, nor are colour profiles and gammas. The file may be replaced as soon
// as the call returns; a stream is read from its beginning, and a reference to it is held until the image
// ends.
KX_API GpStatus GdipLoadImageFromFile(const WCHAR* pszPath, GpImage** ppImage);
KX_API GpStatus GdipLoadImageFromStream(IStream* pStream, GpImage** ppImage);
KX_API GpStatus GdipLoadImageFromStreamICM(IStream* pStream, GpImage** ppImage);
KX_API GpStatus GdipCreateBitmapFromFile(const WCHAR* pszPath, GpBitmap** ppBitmap);
KX_API GpStatus GdipCreateBitmapFromStream(IStream* pStream, GpBitmap** ppBitmap);
// A copy of the bitmap's pixels, all opaque. The palette is not used.
KX_API GpStatus GdipCreateBitmapFromHBITMAP(HBITMAP hBitmap, void* hPalette, GpBitmap** ppBitmap);
// A picture over the caller's pixels, the top row first, which it reads and draws to as long as it lives; for
// null over black, transparent ones of its own. `nStride` is from one row to the next in bytes, a multiple of
// 4 and no less than a row, and `pScan0` is aligned to 4 bytes (else InvalidParameter). PixelFormat32bppRGB
// or 32bppARGB (NotImplemented for another).
KX_API GpStatus GdipCreateBitmapFromScan0(INT nWidth, INT nHeight, INT nStride, PixelFormat format,
                                          BYTE* pScan0, GpBitmap** ppBitmap);
KX_API GpStatus GdipDisposeImage(GpImage* pImage);

// In pixels.
KX_API GpStatus GdipGetImageWidth(GpImage* pImage, UINT* pnWidth);
KX_API GpStatus GdipGetImageHeight(GpImage* pImage, UINT* pnHeight);
// Gives the format that the picture had before it was read into 32 bits.
KX_API GpStatus GdipGetImagePixelFormat(GpImage* pImage, PixelFormat* pFormat);
KX_API GpStatus GdipBitmapGetPixel(GpBitmap* pBitmap, INT x, INT y, ARGB* pColor);
KX_API GpStatus GdipBitmapSetPixel(GpBitmap* pBitmap, INT x, INT y, ARGB color);

// In place, turned to the right and then mirrored; the picture has one frame after that. One over the
// caller's pixels gets pixels of its own. RotateNoneFlipNone changes nothing.
KX_API GpStatus GdipImageRotateFlip(GpImage* pImage, RotateFlipType type);
// A new picture of exactly that size, of the current frame; 0 by 0: 120 by 120, InvalidParameter for one 0.
// The callback is not called.
KX_API GpStatus GdipGetImageThumbnail(GpImage* pImage, UINT nWidth, UINT nHeight, GpImage** ppThumbnail,
                                      GetThumbnailImageAbort pfnAbort, void* pData);

// ---- Frames

// A picture has one dimension: time for a GIF, page for all others.
KX_API GpStatus GdipImageGetFrameDimensionsCount(GpImage* pImage, UINT* pnCount);
// `nCount` as GdipImageGetFrameDimensionsCount gave it.
KX_API GpStatus GdipImageGetFrameDimensionsList(GpImage* pImage, GUID* pDimensions, UINT nCount);
// Only frames that can be read count: a file cut off in a frame has those before it, or this one if it is the
// first. A GIF has 65,536 at most.
KX_API GpStatus GdipImageGetFrameCount(GpImage* pImage, const GUID* pDimension, UINT* pnCount);
// The frame becomes the picture: for a GIF what playing from the first to it shows. A step to the next frame
// decodes it alone, also for several players of the picture in turns; a step back decodes all from the first
// on, unless they are kept (MAX_KEPT_FRAMES_PIXELS).
// InvalidParameter for no such dimension or frame, GenericError for a broken page; the frame then stays.
KX_API GpStatus GdipImageSelectActiveFrame(GpImage* pImage, const GUID* pDimension, UINT nFrame);
// The size of a property with its record, and both in one block: `value` points behind the record. Sizes must
// match. PropertyNotFound. A GIF of two or more frames has PropertyTagFrameDelay, numbers of 32 bits.
KX_API GpStatus GdipGetPropertyItemSize(GpImage* pImage, PROPID id, UINT* pnSize);
KX_API GpStatus GdipGetPropertyItem(GpImage* pImage, PROPID id, UINT nSize, PropertyItem* pItem);

// ---- Encoders

// image/bmp, image/jpeg, image/gif, image/tiff, image/png. The size is in bytes; the list is filled when both
// numbers are as GdipGetImageEncodersSize gave them.
KX_API GpStatus GdipGetImageEncodersSize(UINT* pnCount, UINT* pnBytes);
KX_API GpStatus GdipGetImageEncoders(UINT nCount, UINT nBytes, ImageCodecInfo* pEncoders);
// Saves the current frame. BMP (24 bits), JPEG (quality 75, colours at half the resolution, one channel alone
// if all is grey) and GIF get it over black; in a GIF, pixels of an opacity below 128 are transparent, and
// more than 256 colours become 256 near ones. PNG and TIFF keep its alpha. A file is replaced whole, or stays
// as it was: FileNotFound where its directory isn't, AccessDenied for one that can't be written, GenericError
// for a full disk or a stream that doesn't take all. UnknownImageFormat for no such encoder.
KX_API GpStatus GdipSaveImageToFile(GpImage* pImage, const WCHAR* pszPath, const CLSID* pEncoder,
                                    const EncoderParameters* pParameters);
KX_API GpStatus GdipSaveImageToStream(GpImage* pImage, IStream* pStream, const CLSID* pEncoder,
                                      const EncoderParameters* pParameters);

// ---- Drawing

// Draws on a surface, clipped as it is, for as long as the surface lives: after that each drawing gives
// Win32Error. Or on a picture's current frame; the picture must outlive the graphics. An opaque target's high
// bytes become 0 where it is drawn on.
KX_API GpStatus GdipCreateFromHDC(HDC hDC, GpGraphics** ppGraphics);
KX_API GpStatus GdipGetImageGraphicsContext(GpImage* pImage, GpGraphics** ppGraphics);
KX_API GpStatus GdipDeleteGraphics(GpGraphics* pGraphics);
// The bounds of what can be drawn on, within the clip; all 0 where nothing can.
KX_API GpStatus GdipGetVisibleClipBoundsI(GpGraphics* pGraphics, GpRect* pRect);

// Draw the current frame over what is there, by its alpha: at its own size in pixels, or stretched to a
// block. A negative width or height mirrors it, leftwards or upwards from x, y; one of 0 draws nothing.
// Reducing takes the mean of the pixels that a target pixel covers, enlarging goes linearly from one pixel's
// centre to the next's; each direction by itself. Alpha is blended with rounding to the nearest, and exact
// for 0 and 255. A picture may be drawn on itself.
KX_API GpStatus GdipDrawImageI(GpGraphics* pGraphics, GpImage* pImage, INT x, INT y);
KX_API GpStatus GdipDrawImageRectI(GpGraphics* pGraphics, GpImage* pImage, INT x, INT y, INT nWidth,
                                   INT nHeight);
// A block of the picture, in pixels (`unit` UnitPixel, else NotImplemented), into a block of the target,
// through the attributes unless they are null. What of the source lies outside the picture draws nothing, and
// a pixel counts as in a block if its centre is. InvalidParameter for what is no finite number. The callback
// is not called.
KX_API GpStatus GdipDrawImageRectRect(GpGraphics* pGraphics, GpImage* pImage, REAL x, REAL y, REAL nWidth,
                                      REAL nHeight, REAL xSrc, REAL ySrc, REAL nSrcWidth, REAL nSrcHeight,
                                      GpUnit unit, const GpImageAttributes* pAttributes,
                                      DrawImageAbort pfnAbort, void* pData);

KX_API GpStatus GdipCreateImageAttributes(GpImageAttributes** ppAttributes);
KX_API GpStatus GdipDisposeImageAttributes(GpImageAttributes* pAttributes);
// Sets a matrix for drawing pictures, or with `bEnable` 0 takes it away. It works on colours that are not
// multiplied by the alpha, limits what it gives to 0 to 255 and rounds to the nearest. NotImplemented for
// another type than ColorAdjustTypeDefault, other flags than ColorMatrixFlagsDefault, and `pGray`.
KX_API GpStatus GdipSetImageAttributesColorMatrix(GpImageAttributes* pAttributes, ColorAdjustType type,
                                                  int bEnable, const ColorMatrix* pMatrix,
                                                  const ColorMatrix* pGray, ColorMatrixFlags flags);

// ---- Brushes and shapes

// From one colour at a point to another at a second, across or down, and over again on either side. Pixels
// count by their top left corners, so that the one at the first point has the first colour; the one at the
// second point has the second colour, and only periods further on begin with the first again. OutOfMemory for
// two equal points, as the platform has it; NotImplemented for points that differ in both coordinates, and
// for another mode than WrapModeTile.
KX_API GpStatus GdipCreateLineBrushI(const GpPoint* pFirst, const GpPoint* pSecond, ARGB first, ARGB second,
                                     GpWrapMode mode, GpLineGradient** ppBrush);
// From a path's centre, at first its middle, along rays out to its edge; nothing outside of it. Pixels count
// by their centres. At first all white. OutOfMemory for an empty path.
KX_API GpStatus GdipCreatePathGradientFromPath(const GpPath* pPath, GpPathGradient** ppBrush);
KX_API GpStatus GdipSetPathGradientCenterColor(GpPathGradient* pBrush, ARGB color);
// Moves the centre, to an edge of the path or outside of it if need be.
KX_API GpStatus GdipSetPathGradientCenterPointI(GpPathGradient* pBrush, const GpPoint* pPoint);
// The one colour of the whole edge: `*pnCount` is 1, NotImplemented for more.
KX_API GpStatus GdipSetPathGradientSurroundColorsWithCount(GpPathGradient* pBrush, const ARGB* pColors,
                                                           INT* pnCount);
KX_API GpStatus GdipDeleteBrush(GpBrush* pBrush);

// A path of one rectangle, NotImplemented for a second. A width or height of 0 or below adds nothing.
KX_API GpStatus GdipCreatePath(GpFillMode mode, GpPath** ppPath);
KX_API GpStatus GdipAddPathRectangleI(GpPath* pPath, INT x, INT y, INT nWidth, INT nHeight);
KX_API GpStatus GdipDeletePath(GpPath* pPath);

// A copy of a region's pixels.
KX_API GpStatus GdipCreateRegionHrgn(HRGN hRgn, GpRegion** ppRegion);
KX_API GpStatus GdipDeleteRegion(GpRegion* pRegion);

// A pen of one colour; its width counts as at least 1 pixel. InvalidParameter for a width that is no finite
// number, and for another unit than UnitWorld or UnitPixel.
KX_API GpStatus GdipCreatePen1(ARGB color, REAL nWidth, GpUnit unit, GpPen** ppPen);
KX_API GpStatus GdipDeletePen(GpPen* pPen);

// A width or height of 0 or below fills nothing.
KX_API GpStatus GdipFillRectangleI(GpGraphics* pGraphics, GpBrush* pBrush, INT x, INT y, INT nWidth,
                                   INT nHeight);
KX_API GpStatus GdipFillRegion(GpGraphics* pGraphics, GpBrush* pBrush, GpRegion* pRegion);
// The outline, of which a pen one pixel wide covers the columns x and x + nWidth and the rows y and
// y + nHeight; wider ones reach to both sides alike, of an even width one pixel more to the left and upwards.
// Nothing for a width or height below 0.
KX_API GpStatus GdipDrawRectangleI(GpGraphics* pGraphics, GpPen* pPen, INT x, INT y, INT nWidth, INT nHeight);

} // namespace DllExports
} // namespace Gdiplus
