#pragma once

#include "platform/gdiplus/Decode.h"
#include "platform/gdiplus/Encode.h"

// The decoders and encoders of the module for pictures, as Decode.h and Encode.h describe them.

namespace kx::gdiplus::codecs {

// Stands for gdi::PngFunctions::read.
std::optional<gdi::Surface> ReadPngPixels(FileBytes file, int nMaxSide, bool* pbCut);

Gdiplus::Status ReadPng(const File& file, std::optional<Picture>& picture);
// Missing rows are grey, and in a progressive one blurred. A damaged one is decoded as far as it goes.
Gdiplus::Status ReadJpeg(const File& file, std::optional<Picture>& picture);
// Frames whose blocks are all there count, up to the first that isn't, unless that is the first of all. What
// a frame's data lack stays as it was.
Gdiplus::Status ReadGif(const File& file, std::optional<Picture>& picture);
// Pages whose pixels lie within the file count, up to the first that doesn't, unless that is the first of
// all. Of a page that stands alone the strips that can be read are.
Gdiplus::Status ReadTiff(const File& file, std::optional<Picture>& picture);

// Quality 75, colours at half the resolution, or none where all pixels are grey; over black.
Gdiplus::Status WriteJpeg(const PixelView& view, Bytes& file);
// Up to 256 colours exactly, of more the 256 that stand best for them. Pixels of an opacity below 128 become
// transparent, those above lie over black.
Gdiplus::Status WriteGif(const PixelView& view, Bytes& file);
// With LZW; an alpha channel if the picture has one.
Gdiplus::Status WriteTiff(const PixelView& view, Bytes& file);
Gdiplus::Status WritePng(const PixelView& view, Bytes& file);

} // namespace kx::gdiplus::codecs
