#include "KXBitmapHandle.h"

#include "platform/Exception.h"
#include "platform/Module.h"
#include "platform/Window.h"

#include <new>
#include <utility>

CKXBitmapHandle::Surface::~Surface()
{
    DeleteBitmap();
    DeleteBitmapDC();
}

void CKXBitmapHandle::Surface::CreateBitmapDC()
{
    if (m_hDC) return;
    const HWND hDesktop = GetDesktopWindow();
    const HDC hDesktopDC = GetDC(hDesktop);
    m_hDC = CreateCompatibleDC(hDesktopDC);
    ReleaseDC(hDesktop, hDesktopDC);
}

void CKXBitmapHandle::Surface::DeleteBitmapDC()
{
    m_hOldBitmap = nullptr; // ends with the surface
    if (HDC hDC = std::exchange(m_hDC, nullptr)) DeleteDC(hDC);
}

void CKXBitmapHandle::Surface::DeselectBitmap()
{
    if (HGDIOBJ hOld = std::exchange(m_hOldBitmap, nullptr)) SelectObject(m_hDC, hOld);
}

void CKXBitmapHandle::Surface::DeleteBitmap()
{
    DeselectBitmap();
    if (HBITMAP hBitmap = std::exchange(m_hBitmap, nullptr)) DeleteObject(hBitmap);
}

CKXBitmapHandle::CKXBitmapHandle()
try : m_pSurface(std::make_shared<Surface>()) {
    m_pSurface->CreateBitmapDC();
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

void CKXBitmapHandle::CreateBitmapDC()
{
    m_pSurface->CreateBitmapDC();
}

void CKXBitmapHandle::DeleteBitmapDC()
{
    m_pSurface->DeleteBitmapDC();
}

// The old image is gone before a new one is tried; from copies that share it this object parts instead.
void CKXBitmapHandle::DeleteBitmap()
try {
    if (m_pSurface.use_count() > 1) {
        m_pSurface = std::make_shared<Surface>();
        m_pSurface->CreateBitmapDC();
    }
    m_pSurface->DeleteBitmap();
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

int CKXBitmapHandle::Hold(HBITMAP hBitmap)
{
    m_pSurface->m_hBitmap = hBitmap;
    if (!hBitmap) return 0;
    m_pSurface->m_hOldBitmap = SelectObject(m_pSurface->m_hDC, hBitmap);
    GetObjectA(hBitmap, sizeof(m_bitmap), &m_bitmap);
    return 1;
}

int CKXBitmapHandle::Load(const CString& strPath)
{
    DeleteBitmap();
    const HINSTANCE hInstance = AfxGetModuleState()->m_hCurrentInstanceHandle;
    return Hold(static_cast<HBITMAP>(
        LoadImageA(hInstance, strPath, IMAGE_BITMAP, 0, 0, LR_LOADFROMFILE | LR_CREATEDIBSECTION)));
}

int CKXBitmapHandle::Load(unsigned int nID)
{
    DeleteBitmap();
    const char* pszName = MAKEINTRESOURCEA(static_cast<WORD>(nID));
    return Hold(::LoadBitmapA(AfxFindResourceHandle(pszName, RT_BITMAP), pszName));
}

void CKXBitmapHandle::Attach(HBITMAP hBitmap)
{
    if (hBitmap != Bitmap()) {
        DeleteBitmap();
        Hold(hBitmap);
    }
    m_bAttached = 1;
}

HBITMAP CKXBitmapHandle::Detach()
{
    if (!std::exchange(m_bAttached, 0)) return nullptr;
    m_pSurface->DeselectBitmap();
    return std::exchange(m_pSurface->m_hBitmap, nullptr);
}
