#pragma once

#include "tests/support/BmpBuilder.h"
#include "tests/support/Test.h"

#include <bit>
#include <bitset>

// Builds GIF, JPEG and TIFF files, whose fields may be made to lie.
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
    for (std::size_t i = 0; i < 8; ++i)
        bytes += Be(PixelOf(letters[std::min(i, letters.size() - 1)])).substr(1);
    return bytes;
}

// Rows of letters in the order in which they are stored.
inline std::string InFileOrder(const GifFrame& frame)
{
    std::string all;
    using Passes = std::vector<std::array<std::size_t, 2>>;
    const Passes passes = frame.interlaced ? Passes{{0, 8}, {4, 8}, {2, 4}, {1, 2}} : Passes{{0, 1}};
    for (const auto& [first, step] : passes)
        for (std::size_t y = first; y < frame.picture.size(); y += step)
            all += frame.picture[y];
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

inline std::string Gif(std::uint32_t width, std::uint32_t height, const std::vector<GifFrame>& frames)
{
    std::string file = GifHead(width, height);
    for (const GifFrame& frame : frames)
        file += GifFrameBytes(frame);
    return file + ';';
}

// A JPEG of 8 by 8 blocks of one colour each, side by side; a colour is one value for each component.
struct Jpeg
{
    std::vector<std::vector<int>> blocks;
    bool progressive = false;
    int adobe = -1;         // the transform of Adobe's mark, if there is one
    std::string extra = {}; // segments before the frame

    static std::string Be16(std::size_t n) { return {static_cast<char>(n >> 8), static_cast<char>(n)}; }
    static std::string Segment(char mark, const std::string& content)
    {
        return std::string("\xFF") + mark + Be16(content.size() + 2) + content;
    }

    // The levels of a block's mean, each of a code of four bits that tells how many bits follow; the other
    // coefficients are left out by a code of one bit.
    std::string Scan() const
    {
        std::string bits;
        std::vector<int> last(blocks[0].size(), 128);
        for (const auto& block : blocks)
            for (std::size_t c = 0; c < block.size(); ++c) {
                const int difference = block[c] - last[c];
                last[c] = block[c];
                const int size =
                    static_cast<int>(std::bit_width(static_cast<unsigned>(std::abs(difference))));
                const int code = difference < 0 ? difference + (1 << size) - 1 : difference;
                bits += Bits(size, 4) + Bits(code, size);
                if (!progressive) bits += '0';
            }
        std::string bytes;
        bits.resize((bits.size() + 7) / 8 * 8, '1');
        for (std::size_t at = 0; at < bits.size(); at += 8) {
            bytes += static_cast<char>(std::stoi(bits.substr(at, 8), nullptr, 2));
            if (bytes.back() == '\xFF') bytes += '\0'; // else it would begin a mark
        }
        return bytes;
    }
    static std::string Bits(int value, int count)
    {
        const std::string bits = std::bitset<16>(static_cast<unsigned>(value)).to_string();
        return bits.substr(bits.size() - static_cast<unsigned>(count));
    }

    std::string File() const
    {
        using namespace std::string_literals;
        const std::size_t components = blocks[0].size();
        std::string file = "\xFF\xD8" + extra;
        if (adobe >= 0) file += Segment('\xEE', "Adobe\0\x64\0\0\0\0"s + static_cast<char>(adobe));
        file += Segment('\xDB', '\0' + std::string(64, '\x08'));
        std::string frame = '\x08' + Be16(8) + Be16(8 * blocks.size()) + static_cast<char>(components);
        std::string scan(1, static_cast<char>(components));
        for (std::size_t c = 0; c < components; ++c) {
            frame += std::string{static_cast<char>(c + 1), '\x11', '\0'};
            scan += std::string{static_cast<char>(c + 1), '\0'};
        }
        file += Segment(progressive ? '\xC2' : '\xC0', frame);
        file += Segment('\xC4', "\0\0\0\0\x09"s + std::string(12, '\0') + "\0\1\2\3\4\5\6\7\x08"s);
        file += Segment('\xC4', "\x10\x01"s + std::string(15, '\0') + '\0');
        file += Segment('\xDA', scan + '\0' + (progressive ? '\0' : '\x3F') + '\0');
        return file + Scan() + "\xFF\xD9";
    }
};

// A page of one strip of pixels as they lie in the file.
struct TiffPage
{
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t bits = 8;
    std::uint32_t samples = 3;
    std::uint32_t photometric = 2; // 0: white is 0, 1: black is 0, 2: RGB
    std::string pixels = {};
    std::map<std::uint32_t, std::uint32_t> tags = {}; // further ones, or in place of the usual
};

// A page of gray, of eight bits each.
inline TiffPage GrayTiff(std::uint32_t width, std::uint32_t height, const std::string& pixels,
                         const std::map<std::uint32_t, std::uint32_t>& tags = {})
{
    return {.width = width, .height = height, .samples = 1, .photometric = 1, .pixels = pixels, .tags = tags};
}

// Each directory lies behind its page's pixels. A BigTIFF has wider numbers in it.
inline std::string Tiff(const std::vector<TiffPage>& pages, bool bBigEndian = false, bool bBigTiff = false)
{
    const std::size_t nWide = bBigTiff ? 8 : 4;
    const auto number = [=](std::uint64_t value, std::size_t width) {
        const std::string bytes = Le(value, width);
        return bBigEndian ? std::string(bytes.rbegin(), bytes.rend()) : bytes;
    };
    std::string file = (bBigEndian ? "MM" : "II") + number(bBigTiff ? 43 : 42, 2);
    if (bBigTiff) file += number(8, 2) + number(0, 2);
    std::size_t linkAt = file.size();
    file += number(0, nWide);
    for (const TiffPage& page : pages) {
        const std::size_t pixelsAt = file.size();
        file += page.pixels + std::string(page.pixels.size() % 2, '\0');
        const std::size_t bitsAt = file.size();
        std::string bits;
        for (std::uint32_t i = 0; i < page.samples; ++i)
            bits += number(page.bits, 2);
        file += bits;
        file.replace(linkAt, nWide, number(file.size(), nWide));

        std::map<std::uint32_t, std::uint32_t> tags = page.tags;
        tags.insert({{256, page.width}, {257, page.height}, {258, bitsAt}, {259, 1}, {273, pixelsAt}});
        tags.insert({{262, page.photometric}, {277, page.samples}, {278, page.height}});
        tags.insert({279, page.pixels.size()});
        file += number(tags.size(), bBigTiff ? 8 : 2);
        for (const auto& [tag, value] : tags) {
            const bool bBits = tag == 258, bLong = tag < 258 || tag == 273 || tag == 278 || tag == 279;
            file += number(tag, 2) + number(bLong ? 4 : 3, 2) + number(bBits ? page.samples : 1, nWide);
            std::string bytes = bBits ? bits : number(value, bLong ? 4 : 2);
            if (bytes.size() > nWide) bytes = number(value, nWide); // their place
            bytes.resize(nWide);
            file += bytes;
        }
        linkAt = file.size();
        file += number(0, nWide);
    }
    return file;
}

} // namespace test
