#pragma once

#include "bench/Surfaces.h"

#include <cairo/cairo.h>
#include <cmath>

namespace bench {

constexpr const char* pszFace = "DejaVu Sans";
constexpr int nFontHeight = 20;

// The sum of a drawing on black, for each channel: where two renderers differ at the edges of their
// letters, it tells whether both have drawn as much.
struct Ink
{
    double red = 0;
    double green = 0;
    double blue = 0;

    void Add(COLORREF color)
    {
        red += color & 0xFF;
        green += color >> 8 & 0xFF;
        blue += color >> 16 & 0xFF;
    }
    bool IsAbout(const Ink& other) const
    {
        const auto isNear = [](double a, double b) { return b > 0 && std::abs(a - b) < 0.15 * b; };
        return isNear(red, other.red) && isNear(green, other.green) && isNear(blue, other.blue);
    }
};

inline Ink InkOf(HDC hDC, Size size)
{
    Ink ink;
    for (int y = 0; y < size.cy; ++y)
        for (int x = 0; x < size.cx; ++x)
            ink.Add(GetPixel(hDC, x, y));
    return ink;
}

// A black picture of cairo's, with the font of the letters and white as the colour.
class CairoPaper
{
public:
    explicit CairoPaper(Size size)
        : m_size(size),
          m_surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, size.cx, size.cy)),
          m_cairo(cairo_create(m_surface))
    {
        cairo_select_font_face(m_cairo, pszFace, CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
        cairo_set_font_size(m_cairo, nFontHeight);
        cairo_set_line_width(m_cairo, 1);
        cairo_set_source_rgb(m_cairo, 1, 1, 1);
    }
    CairoPaper(const CairoPaper&) = delete;
    CairoPaper& operator=(const CairoPaper&) = delete;
    ~CairoPaper()
    {
        cairo_destroy(m_cairo);
        cairo_surface_destroy(m_surface);
    }
    operator cairo_t*() const { return m_cairo; }

    const DWORD* Pixels() const
    {
        cairo_surface_flush(m_surface);
        return reinterpret_cast<DWORD*>(cairo_image_surface_get_data(m_surface));
    }
    bench::Ink Ink() const
    {
        bench::Ink ink;
        for (std::size_t n = 0; n < m_size.Count(); ++n)
            ink.Add(RGB(Pixels()[n] >> 16, Pixels()[n] >> 8, Pixels()[n]));
        return ink;
    }

private:
    Size m_size;
    cairo_surface_t* m_surface;
    cairo_t* m_cairo;
};

} // namespace bench
