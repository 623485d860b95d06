#include "platform/gdiplus/codecs/Codecs.h"
#include "platform/gdiplus/codecs/TiffFile.h"

namespace kx::gdiplus::codecs {

namespace {

constexpr std::int64_t kMaxBlock = std::int64_t{1} << 24;

bool Describe(TIFF* tiff, const PixelView& view, std::uint16_t nSamples) noexcept
{
    const std::uint16_t nExtra = EXTRASAMPLE_UNASSALPHA;
    return TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(view.width)) &&
           TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(view.height)) &&
           TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8) &&
           TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, nSamples) &&
           (nSamples == 3 || TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &nExtra)) &&
           TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB) &&
           TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) &&
           TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_LZW) &&
           TIFFSetField(tiff, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL) &&
           TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tiff, 0));
}

} // namespace

Gdiplus::Status WriteTiff(const PixelView& view, Bytes& file)
{
    const std::uint16_t nSamples = view.alpha == Alpha::Opaque ? 3 : 4;
    Bytes samples(static_cast<std::size_t>(view.width) * nSamples);
    TiffMemory memory{{}, &file, 0};
    const TiffHandle tiff = OpenTiff(memory, "w", kMaxBlock);
    if (!tiff || !Describe(tiff.get(), view, nSamples)) return Gdiplus::OutOfMemory;
    for (int y = 0; y < view.height; ++y) {
        const DWORD* const row = view.Row(y);
        std::uint8_t* out = samples.data();
        for (int x = 0; x < view.width; ++x, out += nSamples) {
            out[0] = static_cast<std::uint8_t>(row[x] >> 16);
            out[1] = static_cast<std::uint8_t>(row[x] >> 8);
            out[2] = static_cast<std::uint8_t>(row[x]);
            if (nSamples == 4) out[3] = static_cast<std::uint8_t>(row[x] >> 24);
        }
        if (TIFFWriteScanline(tiff.get(), samples.data(), static_cast<std::uint32_t>(y), 0) < 0)
            return Gdiplus::OutOfMemory;
    }
    return TIFFWriteDirectory(tiff.get()) ? Gdiplus::Ok : Gdiplus::OutOfMemory;
}

} // namespace kx::gdiplus::codecs
