#pragma once

#include "tests/support/BmpBuilder.h"
#include "tests/support/Test.h"

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
                int size = 0;
                while (std::abs(difference) >> size != 0)
                    ++size;
                Append(bits, size, 4);
                Append(bits, difference < 0 ? difference + (1 << size) - 1 : difference, size);
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
    static void Append(std::string& bits, int value, int count)
    {
        while (count-- > 0)
            bits += value >> count & 1 ? '1' : '0';
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
        const std::size_t pixelsAt = file.size(), bitsAt = pixelsAt + (page.pixels.size() + 1) / 2 * 2;
        file += page.pixels;
        file.resize(bitsAt);
        for (std::uint32_t i = 0; i < page.samples; ++i)
            file += number(page.bits, 2);

        std::map<std::uint32_t, std::uint32_t> tags = page.tags;
        tags.insert({{256, page.width},
                     {257, page.height},
                     {259, 1},
                     {262, page.photometric},
                     {273, pixelsAt},
                     {277, page.samples},
                     {278, page.height},
                     {279, page.pixels.size()}});
        tags[258] = static_cast<std::uint32_t>(bitsAt); // unless they fit
        file.replace(linkAt, nWide, number(file.size(), nWide));
        file += number(tags.size(), bBigTiff ? 8 : 2);
        for (const auto& [tag, value] : tags) {
            const bool bBits = tag == 258, bLong = tag < 258 || tag == 273 || tag == 278 || tag == 279;
            file += number(tag, 2) + number(bLong ? 4 : 3, 2) + number(bBits ? page.samples : 1, nWide);
            const bool bInPlace = bBits && page.samples * 2 <= nWide;
            std::string bytes;
            if (bInPlace)
                for (std::uint32_t i = 0; i < page.samples; ++i)
                    bytes += number(page.bits, 2);
            else
                bytes = number(value, bBits ? nWide : bLong ? 4 : 2);
            bytes.resize(nWide);
            file += bytes;
        }
        linkAt = file.size();
        file += number(0, nWide);
    }
    return file;
}

} // namespace test
