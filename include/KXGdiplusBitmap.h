#pragma once

#include "KXExport.h"
#include "platform/Dc.h"
#include "platform/GdiPlus.h"

#include <memory>

// One picture that is drawn at its natural size, into a rectangle, fitted with a border, or paved, and saved
// under an encoder named by its MIME type.
//
// The client has called Gdiplus::GdiplusStartup. What can't be read as a picture still makes the object
// valid: its size is then 0 by 0 and nothing is painted. Sizes are in pixels. An object is used by one thread
// at a time, and so are those that share a picture.
class KX_API CKXGdiplusBitmap
{
public:
    CKXGdiplusBitmap() = default;
    // A copy of a bitmap's pixels, all opaque, with its size. The bitmap stays the caller's.
    CKXGdiplusBitmap(HBITMAP hBitmap);

    // Copies a picture made from raw pixels with its pixels, whose high bytes count as opacity in the copy.
    // Any other picture is shared, and ends with the last object that has it; but only an object made from
    // raw pixels takes it: between two objects without such pixels nothing is copied, and a copy constructed
    // from one is empty. Empty, too, for a lack of memory.
    CKXGdiplusBitmap(const CKXGdiplusBitmap& bitmap);
    CKXGdiplusBitmap& operator=(const CKXGdiplusBitmap& bitmap);
    ~CKXGdiplusBitmap();

    // Empties the object; the size stays what it was.
    void Free();

    // 1 if there is a picture, also one that couldn't be read; else 0.
    int IsValid() const { return m_pBitmap != nullptr; }
    // The natural size, that of the last load.
    CSize GetImageSize() const;
    void GetImageSize(unsigned long& nWidth, unsigned long& nHeight) const;

    // Load a picture file by its path in the process's code page, in place of the old picture, which is gone
    // in any case. The file may be replaced afterwards.
    void Load(const char* pszPath);
    // Takes a copy of `nWidth` times `nHeight` pixels, 0x00RRGGBB, the top row first. Empties the object and
    // keeps its size if `pPixels` is null, memory lacks, or the picture would be larger than
    // Gdiplus::MAX_IMAGE_SIDE or MAX_IMAGE_PIXELS.
    void Load(unsigned long nWidth, unsigned long nHeight, DWORD* const pPixels);
    // Takes a copy of a picture file of `nSize` bytes in memory, with its size. 1 even if the bytes are no
    // picture; 0, with the old picture kept, for null `pData` or a lack of memory.
    int Load(BYTE* pData, unsigned long nSize);

    // Draw at the natural size; into a block, whose right and bottom are its last pixels in the four numbers
    // and lie past them in a rectangle. A block turned around mirrors the picture. 1, whatever came of the
    // drawing; 0 without a picture or for a null `pDC` or `pGraphics`.
    int Render(CDC* pDC, int x, int y) const;
    int Render(CDC* pDC, int nLeft, int nTop, int nRight, int nBottom) const;
    int Render(Gdiplus::Graphics* pGraphics, int nLeft, int nTop, int nRight, int nBottom) const;
    int Render(CDC* pDC, const CRect& rc) const;

    // The place of the picture within `rc`: in the middle, reduced in its shape to fit, never enlarged.
    CRect GetFitRenderRect(const CRect& rc) const;
    // Draws there, with an outline in the device's pen. NULL_BRUSH stays selected. Results as of Render.
    int FitRender(CDC* pDC, const CRect& rc) const;
    // Repeats the picture at its own size over `rc`; the last ones reach past its right and bottom. Nothing
    // is drawn without a picture.
    void PaveRender(CDC* pDC, const CRect& rc) const;

    // Save the picture, or a thumbnail of exactly that size as JPEG; an existing file is replaced whole or
    // stays. 1 on success. Without a picture a message box says to load one first.
    int SaveToFile(const CString& strPath, CString strMimeType) const;
    int ThumbnailImage(const CString& strPath, int nWidth, int nHeight) const;
    // Gives a thumbnail as a BMP file of `nSize` bytes in a new array, which the caller ends with array
    // delete. 1, with no bytes where the picture couldn't be read or the size is no picture's; 0, with the
    // results as they were, without a picture, which the message box says, or for a lack of memory.
    int ThumbnailImage(BYTE** ppData, int& nSize, int nWidth, int nHeight) const;

    // The index of the encoder of exactly that MIME type in UTF-16, ending in 0, whose class goes to
    // `*pClsid`; -1 without one.
    static int GetEncoderClsid(const unsigned short* pszMimeType, GUID* pClsid);

private:
    void Hold(std::shared_ptr<Gdiplus::Bitmap> pBitmap);
    void HoldPixels(DWORD nWidth, DWORD nHeight, const void* pPixels, Gdiplus::PixelFormat format);
    int DrawInto(Gdiplus::Graphics& graphics, const CRect& rc) const;
    int DrawInto(const CDC* pDC, const CRect& rc) const;

    std::unique_ptr<BYTE[]> m_pBuffer; // the picture rests on it, so it ends after it
    std::shared_ptr<Gdiplus::Bitmap> m_pBitmap;
    DWORD m_nWidth = 0;
    DWORD m_nHeight = 0;
};
