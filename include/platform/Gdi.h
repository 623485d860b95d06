#pragma once

// Drawing: surfaces, the objects selected into them, block copies, shapes, regions and text.
//
// A handle is an opaque number that is never reused soon; null, stale and foreign handles are harmless: each
// operation then gives its failure. Coordinates are pixels from the top left; rectangles exclude their right
// and bottom. Everything clips to the surfaces it reads and writes. Pixels are held as 32 bits, 0x00RRGGBB in
// a DWORD with a high byte that copies keep and comparisons ignore, whatever depth a bitmap declares; it is 0
// but for what a file of 32 bits brought along.
//
// Threads: handles may be passed between threads; one surface, or an object selected into it, is used by one
// thread at a time.

#include "../KXExport.h"
#include "Geometry.h"
#include "Types.h"

// Handles of a surface and of what is selected into one.
using HDC = struct HDC__*;
using HGDIOBJ = void*;
using HBITMAP = struct HBITMAP__*;
using HRGN = struct HRGN__*;
using HPEN = struct HPEN__*;
using HBRUSH = struct HBRUSH__*;
using HFONT = struct HFONT__*;

// GetPixel gives this outside of a surface.
inline constexpr COLORREF CLR_INVALID = 0xFFFFFFFF;

// The red part of a colour.
constexpr BYTE GetRValue(COLORREF clr)
{
    return static_cast<BYTE>(clr);
}
// The green part of a colour.
constexpr BYTE GetGValue(COLORREF clr)
{
    return static_cast<BYTE>(clr >> 8);
}
// The blue part of a colour.
constexpr BYTE GetBValue(COLORREF clr)
{
    return static_cast<BYTE>(clr >> 16);
}

// ---- Objects in general

// Ends a bitmap, pen, brush, font or region that the caller made. 0 for a stock object, and for an object
// that is selected into a surface: it stays, so that nothing is drawn from freed pixels.
KX_API int DeleteObject(HGDIOBJ hObject);

// Selects a bitmap, pen, brush or font into a surface and returns what it displaced (the object itself if it
// was selected already); a region is copied into the clip and gives what SelectClipRgn does, as a number.
// Null for a bad handle, and for a bitmap that another surface holds or a bitmap for a surface that isn't a
// memory surface. A clip region stays in force when another bitmap is selected.
KX_API HGDIOBJ SelectObject(HDC hDC, HGDIOBJ hObject);

// Copies the object's record into `pBuffer` (a BITMAP for a bitmap, a LOGFONTA for a font) when `nSize` holds
// it; with a null buffer gives the size. 0 on failure, and for an object without a record.
KX_API int GetObjectA(HGDIOBJ hObject, int nSize, void* pBuffer);

inline constexpr int WHITE_BRUSH = 0;
inline constexpr int LTGRAY_BRUSH = 1;
inline constexpr int GRAY_BRUSH = 2;
inline constexpr int DKGRAY_BRUSH = 3;
inline constexpr int BLACK_BRUSH = 4;
inline constexpr int NULL_BRUSH = 5;
inline constexpr int WHITE_PEN = 6;
inline constexpr int BLACK_PEN = 7;
inline constexpr int NULL_PEN = 8;
inline constexpr int SYSTEM_FONT = 13;
inline constexpr int DEFAULT_GUI_FONT = 17;
// A stock object, which lives as long as the process; null for another number.
KX_API HGDIOBJ GetStockObject(int nIndex);

// ---- Surfaces

// The size of a desktop in memory unless the host chose another (Host.h), and what its pixels begin as.
inline constexpr int DESKTOP_WIDTH = 1024;
inline constexpr int DESKTOP_HEIGHT = 768;
inline constexpr COLORREF DESKTOP_COLOR = RGB(0, 128, 128);

// A surface of a window's client area, or with null or GetDesktopWindow() of the desktop. Given back with
// ReleaseDC, which gives 1, or 0 for another surface.
//
// A window has pixels of its own, which it keeps while others lie over it. What is drawn is seen on the
// desktop once the surface has been given back (or EndPaint called) and the window is visible.
//
// Reading the desktop gives what is seen at that moment, windows included. Drawing on it changes what lies
// under all windows: on a real display nothing, in memory at once. It may be drawn on from several threads.
KX_API HDC GetDC(HWND hWnd);
KX_API int ReleaseDC(HWND hWnd, HDC hDC);
// A memory surface with a bitmap of 1 by 1 pixel in it, black pen, white brush, default font; ended with
// DeleteDC, which gives back what is selected. `hDC` null means the desktop's. The first bitmap is the
// surface's own and ends with it. DeleteDC gives 0 for what isn't a memory surface.
KX_API HDC CreateCompatibleDC(HDC hDC);
KX_API int DeleteDC(HDC hDC);
// The bounds of what drawing is clipped to; gives NULLREGION (1), SIMPLEREGION (2), COMPLEXREGION (3), or
// ERROR (0).
KX_API int GetClipBox(HDC hDC, RECT* pRect);
// Clips to a copy of the region, in the surface's coordinates; null: to the surface alone. Gives what
// GetClipBox does.
KX_API int SelectClipRgn(HDC hDC, HRGN hRgn);

// ---- Bitmaps

struct BITMAP
{
    LONG bmType; // 0
    LONG bmWidth;
    LONG bmHeight;
    LONG bmWidthBytes; // of a row at the declared depth, padded to 16 bits (to 32 for a bitmap from a file)
    WORD bmPlanes;     // 1
    WORD bmBitsPixel;  // the declared depth
    void* bmBits;      // null
};

// A colour of a palette.
struct RGBQUAD
{
    // Blue, green, red, and nothing.
    BYTE rgbBlue;
    BYTE rgbGreen;
    BYTE rgbRed;
    BYTE rgbReserved;
};

// This describes pixels in memory or in a file.
struct BITMAPINFOHEADER
{
    // This record's size; width and height in pixels, a negative height for rows from the top; 1; bits a
    // pixel.
    DWORD biSize;
    LONG biWidth;
    LONG biHeight;
    WORD biPlanes;
    WORD biBitCount;
    DWORD biCompression;
    DWORD biSizeImage;
    LONG biXPelsPerMeter;
    LONG biYPelsPerMeter;
    DWORD biClrUsed;
    DWORD biClrImportant;
};

struct BITMAPINFO
{
    // The record; behind it lie as many colours as the depth asks for.
    BITMAPINFOHEADER bmiHeader;
    RGBQUAD bmiColors[1];
};

// How the pixels are packed.
inline constexpr DWORD BI_RGB = 0;
inline constexpr DWORD BI_RLE8 = 1;
inline constexpr DWORD BI_RLE4 = 2;
inline constexpr DWORD BI_BITFIELDS = 3;
inline constexpr UINT DIB_RGB_COLORS = 0;

// The most pixels that a bitmap may have; more is refused before anything is allocated.
inline constexpr std::int64_t MAX_BITMAP_PIXELS = std::int64_t{1} << 26;

// A black bitmap of 32 bits. Null for a bad surface, a size of 0 or below, or too many pixels.
KX_API HBITMAP CreateCompatibleBitmap(HDC hDC, int cx, int cy);

// Kinds of image for LoadImageA, and the source of it.
inline constexpr UINT IMAGE_BITMAP = 0;
inline constexpr UINT IMAGE_ICON = 1;
inline constexpr UINT LR_LOADFROMFILE = 0x10;
inline constexpr UINT LR_CREATEDIBSECTION = 0x2000;

// Loads a bitmap from a BMP file of 1, 2, 4, 8, 16, 24 or 32 bits, or an icon from an ICO file. Both are
// brought to `cx` by `cy`, where 0 keeps the own side: a bitmap with its nearest pixels; an icon with the
// means, opacity included, of its smallest entry that is as large, or else its largest. With 0, 0 an icon is
// the file's first entry. With LR_LOADFROMFILE `pszName` is a path, otherwise
// a resource of the module (a number by MAKEINTRESOURCEA). The caller ends a bitmap with DeleteObject, an
// icon with DestroyIcon. Null for anything that is no such image, and for a size below 0.
KX_API HANDLE LoadImageA(HINSTANCE hInstance, const char* pszName, UINT nType, int cx, int cy, UINT nFlags);
KX_API HBITMAP LoadBitmapA(HINSTANCE hInstance, const char* pszName);
KX_API int DestroyIcon(HICON hIcon);
// Draws an icon at its own size; its mask leaves pixels alone.
KX_API int DrawIcon(HDC hDC, int x, int y, HICON hIcon);
// The icon's width and height in pixels; 0 for a bad handle.
KX_API int GetIconSize(HICON hIcon, SIZE* pSize);

// Copies rows of a bitmap into a buffer, each padded to 32 bits, in the layout that the header tells.
//
// With biBitCount 0 it is a query: it fills the header with the bitmap's own size and declared depth, writes
// nothing behind it, copies nothing and gives 1. biClrUsed is 0 then: a caller that goes on with that header
// is given no colours.
//
// Otherwise the header tells the size, which must be the bitmap's, and the depth: 16 (5 bits a colour), 24 or
// 32, or, if the bitmap has a palette, one of 1, 4 or 8 that can count its colours. A negative biHeight puts
// the top row first. `nStart` and `nLines` count lines from the bottom, whichever comes first; what is above
// the top is left out. On entry biClrUsed tells how many colours the caller has room for behind the header, 0
// for none; so many of the palette, at most, are written there, and biClrUsed becomes the number written.
// Pixels whose colour the palette lacks get the index of the nearest.
//
// Gives the number of rows copied, or for a null `pBits` those that would be. 0, with nothing written, for a
// bad handle or header (biSize 40, biPlanes 1, BI_RGB), another `nUsage` than DIB_RGB_COLORS, or no such
// line. `hDC` is any surface; the bitmap may be selected.
KX_API int GetDIBits(HDC hDC, HBITMAP hBitmap, UINT nStart, UINT nLines, void* pBits, BITMAPINFO* pInfo,
                     UINT nUsage);

// The colour of a pixel; CLR_INVALID outside of the surface or its clip.
KX_API COLORREF GetPixel(HDC hDC, int x, int y);
// Gives the colour set; CLR_INVALID outside of the surface or its clip.
KX_API COLORREF SetPixel(HDC hDC, int x, int y, COLORREF clr);

// ---- Block copies

inline constexpr DWORD SRCCOPY = 0x00CC0020;

// Pixels outside either surface, or the destination's clip, are left out; the source's clip doesn't count.
// Source and destination may be one surface and overlap: each pixel is what the source was before the call.
// Each gives non-zero even if nothing was in reach to copy, and 0, with nothing painted, for a bad surface,
// another operation than SRCCOPY, or a lack of memory.

// Copies a block one to one. A size of 0 or below copies nothing.
KX_API int BitBlt(HDC hDst, int x, int y, int cx, int cy, HDC hSrc, int xSrc, int ySrc, DWORD dwRop);
// Copies a block into one of another size: each pixel from the one that its centre falls into, or where that
// is on an edge from the left or upper one. Negative sizes are refused; one of 0 copies nothing.
KX_API int StretchBlt(HDC hDst, int x, int y, int cx, int cy, HDC hSrc, int xSrc, int ySrc, int cxSrc,
                      int cySrc, DWORD dwRop);
// The same, leaving out the source's pixels of colour `clrKey`, whose high byte counts for nothing. A source
// block that leaves its surface is refused, as the platform does: 0.
KX_API int TransparentBlt(HDC hDst, int x, int y, int cx, int cy, HDC hSrc, int xSrc, int ySrc, int cxSrc,
                          int cySrc, UINT clrKey);

// ---- Regions

inline constexpr int RGN_AND = 1;
inline constexpr int RGN_OR = 2;
inline constexpr int RGN_XOR = 3;
inline constexpr int RGN_DIFF = 4;
inline constexpr int RGN_COPY = 5;
inline constexpr int RGN_ERROR = 0;
inline constexpr int NULLREGION = 1;
inline constexpr int SIMPLEREGION = 2;
inline constexpr int COMPLEXREGION = 3;

// Two corners may come in any order; without a width or height between them the region is empty. The caller
// ends a region with DeleteObject.
KX_API HRGN CreateRectRgn(int nLeft, int nTop, int nRight, int nBottom);
// The region that RoundRect would fill between an outline's outer edges.
KX_API HRGN CreateRoundRectRgn(int nLeft, int nTop, int nRight, int nBottom, int cxEllipse, int cyEllipse);
// A region of `nCount` rectangles, which may overlap; empty ones count for nothing. Fastest when they come in
// rows from the top, each row from the left. Null for a negative count.
KX_API HRGN CreateRectsRgn(const RECT* pRects, int nCount);
// A region of the bits that are set in a mask of `nHeight` rows from the top, each of `nWidth` bits in words
// of its own, the lowest bit first; those behind the width are 0. Null for a negative size, or without a
// mask.
KX_API HRGN CreateMaskRgn(const std::uint64_t* pMask, int nWidth, int nHeight);
// `hDst` becomes a combination of two regions, either of which may be `hDst` itself. RGN_COPY takes the first
// and doesn't look at the second. Gives NULLREGION, SIMPLEREGION, COMPLEXREGION, or for a bad handle or mode
// RGN_ERROR with nothing changed; so do GetRgnBox and OffsetRgn.
KX_API int CombineRgn(HRGN hDst, HRGN hSrc1, HRGN hSrc2, int nMode);
KX_API int PtInRegion(HRGN hRgn, int x, int y);
KX_API int GetRgnBox(HRGN hRgn, RECT* pRect);
// Pixels that leave the range of coordinates are lost.
KX_API int OffsetRgn(HRGN hRgn, int x, int y);
KX_API int FillRgn(HDC hDC, HRGN hRgn, HBRUSH hBrush);

// ---- Pens, brushes and shapes

inline constexpr int PS_SOLID = 0;
inline constexpr int PS_NULL = 5;

// A solid pen of `nWidth` pixels (below 1 counts as 1), or with PS_NULL one that draws nothing. Null for
// another style.
KX_API HPEN CreatePen(int nStyle, int nWidth, COLORREF clr);
KX_API HBRUSH CreateSolidBrush(COLORREF clr);
// A rectangle between two corners in any order, outlined with the pen, inside its sides, and filled with the
// brush within that. Nothing for an empty one. With a pen that draws nothing it is a pixel narrower and
// lower, as the platform has it. 0 for a bad surface.
KX_API int Rectangle(HDC hDC, int nLeft, int nTop, int nRight, int nBottom);
// The same with corners that are quarters of an ellipse of that size, of at most 32,767 pixels each way and
// at most the rectangle's. Pixels are in that have their centre within.
KX_API int RoundRect(HDC hDC, int nLeft, int nTop, int nRight, int nBottom, int cxEllipse, int cyEllipse);
// Fill with a brush; 0 for a bad handle.
KX_API int FillRect(HDC hDC, const RECT* pRect, HBRUSH hBrush);

// ---- Text

inline constexpr int TRANSPARENT = 1;
inline constexpr int OPAQUE = 2;
inline constexpr int FW_NORMAL = 400;
inline constexpr int FW_BOLD = 700;

struct LOGFONTA
{
    LONG lfHeight; // above 0: the cell's height, below: the letters'; 0: the default
    LONG lfWidth;
    LONG lfEscapement;
    LONG lfOrientation;
    LONG lfWeight;
    BYTE lfItalic;
    BYTE lfUnderline;
    BYTE lfStrikeOut;
    BYTE lfCharSet;
    BYTE lfOutPrecision;
    BYTE lfClipPrecision;
    BYTE lfQuality;
    BYTE lfPitchAndFamily;
    char lfFaceName[32]; // in the process's code page
};

// A font by face name, height, weight, italic, underline and strike-out; the rest is ignored. The nearest
// face that the system has serves an unknown name; where it has none, or without the library's module for
// letters, a text takes room by the height alone and nothing is drawn of it.
KX_API HFONT CreateFontIndirectA(const LOGFONTA* pFont);

// Each gives the old value, CLR_INVALID or 0 for a bad surface. At first: black on white, OPAQUE.
KX_API COLORREF SetTextColor(HDC hDC, COLORREF clr);
KX_API COLORREF GetTextColor(HDC hDC);
KX_API COLORREF SetBkColor(HDC hDC, COLORREF clr);
KX_API COLORREF GetBkColor(HDC hDC);
KX_API int SetBkMode(HDC hDC, int nMode);
KX_API int GetBkMode(HDC hDC);

// How DrawTextA places a text.
inline constexpr UINT DT_LEFT = 0x0;
inline constexpr UINT DT_TOP = 0x0;
inline constexpr UINT DT_CENTER = 0x1;
inline constexpr UINT DT_RIGHT = 0x2;
inline constexpr UINT DT_VCENTER = 0x4;
inline constexpr UINT DT_BOTTOM = 0x8;
inline constexpr UINT DT_WORDBREAK = 0x10;
inline constexpr UINT DT_SINGLELINE = 0x20;
inline constexpr UINT DT_NOCLIP = 0x100;
inline constexpr UINT DT_CALCRECT = 0x400;
inline constexpr UINT DT_NOPREFIX = 0x800;

// Draws a text of `nLength` bytes (-1: up to its NUL) in the process's code page with the surface's font and
// colours, grey anti-aliased. DT_VCENTER and DT_BOTTOM count with DT_SINGLELINE alone; without it CR and LF
// break lines. DT_CALCRECT draws nothing and moves the rectangle's right (and, as the lines need, bottom) to
// the text's advance and height. A single "&" underlines the letter behind it unless DT_NOPREFIX. Drawing is
// clipped to the rectangle unless DT_NOCLIP. The text's height, 0 on failure.
KX_API int DrawTextA(HDC hDC, const char* pszText, int nLength, RECT* pRect, UINT nFormat);
KX_API int TextOutA(HDC hDC, int x, int y, const char* pszText, int nLength);
KX_API int GetTextExtentPoint32A(HDC hDC, const char* pszText, int nLength, SIZE* pSize);
