#pragma once

#include <KXCommonClass.h>

namespace client {

// A white sheet on which a scene shows what it draws.
class Sheet
{
public:
    Sheet(int cx, int cy);
    CDC& DC() { return m_surface.GetDC(); }

    void Label(int x, int y, const char* pszText);
    // Squares in two shades, so that one sees what a picture lets through.
    void Chequer(const CRect& rect);
    // Writes the sheet as a PNG file beside the executable and says where.
    bool Write(const char* pszName);

private:
    CKXMemoryDC m_surface;
};

} // namespace client
