#include "bench/BenchDir.h"
#include "bench/ImageSamples.h"
#include "bench/Loop.h"

#include <KXGdiplusImage.h>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include <jpeglib.h> // needs stdio

// Saving pictures, also in grey.

using namespace bench;
using namespace Gdiplus;

namespace {

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
    for (auto _ : bench::Loop(state)) {
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
    Bytes file = MakePhotoFile(kPng);
    CKXGdiplusImage image;
    image.Load(file.data(), file.size());
    const BenchDir memory(BenchDir::On::Memory);
    const CString strPath = memory.Win("gray.jpg");
    if (!image.SaveGrayPic(strPath)) state.SkipWithError("not saved"); // decodes the picture
    for (auto _ : bench::Loop(state))
        if (!image.SaveGrayPic(strPath)) state.SkipWithError("not saved");
    std::ifstream saved(memory.Path("gray.jpg"), std::ios::binary);
    const Bytes bytes((std::istreambuf_iterator<char>(saved)), std::istreambuf_iterator<char>());
    if (!IsAboutAsLong(bytes, EncodeByLibjpeg(MakePhoto(kPhoto).data(), true)))
        state.SkipWithError("another file");
}

void SaveLibjpeg(benchmark::State& state)
{
    const Pixels pixels = MakePhoto(kPhoto);
    for (auto _ : bench::Loop(state))
        benchmark::DoNotOptimize(EncodeByLibjpeg(pixels.data()));
}

// By the same steps: a grey picture, of which the brightness alone is encoded, and a file.
void SaveGrayLibjpeg(benchmark::State& state)
{
    const Pixels pixels = MakePhoto(kPhoto);
    const BenchDir memory(BenchDir::On::Memory);
    for (auto _ : bench::Loop(state)) {
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
    Register("save_jpeg/ours", SaveOurs);
    Register("save_jpeg/libjpeg", SaveLibjpeg);
    Register("save_gray/ours", SaveGrayOurs);
    Register("save_gray/libjpeg", SaveGrayLibjpeg);
    return 0;
}();

} // namespace
