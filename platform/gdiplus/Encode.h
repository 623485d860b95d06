#pragma once

#include "platform/gdiplus/Picture.h"

#include <span>
#include <vector>

namespace kx::gdiplus {

using Bytes = std::vector<std::uint8_t>;

// For the codecs' libraries, through which nothing may be thrown: false for a lack of memory.
bool Append(Bytes& file, const std::uint8_t* bytes, std::size_t nBytes) noexcept;

struct Encoder
{
    Gdiplus::ImageCodecInfo info;
    // Puts the picture, as a file of that format, into the bytes, of which there are none yet. GenericError,
    // OutOfMemory; throws std::bad_alloc.
    Gdiplus::Status (*write)(const PixelView& view, Bytes& file);
};

std::span<const Encoder> Encoders() noexcept;
// Null for none of that class.
const Encoder* FindEncoder(const Gdiplus::CLSID& clsid) noexcept;

// 24 bits, over black.
Gdiplus::Status WriteBmp(const PixelView& view, Bytes& file);
// Quality 75, colours at half the resolution, or none where all pixels are grey; over black.
Gdiplus::Status WriteJpeg(const PixelView& view, Bytes& file);
// Up to 256 colours exactly, of more the 256 that stand best for them. Pixels of an opacity below 128 become
// transparent, those above lie over black.
Gdiplus::Status WriteGif(const PixelView& view, Bytes& file);
// With LZW; an alpha channel if the picture has one.
Gdiplus::Status WriteTiff(const PixelView& view, Bytes& file);
Gdiplus::Status WritePng(const PixelView& view, Bytes& file);

// The rows of a picture laid over black; the high byte means nothing. A row is valid until the next one is
// asked for, and stays where it lies if nothing has to be changed in it.
class RowsOverBlack
{
public:
    explicit RowsOverBlack(const PixelView& view);
    const DWORD* Row(int y) noexcept;

private:
    PixelView m_view;
    std::vector<DWORD> m_row;
};

} // namespace kx::gdiplus
