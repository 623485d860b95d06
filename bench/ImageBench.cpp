#include "bench/ImageSamples.h"
#include "bench/Loop.h"

#include <algorithm>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <gdk-pixbuf/gdk-pixbuf.h>
#include <gif_lib.h>
#include <jpeglib.h>
#include <png.h>

// Loading pictures from memory, and playing a GIF. The peers decode with the raw libraries into 32-bit
// buffers that they allocate anew each time.

using namespace bench;
using namespace Gdiplus;
using namespace Gdiplus::DllExports;

namespace {

constexpr Size kFrame{320, 240};
constexpr int kFrames = 20;

// 256 colours, the upper bits of each channel.
Bytes MakeGif()
{
    Bytes bytes;
    GifFileType* const gif = EGifOpen(
        &bytes,
        [](GifFileType* file, const GifByteType* from, int n) {
            auto& to = *static_cast<Bytes*>(file->UserData);
            to.insert(to.end(), from, from + n);
            return n;
        },
        nullptr);
    ColorMapObject* const map = GifMakeMapObject(256, nullptr);
    for (int i = 0; i < 256; ++i)
        map->Colors[i] = {static_cast<GifByteType>(i & 0xE0), static_cast<GifByteType>(i << 3 & 0xE0),
                          static_cast<GifByteType>(i << 6)};
    EGifSetGifVersion(gif, true);
    EGifPutScreenDesc(gif, kFrame.cx, kFrame.cy, 8, 0, map);
    for (int n = 0; n < kFrames; ++n) {
        const GifByteType control[] = {0, 10, 0, 0};
        EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, 4, control);
        EGifPutImageDesc(gif, 0, 0, kFrame.cx, kFrame.cy, false, nullptr);
        Bytes line;
        for (const DWORD pixel : MakePhoto(kFrame, 8 * n))
            line.push_back(
                static_cast<GifByteType>((pixel >> 16 & 0xE0) | (pixel >> 11 & 0x1C) | (pixel >> 6 & 3)));
        EGifPutLine(gif, line.data(), static_cast<int>(line.size()));
    }
    EGifCloseFile(gif, nullptr);
    GifFreeMapObject(map);
    return bytes;
}

const Bytes& Sample(const std::string& kind)
{
    static const Bytes png = MakePhotoFile(kPng), jpeg = MakePhotoFile(kJpeg), gif = MakeGif();
    return kind == "png" ? png : kind == "jpeg" ? jpeg : gif;
}

// ---- Loading

void LoadPixbuf(benchmark::State& state, const std::string& kind)
{
    const Bytes& bytes = Sample(kind);
    for (auto _ : bench::Loop(state)) {
        GdkPixbufLoader* const loader = gdk_pixbuf_loader_new();
        gdk_pixbuf_loader_write(loader, bytes.data(), bytes.size(), nullptr);
        gdk_pixbuf_loader_close(loader, nullptr);
        if (kind == "gif20") {
            G_GNUC_BEGIN_IGNORE_DEPRECATIONS
            GTimeVal now{1, 0};
            GdkPixbufAnimationIter* const iter =
                gdk_pixbuf_animation_get_iter(gdk_pixbuf_loader_get_animation(loader), &now);
            for (int n = 0; n < kFrames; ++n) {
                benchmark::DoNotOptimize(gdk_pixbuf_animation_iter_get_pixbuf(iter));
                g_time_val_add(&now, 100'000);
                gdk_pixbuf_animation_iter_advance(iter, &now);
            }
            g_object_unref(iter);
            G_GNUC_END_IGNORE_DEPRECATIONS
        } else {
            benchmark::DoNotOptimize(gdk_pixbuf_loader_get_pixbuf(loader));
        }
        g_object_unref(loader);
    }
}

void LoadLibpng(benchmark::State& state)
{
    const Bytes& bytes = Sample("png");
    for (auto _ : bench::Loop(state)) {
        struct Rest
        {
            const unsigned char* at;
        } rest{bytes.data()};
        png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
        png_infop info = png_create_info_struct(png);
        png_set_read_fn(png, &rest, [](png_structp from, png_bytep to, png_size_t n) {
            auto& source = *static_cast<Rest*>(png_get_io_ptr(from));
            std::memcpy(to, source.at, n);
            source.at += n;
        });
        png_set_compression_buffer_size(png, 64 << 10); // this and less checking, as ours
        png_set_option(png, PNG_IGNORE_ADLER32, PNG_OPTION_ON);
        png_read_info(png, info);
        png_set_bgr(png);
        png_set_filler(png, 0xFF, PNG_FILLER_AFTER);
        png_read_update_info(png, info);
        const std::unique_ptr<DWORD[]> pixels(new DWORD[kPhoto.Count()]);
        for (int y = 0; y < kPhoto.cy; ++y)
            png_read_row(png, reinterpret_cast<png_bytep>(pixels.get() + y * kPhoto.cx), nullptr);
        png_read_end(png, nullptr);
        png_destroy_read_struct(&png, &info, nullptr);
    }
}

std::unique_ptr<DWORD[]> DecodeByLibjpeg(const Bytes& bytes)
{
    jpeg_error_mgr errors;
    jpeg_decompress_struct jpeg;
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&jpeg);
    jpeg_mem_src(&jpeg, bytes.data(), bytes.size());
    jpeg_read_header(&jpeg, TRUE);
    jpeg.out_color_space = JCS_EXT_BGRX;
    jpeg_start_decompress(&jpeg);
    std::unique_ptr<DWORD[]> pixels(new DWORD[kPhoto.Count()]);
    while (jpeg.output_scanline < jpeg.output_height) {
        auto* row = reinterpret_cast<JSAMPROW>(pixels.get() + jpeg.output_scanline * jpeg.output_width);
        jpeg_read_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_decompress(&jpeg);
    jpeg_destroy_decompress(&jpeg);
    return pixels;
}

void LoadLibjpeg(benchmark::State& state)
{
    const Bytes& bytes = Sample("jpeg");
    for (auto _ : bench::Loop(state))
        benchmark::DoNotOptimize(DecodeByLibjpeg(bytes));
}

// Frame after frame, each as pixels.
class GiflibPlayer
{
public:
    explicit GiflibPlayer(const Bytes& bytes) : m_bytes(bytes) { Open(); }
    GiflibPlayer(const GiflibPlayer&) = delete;
    GiflibPlayer& operator=(const GiflibPlayer&) = delete;
    ~GiflibPlayer() { DGifCloseFile(m_gif, nullptr); }

    const DWORD* Next()
    {
        GifRecordType type = UNDEFINED_RECORD_TYPE;
        while (type != IMAGE_DESC_RECORD_TYPE) {
            DGifGetRecordType(m_gif, &type);
            int nCode = 0;
            GifByteType* block = nullptr;
            if (type == EXTENSION_RECORD_TYPE) DGifGetExtension(m_gif, &nCode, &block);
            while (block)
                DGifGetExtensionNext(m_gif, &block);
            if (type == TERMINATE_RECORD_TYPE) {
                DGifCloseFile(m_gif, nullptr);
                Open();
            }
        }
        DGifGetImageDesc(m_gif);
        DGifGetLine(m_gif, m_indices.data(), static_cast<int>(m_indices.size()));
        DWORD palette[256];
        for (int i = 0; i < 256; ++i) {
            const GifColorType color = m_gif->SColorMap->Colors[i];
            palette[i] = 0xFF000000 | DWORD{color.Red} << 16 | DWORD{color.Green} << 8 | color.Blue;
        }
        for (std::size_t n = 0; n < m_indices.size(); ++n)
            m_pixels[n] = palette[m_indices[n]];
        return m_pixels.data();
    }

private:
    void Open()
    {
        m_at = m_bytes.data();
        m_gif = DGifOpen(
            this,
            [](GifFileType* gif, GifByteType* to, int n) {
                auto& self = *static_cast<GiflibPlayer*>(gif->UserData);
                const int nThere = static_cast<int>(self.m_bytes.data() + self.m_bytes.size() - self.m_at);
                const int nRead = std::min(n, nThere);
                std::memcpy(to, self.m_at, static_cast<std::size_t>(nRead));
                self.m_at += nRead;
                return nRead;
            },
            nullptr);
    }

    const Bytes& m_bytes;
    const unsigned char* m_at = nullptr;
    GifFileType* m_gif = nullptr;
    Bytes m_indices = Bytes(kFrame.Count());
    Pixels m_pixels = Pixels(kFrame.Count());
};

void LoadGiflib(benchmark::State& state)
{
    const Bytes& bytes = Sample("gif20");
    for (auto _ : bench::Loop(state)) {
        GiflibPlayer player(bytes);
        for (int n = 0; n < kFrames; ++n)
            benchmark::DoNotOptimize(player.Next());
    }
}

bool IsDrawn(Image& image, Size size, const DWORD* pixels)
{
    const Ours paper(size);
    Graphics(paper).DrawImage(&image, 0, 0);
    return Shows(paper, size, pixels);
}

// Whether a picture, with all its frames, is what the peers decode.
bool IsSample(Image& image, const std::string& kind)
{
    if (kind == "png") return IsDrawn(image, kPhoto, MakePhoto(kPhoto).data());
    if (kind == "jpeg") return IsDrawn(image, kPhoto, DecodeByLibjpeg(Sample(kind)).get());
    GiflibPlayer player(Sample(kind));
    for (UINT n = 0; n < kFrames; ++n) {
        image.SelectActiveFrame(&FrameDimensionTime, n);
        if (!IsDrawn(image, kFrame, player.Next())) return false;
    }
    return image.GetFrameCount(&FrameDimensionTime) == kFrames;
}

void LoadOurs(benchmark::State& state, const std::string& kind)
{
    Start();
    const Stream stream = MakeStream(Sample(kind));
    for (auto _ : bench::Loop(state)) {
        Image image(stream.get());
        const UINT nFrames = image.GetFrameCount(&FrameDimensionTime);
        for (UINT n = 0; n < nFrames; ++n)
            image.SelectActiveFrame(&FrameDimensionTime, n);
        if (image.GetWidth() == 0) state.SkipWithError("not loaded");
    }
    Image image(stream.get());
    if (!IsSample(image, kind)) state.SkipWithError("another picture than the peer's");
}

// ---- Playing

void StepOurs(benchmark::State& state)
{
    Start();
    const Stream stream = MakeStream(Sample("gif20"));
    Image image(stream.get());
    const Ours paper(kFrame);
    for (UINT n = 0; n < 2 * kFrames;
         ++n) // played over and over, it is decoded in the first two rounds alone
        image.SelectActiveFrame(&FrameDimensionTime, n % kFrames);
    UINT nFrame = 0;
    for (auto _ : bench::Loop(state)) {
        nFrame = (nFrame + 1) % kFrames;
        image.SelectActiveFrame(&FrameDimensionTime, nFrame);
        Graphics graphics(paper);
        graphics.DrawImage(&image, 0, 0);
    }
    if (!IsSample(image, "gif20")) state.SkipWithError("another picture than the peer's");
}

void StepGiflib(benchmark::State& state)
{
    GiflibPlayer player(Sample("gif20"));
    Pixels paper(kFrame.Count());
    for (auto _ : bench::Loop(state)) {
        const DWORD* const pixels = player.Next();
        const auto nRow = static_cast<std::size_t>(kFrame.cx);
        for (std::size_t n = 0; n < paper.size(); n += nRow)
            std::memcpy(paper.data() + n, pixels + n, nRow * 4);
        benchmark::ClobberMemory();
    }
}

const int registered = [] {
    for (const std::string kind : {"png", "jpeg", "gif20"}) {
        Register("load_" + kind + "/ours", LoadOurs, kind);
        Register("load_" + kind + "/gdk_pixbuf", LoadPixbuf, kind);
    }
    Register("load_png/libpng", LoadLibpng);
    Register("load_jpeg/libjpeg", LoadLibjpeg);
    Register("load_gif20/giflib", LoadGiflib);
    Register("gif_step_320x240/ours", StepOurs);
    Register("gif_step_320x240/giflib", StepGiflib);
    return 0;
}();

} // namespace
