#include "bench/BenchDir.h"
#include "bench/Surfaces.h"

#include <KXGdiplusImage.h>
#include <algorithm>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <gdk-pixbuf/gdk-pixbuf.h>
#include <gif_lib.h>
#include <jpeglib.h>
#include <platform/GdiPlus.h>
#include <png.h>
#include <random>

// Loading pictures from memory, saving them, also in grey, and playing a GIF. Pictures are smooth with some
// noise, as photos are. The peers decode with the raw libraries into 32-bit buffers that they allocate anew
// each time.

using namespace bench;
using namespace Gdiplus;
using namespace Gdiplus::DllExports;

namespace {

using Bytes = std::vector<unsigned char>;
constexpr Size kPhoto{1024, 768};
constexpr Size kFrame{320, 240};
constexpr int kFrames = 20;

void Start()
{
    static const auto token = [] {
        std::uintptr_t nToken = 0;
        const GdiplusStartupInput input;
        GdiplusStartup(&nToken, &input, nullptr);
        return nToken;
    }();
    static_cast<void>(token);
}

Pixels MakePhoto(Size size, int nShift = 0)
{
    std::minstd_rand random(1);
    Pixels pixels(size.Count());
    for (std::size_t n = 0; n < pixels.size(); ++n) {
        const int x = static_cast<int>(n) % size.cx + nShift, y = static_cast<int>(n) / size.cx;
        const auto noisy = [&](int nValue) {
            return static_cast<DWORD>(std::clamp(nValue + static_cast<int>(random() / 64 % 9) - 4, 0, 255));
        };
        pixels[n] = 0xFF000000 | noisy(x * 255 / size.cx) << 16 | noisy(y * 255 / size.cy) << 8 |
                    noisy((x + y) % 512 / 2);
    }
    return pixels;
}

// ---- Samples

struct EndStream
{
    void operator()(IStream* p) const { p->Release(); }
};
using Stream = std::unique_ptr<IStream, EndStream>;

Stream MakeStream(const Bytes& bytes = {})
{
    IStream* pStream = nullptr;
    CreateStreamOnHGlobal(nullptr, 1, &pStream);
    pStream->Write(bytes.data(), static_cast<ULONG>(bytes.size()), nullptr);
    return Stream(pStream);
}

CLSID Encoder(std::uint32_t nLast)
{
    return {0x557CF400 + nLast, 0x1A04, 0x11D3, {0x9A, 0x73, 0, 0, 0xF8, 0x1E, 0xF3, 0x2E}};
}
const CLSID kJpeg = Encoder(1), kPng = Encoder(6);

Bytes Encode(Pixels& pixels, const CLSID& encoder)
{
    Start();
    Bitmap bitmap(kPhoto.cx, kPhoto.cy, kPhoto.cx * 4, PixelFormat32bppRGB,
                  reinterpret_cast<BYTE*>(pixels.data()));
    const Stream stream = MakeStream();
    bitmap.Save(stream.get(), &encoder);
    HGLOBAL hBlock = nullptr;
    GetHGlobalFromStream(stream.get(), &hBlock);
    const auto* const first = static_cast<unsigned char*>(GlobalLock(hBlock));
    Bytes bytes(first, first + GlobalSize(hBlock));
    GlobalUnlock(hBlock);
    return bytes;
}

Bytes MakePhotoFile(const CLSID& encoder)
{
    Pixels pixels = MakePhoto(kPhoto);
    return Encode(pixels, encoder);
}

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
    for (auto _ : state) {
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
    for (auto _ : state) {
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
    for (auto _ : state)
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
    for (auto _ : state) {
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
    for (auto _ : state) {
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
    for (auto _ : state) {
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
    for (auto _ : state) {
        const DWORD* const pixels = player.Next();
        const auto nRow = static_cast<std::size_t>(kFrame.cx);
        for (std::size_t n = 0; n < paper.size(); n += nRow)
            std::memcpy(paper.data() + n, pixels + n, nRow * 4);
        benchmark::ClobberMemory();
    }
}

// ---- Saving

Bytes EncodeByLibjpeg(const DWORD* pixels, bool bGray = false)
{
    jpeg_error_mgr errors;
    jpeg_compress_struct jpeg;
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    unsigned char* pBytes = nullptr;
    unsigned long nBytes = 0;
    jpeg_mem_dest(&jpeg, &pBytes, &nBytes);
    jpeg.image_width = static_cast<JDIMENSION>(kPhoto.cx);
    jpeg.image_height = static_cast<JDIMENSION>(kPhoto.cy);
    jpeg.input_components = 4;
    jpeg.in_color_space = JCS_EXT_BGRX;
    jpeg_set_defaults(&jpeg);
    if (bGray) jpeg_set_colorspace(&jpeg, JCS_GRAYSCALE);
    jpeg_set_quality(&jpeg, 75, TRUE);
    jpeg_start_compress(&jpeg, TRUE);
    for (int y = 0; y < kPhoto.cy; ++y) {
        auto* row = reinterpret_cast<JSAMPROW>(const_cast<DWORD*>(pixels) + y * kPhoto.cx);
        jpeg_write_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_compress(&jpeg);
    jpeg_destroy_compress(&jpeg);
    Bytes bytes(pBytes, pBytes + nBytes);
    std::free(pBytes);
    return bytes;
}

void SaveOurs(benchmark::State& state)
{
    Start();
    Pixels pixels = MakePhoto(kPhoto);
    const Bitmap bitmap(kPhoto.cx, kPhoto.cy, kPhoto.cx * 4, PixelFormat32bppARGB,
                        reinterpret_cast<BYTE*>(pixels.data()));
    for (auto _ : state) {
        const Stream stream = MakeStream();
        if (bitmap.Save(stream.get(), &kJpeg) != Ok) state.SkipWithError("not saved");
    }
    if (Encode(pixels, kJpeg) != EncodeByLibjpeg(pixels.data()))
        state.SkipWithError("another file than the peer's");
}

bool IsAboutAsLong(const Bytes& one, const Bytes& other)
{
    return one.size() > other.size() / 20 * 19 && one.size() < other.size() / 20 * 21;
}

// To a file, as the client has it, the disk aside.
void SaveGrayOurs(benchmark::State& state)
{
    Start();
    Bytes file = Sample("png");
    CKXGdiplusImage image;
    image.Load(file.data(), file.size());
    const BenchDir memory(BenchDir::On::Memory);
    const CString strPath = memory.Win("gray.jpg");
    if (!image.SaveGrayPic(strPath)) state.SkipWithError("not saved"); // decodes the picture
    for (auto _ : state)
        if (!image.SaveGrayPic(strPath)) state.SkipWithError("not saved");
    std::ifstream saved(memory.Path("gray.jpg"), std::ios::binary);
    const Bytes bytes((std::istreambuf_iterator<char>(saved)), std::istreambuf_iterator<char>());
    if (!IsAboutAsLong(bytes, EncodeByLibjpeg(MakePhoto(kPhoto).data(), true)))
        state.SkipWithError("another file");
}

void SaveLibjpeg(benchmark::State& state)
{
    const Pixels pixels = MakePhoto(kPhoto);
    for (auto _ : state)
        benchmark::DoNotOptimize(EncodeByLibjpeg(pixels.data()));
}

// By the same steps: a grey picture, of which the brightness alone is encoded, and a file.
void SaveGrayLibjpeg(benchmark::State& state)
{
    const Pixels pixels = MakePhoto(kPhoto);
    const BenchDir memory(BenchDir::On::Memory);
    for (auto _ : state) {
        const std::unique_ptr<DWORD[]> gray(new DWORD[kPhoto.Count()]);
        for (std::size_t n = 0; n < pixels.size(); ++n) {
            const DWORD pixel = pixels[n];
            const DWORD sum = (pixel >> 16 & 0xFF) * 77 + (pixel >> 8 & 0xFF) * 151 + (pixel & 0xFF) * 28;
            gray[n] = (sum >> 8) * 0x010101;
        }
        const Bytes bytes = EncodeByLibjpeg(gray.get(), true);
        memory.Write("gray.jpg", {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
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
    Register("save_jpeg/ours", SaveOurs);
    Register("save_jpeg/libjpeg", SaveLibjpeg);
    Register("save_gray/ours", SaveGrayOurs);
    Register("save_gray/libjpeg", SaveGrayLibjpeg);
    return 0;
}();

} // namespace
