#pragma once

#include "tests/support/Picture.h"
#include "tests/support/TempDir.h"

namespace test {

// Puts a file with this content on the disk and loads it.
inline HANDLE LoadFile(std::string_view content, UINT nType, int cx = 0, int cy = 0)
{
    static const TempDir dir;
    dir.Write("image", content);
    const HANDLE loaded = LoadImageA(nullptr, dir.Win("image"), nType, cx, cy, LR_LOADFROMFILE);
    std::filesystem::remove(dir.Path("image"));
    return loaded;
}

inline HBITMAP Load(const Bmp& bmp)
{
    return static_cast<HBITMAP>(LoadFile(bmp.File(), IMAGE_BITMAP));
}

// A bitmap, ended with this.
class LoadedBitmap
{
public:
    explicit LoadedBitmap(HANDLE handle) : m_bitmap(static_cast<HBITMAP>(handle), DeleteObject) {}
    explicit LoadedBitmap(std::string_view file) : LoadedBitmap(LoadFile(file, IMAGE_BITMAP)) {}

    BITMAP Record() const
    {
        BITMAP record{};
        GetObjectA(m_bitmap.get(), sizeof record, &record);
        return record;
    }
    // The result of GetDIBits from the top row on: the first colours of the palette, if any are asked for,
    // then the rows.
    std::string Dib(WORD depth, DWORD nColors = 0) const
    {
        const BITMAP record = Record();
        struct
        {
            BITMAPINFOHEADER header;
            RGBQUAD colors[256];
        } info{{40, record.bmWidth, -record.bmHeight, 1, depth, BI_RGB, 0, 0, 0, nColors, 0}, {}};
        const auto nRows = static_cast<UINT>(record.bmHeight);
        std::string rows(nRows * static_cast<std::size_t>((record.bmWidth * depth + 31) / 32 * 4), '#');
        auto* const pInfo = reinterpret_cast<BITMAPINFO*>(&info);
        EXPECT_EQ(GetDIBits(Paper(1, 1), m_bitmap.get(), 0, nRows, rows.data(), pInfo, DIB_RGB_COLORS),
                  record.bmHeight);
        return std::string(reinterpret_cast<const char*>(info.colors), 4 * nColors) + rows;
    }
    // All pixels from the top left, with their high bytes.
    std::vector<DWORD> Pixels() const
    {
        const std::string rows = Dib(32);
        std::vector<DWORD> pixels(rows.size() / 4);
        std::memcpy(pixels.data(), rows.data(), rows.size());
        return pixels;
    }
    // The pixels as letters, `?` for a colour that has none; `null` without a bitmap.
    Picture Letters() const
    {
        if (!m_bitmap) return {"null"};
        Picture picture(static_cast<std::size_t>(Record().bmHeight));
        const std::vector<DWORD> pixels = Pixels();
        for (std::size_t i = 0; i < pixels.size(); ++i)
            picture[i * picture.size() / pixels.size()] += LetterOfPixel(pixels[i]);
        return picture;
    }

private:
    std::unique_ptr<std::remove_pointer_t<HBITMAP>, decltype(&DeleteObject)> m_bitmap;
};

} // namespace test
