#pragma once

#include "KXExport.h"
#include "platform/Dc.h"

#include <memory>

// The memory surface and the bitmap in it that CKXBitmap and CKXFrameBitmap hold. Copies share them: what is
// held is released once, with the last object, and a load or attach in one leaves the others what they had. A
// move is a copy, so that no object is ever without. An object and its copies are for one thread at a time.
class KX_API CKXBitmapHandle
{
public:
    // A memory surface compatible with the desktop, without a bitmap.
    CKXBitmapHandle();
    CKXBitmapHandle(const CKXBitmapHandle&) = default;
    CKXBitmapHandle& operator=(const CKXBitmapHandle&) = default;
    ~CKXBitmapHandle() = default;

    // Releases the old bitmap, then loads a file, or a resource of the module that has it; 1 on success, 0
    // with nothing held on failure.
    int Load(const CString& strPath);
    int Load(unsigned int nID);
    // Releases the old bitmap and takes one over.
    void Attach(HBITMAP hBitmap);
    // Takes an attached bitmap out of the surface: from then on it is the caller's, and nothing is held.
    // Null, with nothing changed, if the last Attach was answered by a Detach or there was none.
    HBITMAP Detach();

    // The steps that an object's life is made of, taken singly. Make the surface, unless there is one.
    void CreateBitmapDC();
    // Ends the surface, for copies too; a bitmap that was in it stays held, and isn't drawn from.
    void DeleteBitmapDC();
    // Takes the bitmap out of the surface and ends it.
    void DeleteBitmap();

    // There is nothing to draw while this is null.
    HBITMAP& Bitmap() { return m_pSurface->m_hBitmap; }
    HBITMAP Bitmap() const { return m_pSurface->m_hBitmap; }
    HDC& DC() { return m_pSurface->m_hDC; }
    HDC DC() const { return m_pSurface->m_hDC; }
    // The record of the last bitmap held; all zero before the first.
    const BITMAP& Record() const { return m_bitmap; }

private:
    // Handles that are released once: first the bitmap leaves the surface, then both are ended.
    struct Surface
    {
        Surface() = default;
        Surface(const Surface&) = delete;
        Surface& operator=(const Surface&) = delete;
        // The surface that is held, and the steps of CKXBitmapHandle on it.
        ~Surface();
        void CreateBitmapDC();
        void DeleteBitmapDC();
        void DeselectBitmap();
        void DeleteBitmap();

        // The surface, what is in it, and what was in it before.
        HDC m_hDC = nullptr;
        HBITMAP m_hBitmap = nullptr;
        HGDIOBJ m_hOldBitmap = nullptr;
    };

    int Hold(HBITMAP hBitmap);

    std::shared_ptr<Surface> m_pSurface;
    BITMAP m_bitmap{};
    int m_bAttached = 0;
};
