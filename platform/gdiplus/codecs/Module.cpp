#include "platform/gdiplus/codecs/Codecs.h"
#include "platform/module/Door.h"

namespace kx::gdiplus::codecs {

namespace {

constexpr Functions kFunctions{{ReadPngPixels}, ReadPng,  ReadJpeg,  ReadGif, ReadTiff,
                               WriteJpeg,       WriteGif, WriteTiff, WritePng};

} // namespace

} // namespace kx::gdiplus::codecs

KX_MODULE_ENTRY(pictures, kx::gdiplus::codecs::kFunctions)
