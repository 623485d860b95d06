#include "platform/gdiplus/Encode.h"
#include "platform/gdiplus/GifPalette.h"

#include <algorithm>
#include <gif_lib.h>
#include <memory>

namespace kx::gdiplus {

namespace {

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
