#pragma once

#include "platform/gdi/ImageFile.h"
#include "platform/gdiplus/Decode.h"

#include <span>
#include <vector>

namespace kx::gdiplus {

using Bytes = std::vector<std::uint8_t>;

// For the codecs' libraries, through which nothing may be thrown: false for a lack of memory.
KX_API bool Append(Bytes& file, const std::uint8_t* bytes, std::size_t nBytes) noexcept;

// Puts a picture, as a file of a format, into the bytes, of which there are none yet. GenericError,
// OutOfMemory; throws std::bad_alloc.
using Writer = Gdiplus::Status (*)(const PixelView& view, Bytes& file);

// The module for pictures gives this; codecs/Codecs.h says what each does.
struct Functions
{
    gdi::PngFunctions png;
    Reader readPng, readJpeg, readGif, readTiff;
    Writer writeJpeg, writeGif, writeTiff, writePng;
};
// Null where the module can't be used.
const Functions* Codecs() noexcept;

struct Encoder
{
    Gdiplus::ImageCodecInfo info;
    Writer Functions::*write; // null for that of BMP, which the library has itself
};

std::span<const Encoder> Encoders() noexcept;
// Null for none of that class.
const Encoder* FindEncoder(const Gdiplus::CLSID& clsid) noexcept;
// Gives what a Writer does; UnknownImageFormat where the module can't be used.
Gdiplus::Status Encode(const Encoder& encoder, const PixelView& view, Bytes& file);

// 24 bits, over black.
Gdiplus::Status WriteBmp(const PixelView& view, Bytes& file);
// Encodes by the encoder of PNG.
Gdiplus::Status EncodePng(const PixelView& view, Bytes& file);

// The rows of a picture laid over black; the high byte means nothing. A row is valid until the next one is
// asked for, and stays where it lies if nothing has to be changed in it.
class KX_API RowsOverBlack
{
public:
    explicit RowsOverBlack(const PixelView& view);
    const DWORD* Row(int y) noexcept;

private:
    PixelView m_view;
    std::vector<DWORD> m_row;
};

} // namespace kx::gdiplus
