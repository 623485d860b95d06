#include "Sheet.h"

#include "PngFile.h"

#include <cstdio>
#include <platform/Host.h>

client::Sheet::Sheet(int cx, int cy)
{
    m_surface.Create(cx, cy);
    DC().FillSolidRect(0, 0, cx, cy, RGB(255, 255, 255));
}

void client::Sheet::Label(int x, int y, const char* pszText)
{
    CFont font;
    font.CreatePointFont(80, "DejaVu Sans");
    CFont* pOld = DC().SelectObject(&font);
    DC().SetBkMode(TRANSPARENT);
    DC().SetTextColor(RGB(70, 70, 70));
    DC().TextOut(x, y, pszText);
    DC().SelectObject(pOld);
}

void client::Sheet::Chequer(const CRect& rect)
{
    for (int y = rect.top; y < rect.bottom; y += 8)
        for (int x = rect.left; x < rect.right; x += 8)
            DC().FillSolidRect(x, y, 8, 8, (x + y) / 8 % 2 ? RGB(225, 225, 225) : RGB(250, 250, 250));
}

bool client::Sheet::Write(const char* pszName)
{
    const CString strPath = CKXFileSystem::GetInstancePtr()->GetAppPath() + pszName;
    const std::string systemPath = KXHost::ToSystemPath(strPath);
    if (!WritePng(m_surface.GetHDC(), m_surface.GetSize(), systemPath)) return false;
    std::printf("   contact sheet: %s\n", systemPath.c_str());
    return true;
}
