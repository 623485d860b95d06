#include "platform/gdiplus/codecs/GifIndex.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <gif_lib.h>
#include <memory>
#include <span>
#include <utility>

namespace kx::gdiplus::codecs {

namespace {

// The GIF library reads this: a file of that one frame, of which it needs neither the place nor the colours.
class OneFrame
{
public:
    OneFrame(FileBytes file, const GifFrame& frame) noexcept : m_data(file.subspan(frame.dataAt))
    {
        std::memcpy(m_head.data(), "GIF89a", 6);
        m_head[kDescriptor] = ',';
        for (const std::size_t at : {std::size_t{6}, kDescriptor + 5}) {
            Put(at, frame.width);
            Put(at + 2, frame.height);
        }
    }

    // The library reads the head in pieces, then the size of the codes, and then sizes of blocks and blocks.
    int Read(GifByteType* pBytes, int nBytes) noexcept
    {
        const bool bHead = m_nHead < m_head.size();
        const FileBytes from = bHead ? FileBytes(m_head).subspan(m_nHead) : m_data;
        const std::size_t nRead = std::min(from.size(), static_cast<std::size_t>(nBytes));
        std::copy_n(from.begin(), nRead, pBytes);
        if (bHead)
            m_nHead += nRead;
        else
            m_data = m_data.subspan(nRead);
        if (bHead || std::exchange(m_bSizeNext, !m_bSizeNext) == false) return static_cast<int>(nRead);
        // In a file that is cut, the last block is as long as what is there of it, and behind it is the end.
        if (nRead == 0) *pBytes = 0;
        *pBytes = static_cast<GifByteType>(std::min<std::size_t>(*pBytes, m_data.size()));
        return 1;
    }

private:
    static constexpr std::size_t kDescriptor = 13;

    void Put(std::size_t at, int nValue) noexcept
    {
        m_head[at] = static_cast<std::uint8_t>(nValue);
        m_head[at + 1] = static_cast<std::uint8_t>(nValue >> 8);
    }

    std::array<std::uint8_t, kDescriptor + 10> m_head{};
    std::size_t m_nHead = 0; // how much of it was read
    FileBytes m_data;
    bool m_bSizeNext = false; // what is read next is the size of a block
};

int ReadBytes(GifFileType* gif, GifByteType* pBytes, int nBytes)
{
    return static_cast<OneFrame*>(gif->UserData)->Read(pBytes, nBytes);
}

struct CloseGif
{
    void operator()(GifFileType* gif) const noexcept { DGifCloseFile(gif, nullptr); }
};

// Decodes a frame's indices. Gives how many rows could be, in the order in which the file has them: fewer
// than the frame's where its data end or go wrong.
int Decode(FileBytes file, const GifFrame& frame, BYTE* indices) noexcept
{
    OneFrame source(file, frame);
    const std::unique_ptr<GifFileType, CloseGif> gif(DGifOpen(&source, ReadBytes, nullptr));
    GifRecordType record = UNDEFINED_RECORD_TYPE;
    if (!gif || DGifGetRecordType(gif.get(), &record) != GIF_OK || DGifGetImageDesc(gif.get()) != GIF_OK)
        return 0;
    int nRows = 0;
    for (; nRows < frame.height; ++nRows, indices += frame.width)
        if (DGifGetLine(gif.get(), indices, frame.width) != GIF_OK) break;
    return nRows;
}

// The part of a frame that lies on the canvas.
struct Covered
{
    int left;
    int top;
    int right;
    int bottom;

    Covered(const GifFrame& frame, int nWidth, int nHeight) noexcept
        : left(std::min(frame.left, nWidth)),
          top(std::min(frame.top, nHeight)),
          right(std::min(frame.left + frame.width, nWidth)),
          bottom(std::min(frame.top + frame.height, nHeight))
    {
    }
    Covered(const GifFrame& frame, const gdi::Surface& surface) noexcept
        : Covered(frame, surface.Width(), surface.Height())
    {
    }
    std::size_t Width() const noexcept { return static_cast<std::size_t>(right - left); }
    std::size_t Size() const noexcept { return Width() * static_cast<std::size_t>(bottom - top); }
};

using Palette = std::array<DWORD, 256>;

// Opaque pixels for the indices; black for those that the palette lacks.
Palette ToPalette(FileBytes file, const GifFrame& frame) noexcept
{
    Palette pixels;
    pixels.fill(ALPHA_BITS);
    const std::uint8_t* color = file.data() + frame.paletteAt;
    for (int i = 0; i < frame.colors; ++i, color += 3)
        pixels[static_cast<std::size_t>(i)] |= DWORD{color[0]} << 16 | DWORD{color[1]} << 8 | color[2];
    return pixels;
}

void DrawRow(const BYTE* indices, DWORD* to, std::size_t nPixels, const Palette& palette,
             int nTransparent) noexcept
{
    if (nTransparent < 0) {
        for (std::size_t x = 0; x < nPixels; ++x)
            to[x] = palette[indices[x]];
        return;
    }
    for (std::size_t x = 0; x < nPixels; ++x)
        to[x] = indices[x] == nTransparent ? to[x] : palette[indices[x]];
}

// Interlaced rows come in four passes: every eighth from 0, every eighth from 4, every fourth from 2, every
// other from 1. Calls `row(y)` for the first so many rows of the data, in their order.
template <class Row>
void ForEachRow(const GifFrame& frame, int nRows, Row&& row)
{
    struct Pass
    {
        int first;
        int step;
    };
    constexpr Pass kPlain[] = {{0, 1}}, kInterlaced[] = {{0, 8}, {4, 8}, {2, 4}, {1, 2}};
    const std::span<const Pass> passes = frame.interlaced ? std::span<const Pass>(kInterlaced) : kPlain;
    for (const Pass& pass : passes)
        for (int y = pass.first; y < frame.height && nRows > 0; y += pass.step, --nRows)
            row(y);
}

std::size_t LargestFrame(const GifIndex& index) noexcept
{
    std::size_t nPixels = 0;
    for (const GifFrame& frame : index.frames)
        nPixels = std::max(nPixels, frame.Pixels());
    return nPixels;
}

// The most pixels of a frame that will be undone.
std::size_t LargestCovered(const GifIndex& index) noexcept
{
    std::size_t nPixels = 0;
    for (const GifFrame& frame : index.frames)
        if (frame.disposal == Disposal::Restore)
            nPixels = std::max(nPixels, Covered(frame, index.width, index.height).Size());
    return nPixels;
}

} // namespace

GifSource::GifSource(File of, GifIndex all)
    : file(std::move(of)), index(std::move(all)), indices(LargestFrame(index))
{
}

GifCanvas::GifCanvas(const GifIndex& index) : m_saved(LargestCovered(index))
{
}

int GifCanvas::PlayNext(GifSource& source, gdi::Surface& surface) noexcept
{
    const auto& frames = source.index.frames;
    if (m_nShown >= 0) Dispose(frames[static_cast<std::size_t>(m_nShown)], surface);
    return Show(frames[static_cast<std::size_t>(++m_nShown)], source, surface);
}

void GifCanvas::Rewind(gdi::Surface& surface) noexcept
{
    for (int y = 0; y < surface.Height(); ++y)
        std::fill_n(surface.Row(y), surface.Width(), 0);
    Assume(-1, false);
}

void GifCanvas::Assume(int nFrame, bool bOpaque) noexcept
{
    m_nShown = nFrame;
    m_bOpaque = bOpaque;
}

int GifCanvas::Show(const GifFrame& frame, GifSource& source, gdi::Surface& surface) noexcept
{
    if (frame.disposal == Disposal::Restore) Save(frame, surface);
    const Covered covered(frame, surface);
    const Palette palette = ToPalette(*source.file, frame);
    const BYTE* indices = source.indices.data();
    const int nRows = Decode(*source.file, frame, source.indices.data());
    ForEachRow(frame, nRows, [&](int y) {
        if (frame.top + y < covered.bottom)
            DrawRow(indices, surface.Row(frame.top + y) + covered.left, covered.Width(), palette,
                    frame.transparent);
        indices += frame.width;
    });
    const bool bCoversAll = covered.Size() == static_cast<std::size_t>(surface.Width()) *
                                                  static_cast<std::size_t>(surface.Height());
    m_bOpaque = m_bOpaque || (bCoversAll && nRows == frame.height && frame.transparent < 0);
    return nRows;
}

void GifCanvas::Save(const GifFrame& frame, const gdi::Surface& surface) noexcept
{
    const Covered covered(frame, surface);
    DWORD* saved = m_saved.data();
    for (int y = covered.top; y < covered.bottom; ++y, saved += covered.Width())
        std::copy_n(surface.Row(y) + covered.left, covered.Width(), saved);
    m_bSavedOpaque = m_bOpaque;
}

void GifCanvas::Dispose(const GifFrame& frame, gdi::Surface& surface) noexcept
{
    if (frame.disposal == Disposal::Stay) return;
    const bool bClear = frame.disposal == Disposal::Clear;
    const Covered covered(frame, surface);
    const DWORD* saved = m_saved.data();
    for (int y = covered.top; y < covered.bottom; ++y) {
        DWORD* const to = surface.Row(y) + covered.left;
        if (bClear)
            std::fill_n(to, covered.Width(), 0);
        else
            std::copy_n(std::exchange(saved, saved + covered.Width()), covered.Width(), to);
    }
    m_bOpaque = bClear ? m_bOpaque && covered.Size() == 0 : m_bSavedOpaque;
}

} // namespace kx::gdiplus::codecs
