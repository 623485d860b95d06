#pragma once

#include "tests/support/BmpBuilder.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace test {

// A frame of letters; a dot is its transparent colour.
struct GifFrame
{
    Picture picture;
    std::uint32_t left = 0;
    std::uint32_t top = 0;
    std::uint32_t disposal = 0;
    std::uint32_t delay = 0;
    bool interlaced = false;
    std::string_view palette = {}; // letters of a palette of its own
};

inline std::string GifPalette(std::string_view letters)
{
    std::string bytes;
    for (std::size_t i = 0; i < 8; ++i) {
        const std::string pixel = Le(PixelOf(letters[std::min(i, letters.size() - 1)]), 3);
        bytes.append(pixel.rbegin(), pixel.rend());
    }
    return bytes;
}

// Rows of letters in the order in which they are stored.
inline std::string InFileOrder(const GifFrame& frame)
{
    std::string all;
    const std::size_t passes[][2] = {{0, 8}, {4, 8}, {2, 4}, {1, 2}};
    if (frame.interlaced)
        for (const auto& [first, step] : passes)
            for (std::size_t y = first; y < frame.picture.size(); y += step)
                all += frame.picture[y];
    else
        for (const std::string& row : frame.picture)
            all += row;
    return all;
}

// Codes of 8 bits, each a byte: the table is cleared before they grow. 7 is the transparent index.
inline std::string GifPixels(const GifFrame& frame, std::string_view palette)
{
    std::string codes, blocks = "\x07";
    for (const char letter : InFileOrder(frame)) {
        if (codes.size() % 101 == 0) codes += '\x80';
        codes += static_cast<char>(letter == '.' ? 7 : palette.find(letter));
    }
    codes += '\x81';
    for (std::size_t at = 0; at < codes.size(); at += 255) {
        const std::string block = codes.substr(at, 255);
        blocks += static_cast<char>(block.size()) + block;
    }
    return blocks + '\0';
}

inline std::string GifFrameBytes(const GifFrame& frame)
{
    const std::string_view palette = frame.palette.empty() ? kLetters : frame.palette;
    const bool bOwn = !frame.palette.empty();
    const std::uint32_t flags = (bOwn ? 0x82u : 0u) | (frame.interlaced ? 0x40u : 0u);
    const bool bTransparent = InFileOrder(frame).find('.') != std::string::npos;
    return "!\xF9\x04" + Le(frame.disposal << 2 | (bTransparent ? 1u : 0u), 1) + Le(frame.delay, 2) +
           Le(7, 1) + '\0' + ',' + Le(frame.left, 2) + Le(frame.top, 2) +
           Le(frame.picture.front().size(), 2) + Le(frame.picture.size(), 2) + Le(flags, 1) +
           (bOwn ? GifPalette(palette) : "") + GifPixels(frame, palette);
}

inline std::string GifHead(std::uint32_t width, std::uint32_t height)
{
    return "GIF89a" + Le(width, 2) + Le(height, 2) + "\x82" + std::string(2, '\0') + GifPalette(kLetters);
}

inline std::string GifLoops(std::uint32_t loops)
{
    return "!\xFF\x0BNETSCAPE2.0\x03\x01" + Le(loops, 2) + '\0';
}

inline std::string Gif(std::uint32_t width, std::uint32_t height, const std::vector<GifFrame>& frames)
{
    std::string file = GifHead(width, height);
    for (const GifFrame& frame : frames)
        file += GifFrameBytes(frame);
    return file + ';';
}

} // namespace test
