#include "platform/gdiplus/codecs/Codecs.h"
#include "platform/gdiplus/codecs/ColorCut.h"

#include <algorithm>
#include <gif_lib.h>
#include <memory>
#include <unordered_map>
#include <vector>

namespace kx::gdiplus {

namespace {

// A picture as indices into at most 256 colours.
struct IndexedPicture
{
    std::vector<DWORD> colors; // 0x00RRGGBB
    int transparent = -1;      // its index, behind those of the colours, if there is one
    Bytes indices;             // the top row first
};

constexpr std::size_t kMaxColors = 256;
constexpr DWORD kTransparent = 0xFFFFFFFF; // marks a pixel without a colour

std::size_t PixelCount(const PixelView& view) noexcept
{
    return static_cast<std::size_t>(view.width) * static_cast<std::size_t>(view.height);
}

// Calls `take(color)` for each pixel until it gives false.
template <class Take>
bool ForEachColor(const PixelView& view, Take&& take)
{
    RowsOverBlack rows(view);
    for (int y = 0; y < view.height; ++y) {
        const DWORD *const row = view.Row(y), *const overBlack = rows.Row(y);
        for (int x = 0; x < view.width; ++x) {
            const bool bSeen = view.alpha == Alpha::Opaque || row[x] >> 31 != 0;
            if (!take(bSeen ? overBlack[x] & gdi::COLOR_BITS : kTransparent)) return false;
        }
    }
    return true;
}

// False for more colours than that. They are numbered in the order in which they come.
bool TakeExactly(const PixelView& view, std::size_t nMax, IndexedPicture& picture)
{
    std::unordered_map<DWORD, std::uint8_t> numbers;
    std::size_t at = 0;
    return ForEachColor(view, [&](DWORD color) {
        if (color == kTransparent) {
            picture.indices[at++] = static_cast<std::uint8_t>(picture.transparent);
            return true;
        }
        const auto [number, bNew] = numbers.try_emplace(color, static_cast<std::uint8_t>(numbers.size()));
        if (bNew) picture.colors.push_back(color);
        picture.indices[at++] = number->second;
        return numbers.size() <= nMax;
    });
}

void Reduce(const PixelView& view, std::size_t nMax, IndexedPicture& picture)
{
    ColorCut cut;
    ForEachColor(view, [&](DWORD color) {
        if (color != kTransparent) cut.Count(color);
        return true;
    });
    picture.colors = cut.Cut(nMax);
    std::size_t at = 0;
    ForEachColor(view, [&](DWORD color) {
        picture.indices[at++] =
            color == kTransparent ? static_cast<std::uint8_t>(picture.transparent) : cut.NumberOf(color);
        return true;
    });
}

IndexedPicture ToIndices(const PixelView& view)
{
    IndexedPicture picture;
    const bool bTransparent = !ForEachColor(view, [](DWORD color) { return color != kTransparent; });
    const std::size_t nMax = bTransparent ? kMaxColors - 1 : kMaxColors;
    if (bTransparent) picture.transparent = static_cast<int>(nMax);
    picture.indices.resize(PixelCount(view));
    if (!TakeExactly(view, nMax, picture)) Reduce(view, nMax, picture);
    return picture;
}

struct FreeMap
{
    void operator()(ColorMapObject* p) const noexcept { GifFreeMapObject(p); }
};
using Map = std::unique_ptr<ColorMapObject, FreeMap>;

struct CloseGif
{
    void operator()(GifFileType* p) const noexcept { EGifCloseFile(p, nullptr); }
};
using Gif = std::unique_ptr<GifFileType, CloseGif>;

int Write(GifFileType* gif, const GifByteType* bytes, int nBytes) noexcept
{
    auto& file = *static_cast<Bytes*>(gif->UserData);
    return Append(file, bytes, static_cast<std::size_t>(nBytes)) ? nBytes : 0;
}

// A power of two of colours, black behind those that there are.
Map ToMap(const IndexedPicture& picture) noexcept
{
    const int nHighest = std::max(picture.transparent, static_cast<int>(picture.colors.size()) - 1);
    Map map(GifMakeMapObject(1 << std::max(1, GifBitSize(nHighest + 1)), nullptr));
    for (std::size_t i = 0; map && i < picture.colors.size(); ++i)
        map->Colors[i] = {static_cast<GifByteType>(picture.colors[i] >> 16),
                          static_cast<GifByteType>(picture.colors[i] >> 8),
                          static_cast<GifByteType>(picture.colors[i])};
    return map;
}

bool PutTransparency(GifFileType* gif, int nTransparent) noexcept
{
    if (nTransparent < 0) return true;
    const GraphicsControlBlock block{DISPOSAL_UNSPECIFIED, false, 0, nTransparent};
    std::uint8_t bytes[4];
    return EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, static_cast<int>(EGifGCBToExtension(&block, bytes)),
                            bytes) == GIF_OK;
}

bool PutPixels(GifFileType* gif, Bytes& indices, int nWidth) noexcept
{
    for (std::size_t at = 0; at < indices.size(); at += static_cast<std::size_t>(nWidth))
        if (EGifPutLine(gif, indices.data() + at, nWidth) != GIF_OK) return false;
    return true;
}

} // namespace

Gdiplus::Status WriteGif(const PixelView& view, Bytes& file)
{
    IndexedPicture picture = ToIndices(view);
    const Map map = ToMap(picture);
    Gif gif(EGifOpen(&file, Write, nullptr));
    if (!map || !gif) return Gdiplus::OutOfMemory;
    EGifSetGifVersion(gif.get(), true);
    const bool bWritten =
        EGifPutScreenDesc(gif.get(), view.width, view.height, 8, 0, map.get()) == GIF_OK &&
        PutTransparency(gif.get(), picture.transparent) &&
        EGifPutImageDesc(gif.get(), 0, 0, view.width, view.height, false, nullptr) == GIF_OK &&
        PutPixels(gif.get(), picture.indices, view.width);
    const bool bEnded = EGifCloseFile(gif.release(), nullptr) == GIF_OK;
    return bWritten && bEnded ? Gdiplus::Ok : Gdiplus::OutOfMemory;
}

} // namespace kx::gdiplus
