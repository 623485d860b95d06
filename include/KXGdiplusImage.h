#pragma once

#include "KXExport.h"
#include "platform/Dc.h"
#include "platform/GdiPlus.h"
#include "platform/Stream.h"

#include <memory>

// One picture that is shown, rotated and encoded anew, from a resource, a stream, a memory block or a file.
//
// The client has called Gdiplus::GdiplusStartup. What can't be read as a picture still makes the object
// valid: its size is then 0 by 0 and nothing is painted. Without a picture, or for a null `pDC`, nothing is
// drawn. Sizes are in pixels. Copies share the picture and its block, which end with the last of them: one
// copy's rotation is seen in all, while what replaces the picture in one leaves the others theirs. An object
// is used by one thread at a time, and so are those that share a picture.
class KX_API CKXGdiplusImage
{
public:
    CKXGdiplusImage() = default;
    CKXGdiplusImage(const CKXGdiplusImage& image) = default;
    CKXGdiplusImage& operator=(const CKXGdiplusImage& image) = default;
    // Ends the picture, unless a copy has it too.
    ~CKXGdiplusImage();

    // Empties the object.
    void Free();

    // 1 if there is a picture, also one that couldn't be read; else 0.
    operator int() const { return IsValid(); }
    // 1 with a picture, which may be one that couldn't be read; else 0.
    int IsValid() const { return m_pImage != nullptr; }
    // The picture, which stays the object's; null without one.
    Gdiplus::Image* GetImage() { return m_pImage.get(); }
    // The natural size now; 0 by 0 without a picture.
    CSize GetImageSize() const;

    // Loads a resource of the type "IMAGE" from the module that is current for resources, by its 16-bit
    // number. 1 on success; 0 with the old picture kept when there is no such resource or no memory for a
    // copy of it, and 0 with one that can't be read, or none, in its place.
    int Load(unsigned int nID);
    // Loads a file by its path in the process's code page. 0, with the old picture kept, for what can't be
    // opened or read, is longer than Gdiplus::MAX_IMAGE_BYTES, or for a lack of memory; 1 else, even if the
    // file is no picture. It is closed again when the call returns.
    int Load(const char* pszPath);
    // Takes a copy of a picture file of `nSize` bytes in memory. 1 even if the bytes are no picture; 0, with
    // the old picture kept, for null `pData` or a lack of memory.
    int Load(BYTE* pData, unsigned long nSize);
    // Loads from a stream, which is referred to for as long as the picture lives. The old picture is gone in
    // any case. 0 if the stream's bytes are no picture.
    int Load(IStream* pStream);

    // Turns the picture in place.
    void Rotate(Gdiplus::RotateFlipType nType);

    // Draw at the natural size, or into a rectangle: all four sides 0 stand for the natural size at 0, 0. A
    // rectangle turned around mirrors the picture.
    void Render(Gdiplus::Graphics& graphics, const CPoint& pt) const;
    void Render(CDC* pDC, CRect rc) const;
    void Render(Gdiplus::Graphics& graphics, CRect rc) const;
    // Repeat the picture at its own size over `rc`; the last ones reach past its right and bottom.
    void PaveRender(CDC* pDC, const CRect& rc) const;
    void PaveRender(Gdiplus::Graphics& graphics, const CRect& rc) const;
    // Makes of `rc` where the picture lies within it: in the middle, reduced in its shape to fit, never
    // enlarged. Without a picture `rc` stays.
    void GetFixRenderRect(CRect& rc);
    // Draw there, as Render does.
    void FixRender(CDC* pDC, const CRect& rc) const;
    void FixRender(Gdiplus::Graphics& graphics, const CRect& rc) const;

    // Gives the picture as a JPEG file of `nSize` bytes in a new array, which the caller ends with array
    // delete. 1, with no bytes where the picture couldn't be read; 0, with the results as they were, without
    // a picture or for a lack of memory.
    int GetImageData(BYTE** ppData, int& nSize);
    // Saves the picture in shades of grey as JPEG, whatever the path's extension; 1 on success. An existing
    // file is replaced whole or stays, here and below.
    int SaveGrayPic(const CString& strPath);
    // Saves a thumbnail of exactly that size under the encoder of that MIME type; 1 on success. Without a
    // picture a message box says to load one first.
    int SaveThumbnailImage(const CString& strPath, int nWidth, int nHeight, CString strMimeType) const;
    // Replaces the picture by one reduced in its shape to fit, and leaves one that fits. 1 on success; 0,
    // with the picture kept, where a side would have no pixel or memory lacks.
    int ToThumbnailImage(int nMaxWidth, int nMaxHeight);

    // Does the same as CKXGdiplusBitmap::GetEncoderClsid.
    static int GetEncoderClsid(const unsigned short* pszMimeType, GUID* pClsid);

private:
    CRect FixedIn(const CRect& rc) const;

    int m_bUseEmbeddedColorManagement = 0;
    std::shared_ptr<Gdiplus::Image> m_pImage;
    std::shared_ptr<void> m_hGlobal; // the picture reads from it, so Free lets go of the picture first
};
