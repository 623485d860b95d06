#pragma once

#include "tests/platform/gdiplus/Sheet.h"

// Picture files in memory, loaded and read back.
namespace test {

using namespace std::string_literals;

// A red pixel.
inline const std::string kRed = Png(1, 1, 8, 2, "\0\xFF\0\0"s);

using Stream = std::unique_ptr<IStream, void (*)(IStream*)>;

// A stream of its own block, at its beginning.
inline Stream MakeStream(std::string_view bytes = {})
{
    IStream* stream = nullptr;
    EXPECT_EQ(CreateStreamOnHGlobal(nullptr, 1, &stream), S_OK);
    stream->Write(bytes.data(), static_cast<ULONG>(bytes.size()), nullptr);
    stream->Seek({0}, STREAM_SEEK_SET, nullptr);
    return {stream, [](IStream* p) { p->Release(); }};
}

inline std::string Content(IStream* stream)
{
    HGLOBAL block = nullptr;
    EXPECT_EQ(GetHGlobalFromStream(stream, &block), S_OK);
    std::string bytes(static_cast<const char*>(GlobalLock(block)), GlobalSize(block));
    GlobalUnlock(block);
    return bytes;
}

// A picture that tells its pixels; the status is how making it went.
class Loaded : public Image
{
public:
    explicit Loaded(std::string_view file) : Image(MakeStream(file).get()) {}
    Loaded(GpImage* image, Status status) { Take(image, status); }
    // A picture of letters; a space is a transparent pixel.
    explicit Loaded(const Picture& picture, PixelFormat format = PixelFormat32bppARGB)
    {
        GpBitmap* bitmap = nullptr;
        const auto cx = static_cast<int>(picture.at(0).size()), cy = static_cast<int>(picture.size());
        const Status status = GdipCreateBitmapFromScan0(cx, cy, 0, format, nullptr, &bitmap);
        Take(reinterpret_cast<GpImage*>(bitmap), status); // clients know that a bitmap is an image, no more
        for (int y = 0; y < cy; ++y)
            for (int x = 0; x < cx; ++x) {
                const char letter = picture[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)];
                if (letter != ' ') GdipBitmapSetPixel(bitmap, x, y, 0xFF000000 | PixelOf(letter));
            }
    }

    operator GpImage*() const { return Native(); }
    GpBitmap* Bitmap() const { return reinterpret_cast<GpBitmap*>(Native()); }

    ARGB Pixel(UINT x, UINT y) const
    {
        ARGB color = 0x12345678;
        GdipBitmapGetPixel(Bitmap(), static_cast<int>(x), static_cast<int>(y), &color);
        return color;
    }
    Row Pixels() const
    {
        Row pixels;
        for (UINT y = 0; y < GetHeight(); ++y)
            for (UINT x = 0; x < GetWidth(); ++x)
                pixels.push_back(Pixel(x, y));
        return pixels;
    }
    // A space for what is wholly transparent, `?` for what is partly so or no letter's colour.
    Picture Letters() const
    {
        Picture picture(GetHeight());
        for (UINT y = 0; y < GetHeight(); ++y)
            for (UINT x = 0; x < GetWidth(); ++x) {
                const ARGB color = Pixel(x, y);
                picture[y] += color >> 24 == 255 ? LetterOfPixel(color) : color >> 24 == 0 ? ' ' : '?';
            }
        return picture;
    }
};

inline Status LoadStatus(std::string_view file)
{
    return Loaded(file).GetLastStatus();
}

// How many frames or pages a picture has, and one of them as letters.
inline UINT CountOf(const Loaded& loaded, const GUID& dimension = FrameDimensionTime)
{
    return loaded.GetFrameCount(&dimension);
}

inline Picture Shown(const Loaded& loaded, UINT nFrame, const GUID& dimension = FrameDimensionTime)
{
    EXPECT_EQ(GdipImageSelectActiveFrame(loaded, &dimension, nFrame), Ok);
    return loaded.Letters();
}

inline std::vector<ImageCodecInfo> Encoders()
{
    UINT nCount = 0, nBytes = 0;
    EXPECT_EQ(GdipGetImageEncodersSize(&nCount, &nBytes), Ok);
    EXPECT_EQ(nBytes, nCount * sizeof(ImageCodecInfo));
    std::vector<ImageCodecInfo> encoders(nCount);
    EXPECT_EQ(GdipGetImageEncoders(nCount, nBytes - 1, encoders.data()), InvalidParameter);
    EXPECT_EQ(GdipGetImageEncoders(nCount, nBytes, encoders.data()), Ok);
    return encoders;
}

// Class ids of the encoders, by the end of their MIME type.
inline CLSID EncoderOf(std::u16string_view type)
{
    for (const ImageCodecInfo& encoder : Encoders())
        if (std::u16string_view(encoder.MimeType) == u"image/" + std::u16string(type)) return encoder.Clsid;
    return {};
}

inline std::string Saved(GpImage* image, std::u16string_view type)
{
    const Stream stream = MakeStream();
    const CLSID clsid = EncoderOf(type);
    EXPECT_EQ(GdipSaveImageToStream(image, stream.get(), &clsid, nullptr), Ok);
    return Content(stream.get());
}

inline std::u16string Wide(std::string_view path)
{
    return {path.begin(), path.end()};
}

} // namespace test
