#pragma once

#include "tests/support/Standard.h"

#include <zlib.h>

// Builds image files from pictures whose pixels are letters.
namespace test {

// Rows from the top. A letter's place in kLetters has the bits red, green, blue.
using Picture = std::vector<std::string>;
inline constexpr std::string_view kLetters = "KBGCRMYW";

inline Picture Plain(int cx, int cy, char letter = 'R')
{
    return Picture(static_cast<std::size_t>(cy), std::string(static_cast<std::size_t>(cx), letter));
}

// 0x00RRGGBB.
inline std::uint32_t PixelOf(char letter)
{
    const auto bits = static_cast<std::uint32_t>(kLetters.find(letter));
    return (bits & 4 ? 0xFF0000u : 0) | (bits & 2 ? 0xFF00u : 0) | (bits & 1 ? 0xFFu : 0);
}

// The letter of a pixel whatever its high byte, `?` for one that has none.
inline char LetterOfPixel(std::uint32_t pixel)
{
    const char letter = kLetters[(pixel >> 21 & 4) | (pixel >> 14 & 2) | (pixel >> 7 & 1)];
    return PixelOf(letter) == (pixel & 0xFFFFFF) ? letter : '?';
}

inline std::string Le(std::uint64_t value, std::size_t width)
{
    std::string bytes;
    for (std::size_t i = 0; i < width; ++i)
        bytes += static_cast<char>(value >> 8 * i);
    return bytes;
}

inline std::string Be(std::uint32_t value)
{
    const std::string bytes = Le(value, 4);
    return {bytes.rbegin(), bytes.rend()};
}

// A BMP to be written. Any field may be made to lie.
struct Bmp
{
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::uint32_t depth = 32;
    std::uint32_t compression = 0;
    std::uint32_t colorsUsed = 0;
    std::uint32_t headerSize = 40;
    std::uint32_t planes = 1;
    std::string masks;   // four bytes each, where a header of 40 bytes ends
    std::string palette; // four bytes an entry
    std::string pixels;  // as they lie in the file
    std::optional<std::uint32_t> offset;

    std::string Header() const
    {
        if (headerSize == 12)
            return Le(12, 4) + Le(static_cast<std::uint16_t>(width), 2) +
                   Le(static_cast<std::uint16_t>(height), 2) + Le(planes, 2) + Le(depth, 2);
        std::string header = Le(headerSize, 4) + Le(static_cast<std::uint32_t>(width), 4) +
                             Le(static_cast<std::uint32_t>(height), 4) + Le(planes, 2) + Le(depth, 2) +
                             Le(compression, 4) + std::string(12, '\0') + Le(colorsUsed, 4) + Le(0, 4) +
                             masks;
        if (headerSize <= 124) header.resize(std::max<std::size_t>(header.size(), headerSize));
        return header;
    }
    std::string Palette() const
    {
        if (headerSize != 12) return palette;
        std::string triples;
        for (std::size_t i = 0; i < palette.size(); ++i)
            if (i % 4 != 3) triples += palette[i];
        return triples;
    }
    std::string Dib() const { return Header() + Palette() + pixels; }
    std::string File() const
    {
        const std::size_t at = 14 + Header().size() + Palette().size();
        return "BM" + Le(at + pixels.size(), 4) + Le(0, 4) + Le(offset.value_or(at), 4) + Dib();
    }
};

// The value that stands for a letter in a file of this depth: its place in `letters`, or its colour.
inline std::uint32_t ValueOf(char letter, std::uint32_t depth, std::string_view letters)
{
    if (depth <= 8) return static_cast<std::uint32_t>(letters.find(letter));
    const std::uint32_t pixel = PixelOf(letter);
    return depth > 16 ? pixel : (pixel >> 9 & 0x7C00) | (pixel >> 6 & 0x3E0) | (pixel >> 3 & 0x1F);
}

// A row of letters at a depth, the leftmost in the highest bits of a byte, padded to 32 bits.
inline std::string PackRow(std::string_view letters, std::uint32_t depth, std::string_view palette)
{
    std::string row((letters.size() * depth + 31) / 32 * 4, '\0');
    for (std::size_t x = 0; x < letters.size(); ++x) {
        const std::uint32_t value = ValueOf(letters[x], depth, palette);
        const std::size_t bit = x * depth;
        if (depth < 8)
            row[bit / 8] |= static_cast<char>(value << (8 - depth - bit % 8));
        else
            row.replace(bit / 8, depth / 8, Le(value, depth / 8));
    }
    return row;
}

// A picture as a BMP whose palette, if its depth has one, holds `palette`.
inline Bmp ToBmp(const Picture& picture, std::uint32_t depth, bool topDown = false,
                 std::string_view palette = kLetters)
{
    Bmp bmp;
    bmp.width = static_cast<std::int32_t>(picture.front().size());
    bmp.height = static_cast<std::int32_t>(picture.size()) * (topDown ? -1 : 1);
    bmp.depth = depth;
    if (depth <= 8) {
        bmp.colorsUsed = static_cast<std::uint32_t>(palette.size());
        for (const char letter : palette)
            bmp.palette += Le(PixelOf(letter), 4);
    }
    for (const std::string& row : picture) {
        const std::string packed = PackRow(row, depth, palette);
        bmp.pixels = topDown ? bmp.pixels + packed : packed + bmp.pixels;
    }
    return bmp;
}

// An icon's BMP, from a picture in which a dot is transparent.
inline std::string IconBmp(Picture picture, std::uint32_t depth, std::string_view palette = kLetters)
{
    Picture mask = picture;
    for (std::size_t y = 0; y < picture.size(); ++y) {
        std::replace(picture[y].begin(), picture[y].end(), '.', palette[0]);
        for (char& letter : mask[y])
            letter = letter == '.' ? 'W' : 'K';
    }
    Bmp bmp = ToBmp(picture, depth, false, palette);
    bmp.height *= 2;
    bmp.pixels += ToBmp(mask, 1, false, "KW").pixels;
    return bmp.Dib();
}

// An ICO file of these images. The directory says of each that it is 1 by 1 at depth 1, which isn't to be
// believed.
inline std::string Ico(const std::vector<std::string>& images)
{
    std::string file = Le(0, 2) + Le(1, 2) + Le(images.size(), 2), data;
    for (const std::string& image : images) {
        file += Le(0x00000101, 4) + Le(0x00010001, 4) + Le(image.size(), 4) +
                Le(6 + 16 * images.size() + data.size(), 4);
        data += image;
    }
    return file + data;
}

inline std::string PngChunk(std::string_view type, std::string_view content)
{
    const std::string body = std::string(type) + std::string(content);
    const uLong crc = crc32_z(0, reinterpret_cast<const Bytef*>(body.data()), body.size());
    return Be(static_cast<std::uint32_t>(content.size())) + body + Be(static_cast<std::uint32_t>(crc));
}

// A PNG whose rows, filter bytes included, are given as they are stored.
inline std::string Png(std::uint32_t width, std::uint32_t height, int bits, int colorType,
                       std::string_view rows, std::string_view chunks = {}, int interlace = 0)
{
    const uLong adler = adler32_z(1, reinterpret_cast<const Bytef*>(rows.data()), rows.size());
    const std::string header = Be(width) + Be(height) + static_cast<char>(bits) +
                               static_cast<char>(colorType) + std::string(2, '\0') +
                               static_cast<char>(interlace);
    const std::string stored = "\x78\x01\x01" + Le(rows.size(), 2) + Le(~rows.size(), 2) + std::string(rows) +
                               Be(static_cast<std::uint32_t>(adler));
    return "\x89PNG\r\n\x1a\n" + PngChunk("IHDR", header) + std::string(chunks) + PngChunk("IDAT", stored) +
           PngChunk("IEND", "");
}

} // namespace test
