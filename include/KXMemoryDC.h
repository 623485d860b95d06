#pragma once

#include "KXExport.h"
#include "platform/Dc.h"

// A memory surface with a bitmap of a given size in it, compatible with the desktop. It can be made,
// destroyed and made again. Without one, drawing on it does nothing. For one thread at a time.
class KX_API CKXMemoryDC
{
public:
    CKXMemoryDC() = default;
    CKXMemoryDC(const CKXMemoryDC&) = delete;
    CKXMemoryDC& operator=(const CKXMemoryDC&) = delete;
    // Releases surface and bitmap.
    virtual ~CKXMemoryDC();

    // Releases what is held and makes a surface of `cx` by `cy` pixels. Where there can't be such a bitmap
    // there is no surface either: GetHBitmap and GetHDC give null.
    void Create(int cx, int cy);
    // Releases surface and bitmap, if any. The size stays.
    void Destroy();

    // Surface and bitmap, which stay this object's.
    CDC& GetDC() { return m_dc; }
    CBitmap& GetBitmap() { return m_bitmap; }
    // The size last given to Create; 0 by 0 before that.
    const CSize& GetSize() const { return m_size; }
    // The handles, which stay this object's; null without a surface or bitmap.
    HDC GetHDC() const { return m_dc.GetSafeHdc(); }
    HBITMAP GetHBitmap() const { return m_bitmap; }

protected:
    // The surface, its bitmap, and what was selected before that.
    CDC m_dc;
    CBitmap m_bitmap;
    CGdiObject* m_pOldBitmap = nullptr; // the thread's wrapper, which may end before this: never looked into
    CSize m_size;

private:
    HGDIOBJ m_hOldBitmap = nullptr; // what goes back
};
