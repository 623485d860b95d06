#include "PngFile.h"

#include <png.h>
#include <vector>

bool client::WritePng(HDC hDC, CSize size, const std::string& systemPath)
{
    std::vector<png_byte> rgb;
    rgb.reserve(static_cast<std::size_t>(size.cx) * static_cast<std::size_t>(size.cy) * 3);
    for (int y = 0; y < size.cy; ++y)
        for (int x = 0; x < size.cx; ++x) {
            const COLORREF clr = GetPixel(hDC, x, y);
            rgb.insert(rgb.end(), {GetRValue(clr), GetGValue(clr), GetBValue(clr)});
        }
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(size.cx);
    image.height = static_cast<png_uint_32>(size.cy);
    image.format = PNG_FORMAT_RGB;
    return png_image_write_to_file(&image, systemPath.c_str(), 0, rgb.data(), 0, nullptr) != 0;
}
