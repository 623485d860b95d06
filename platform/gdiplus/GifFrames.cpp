#include "platform/gdiplus/GifFrames.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>
#include <span>
#include <utility>

namespace kx::gdiplus {

namespace {

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

// Of the frames that will be undone.
std::size_t LargestCovered(const GifIndex& index) noexcept
{
    std::size_t nPixels = 0;
    for (const GifFrame& frame : index.frames)
        if (frame.disposal == Disposal::Restore)
            nPixels = std::max(nPixels, Covered(frame, index.width, index.height).Size());
    return nPixels;
}

void CopyPixels(const gdi::Surface& from, gdi::Surface& to) noexcept
{
    for (int y = 0; y < from.Height(); ++y)
        std::copy_n(from.Row(y), from.Width(), to.Row(y));
}

} // namespace

GifFrames::GifFrames(File file, GifIndex index)
    : m_file(std::move(file)),
      m_index(std::move(index)),
      m_indices(LargestFrame(m_index)),
      m_saved(LargestCovered(m_index))
{
}

Gdiplus::Status GifFrames::Select(unsigned nFrame, gdi::Surface& surface, Alpha& alpha)
{
    const int nWanted = static_cast<int>(nFrame);
    if (nWanted < m_nShown && m_kept.empty()) m_bKeeps = FitsKept(surface);
    const int nKept = static_cast<int>(m_kept.size());
    if (nKept > 0 && m_nShown != std::min(nWanted, nKept - 1))
        PutKept(std::min(nWanted, nKept - 1), surface);
    else if (nWanted < m_nShown || m_nShown < 0)
        Restart(surface);
    while (m_nShown < nWanted) {
        if (m_nShown >= 0) Dispose(m_index.frames[static_cast<std::size_t>(m_nShown)], surface);
        Show(m_index.frames[static_cast<std::size_t>(++m_nShown)], surface);
        if (m_bKeeps) Keep(surface);
    }
    alpha = m_bOpaque ? Alpha::Opaque : Alpha::Straight;
    return Gdiplus::Ok;
}

bool GifFrames::FitsKept(const gdi::Surface& surface) const noexcept
{
    const auto nPixels = std::int64_t{surface.Width()} * surface.Height();
    return nPixels * static_cast<std::int64_t>(Count()) <= Gdiplus::MAX_KEPT_FRAMES_PIXELS;
}

// Frames are kept in their order from the first on, so the last one kept is the last one decoded: what was
// saved of it still holds.
void GifFrames::Keep(const gdi::Surface& surface) noexcept
{
    try {
        if (auto copy = gdi::Surface::Make(surface.Width(), surface.Height())) {
            CopyPixels(surface, *copy);
            m_kept.push_back({std::move(*copy), m_bOpaque});
            return;
        }
    } catch (const std::bad_alloc&) { // goes on without
    }
    m_kept.clear();
    m_bKeeps = false;
}

void GifFrames::PutKept(int nFrame, gdi::Surface& surface) noexcept
{
    const Kept& kept = m_kept[static_cast<std::size_t>(nFrame)];
    CopyPixels(kept.surface, surface);
    m_bOpaque = kept.bOpaque;
    m_nShown = nFrame;
}

void GifFrames::Restart(gdi::Surface& surface) noexcept
{
    for (int y = 0; y < surface.Height(); ++y)
        std::memset(surface.Row(y), 0, static_cast<std::size_t>(surface.Width()) * sizeof(DWORD));
    m_bOpaque = false;
    m_nShown = -1;
}

void GifFrames::Show(const GifFrame& frame, gdi::Surface& surface) noexcept
{
    if (frame.disposal == Disposal::Restore) Save(frame, surface);
    const Covered covered(frame, surface);
    const Palette palette = ToPalette(*m_file, frame);
    const int nRows = m_indices.Decode(*m_file, frame);
    const BYTE* indices = m_indices.Bytes();
    ForEachRow(frame, nRows, [&](int y) {
        if (frame.top + y < covered.bottom)
            DrawRow(indices, surface.Row(frame.top + y) + covered.left, covered.Width(), palette,
                    frame.transparent);
        indices += frame.width;
    });
    const bool bCoversAll = covered.Size() == static_cast<std::size_t>(surface.Width()) *
                                                  static_cast<std::size_t>(surface.Height());
    m_bOpaque = m_bOpaque || (bCoversAll && nRows == frame.height && frame.transparent < 0);
    if (m_nShown == 0) m_nFirstRows = nRows;
}

void GifFrames::Save(const GifFrame& frame, const gdi::Surface& surface) noexcept
{
    const Covered covered(frame, surface);
    DWORD* saved = m_saved.data();
    for (int y = covered.top; y < covered.bottom; ++y, saved += covered.Width())
        std::copy_n(surface.Row(y) + covered.left, covered.Width(), saved);
    m_bSavedOpaque = m_bOpaque;
}

void GifFrames::Dispose(const GifFrame& frame, gdi::Surface& surface) noexcept
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

std::optional<Property> GifFrames::FindProperty(Gdiplus::PROPID id) const
{
    if (id != Gdiplus::PropertyTagFrameDelay) return std::nullopt;
    Property property{Gdiplus::PropertyTagTypeLong, {}};
    for (const GifFrame& frame : m_index.frames) {
        const DWORD nDelay = frame.delay;
        const auto* const bytes = reinterpret_cast<const std::uint8_t*>(&nDelay);
        property.value.insert(property.value.end(), bytes, bytes + sizeof nDelay);
    }
    return property;
}

Gdiplus::Status ReadGif(const File& file, std::optional<Picture>& picture)
{
    auto index = ReadGifIndex(*file);
    if (!index) return Gdiplus::GenericError;
    const Gdiplus::Status status = CheckSize(index->width, index->height);
    if (status != Gdiplus::Ok) return status;
    if (IsAbsurd(std::int64_t{index->width} * index->height, file->size(), MAX_GIF_PIXELS_PER_BYTE))
        return Gdiplus::GenericError;
    auto surface = gdi::Surface::Make(index->width, index->height);
    if (!surface) return Gdiplus::OutOfMemory;
    Picture made{std::move(*surface), Alpha::Straight, Gdiplus::PixelFormat8bppIndexed, nullptr,
                 Gdiplus::FrameDimensionTime};
    auto frames = std::make_unique<GifFrames>(file, std::move(*index));
    frames->Select(0, made.surface, made.alpha);
    if (frames->FirstRows() == 0) return Gdiplus::GenericError;
    if (frames->Count() > 1) made.frames = std::move(frames);
    picture = std::move(made);
    return Gdiplus::Ok;
}

} // namespace kx::gdiplus
