#pragma once

#include "bench/Surfaces.h"

#include <algorithm>
#include <memory>
#include <platform/GdiPlus.h>
#include <random>

// The benchmark loads and saves smooth pictures with some noise, as photos have it.
namespace bench {

using Bytes = std::vector<unsigned char>;
inline constexpr Size kPhoto{1024, 768};

// Starts the layer of pictures.
inline void Start()
{
    static const auto token = [] {
        std::uintptr_t nToken = 0;
        const Gdiplus::GdiplusStartupInput input;
        Gdiplus::GdiplusStartup(&nToken, &input, nullptr);
        return nToken;
    }();
    static_cast<void>(token);
}

inline Pixels MakePhoto(Size size, int nShift = 0)
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

struct EndStream
{
    void operator()(IStream* p) const { p->Release(); }
};
using Stream = std::unique_ptr<IStream, EndStream>;

inline Stream MakeStream(const Bytes& bytes = {})
{
    IStream* pStream = nullptr;
    CreateStreamOnHGlobal(nullptr, 1, &pStream);
    pStream->Write(bytes.data(), static_cast<ULONG>(bytes.size()), nullptr);
    return Stream(pStream);
}

inline Gdiplus::CLSID Encoder(std::uint32_t nLast)
{
    return {0x557CF400 + nLast, 0x1A04, 0x11D3, {0x9A, 0x73, 0, 0, 0xF8, 0x1E, 0xF3, 0x2E}};
}
inline const Gdiplus::CLSID kJpeg = Encoder(1), kPng = Encoder(6);

inline Bytes Encode(Pixels& pixels, const Gdiplus::CLSID& encoder)
{
    Start();
    Gdiplus::Bitmap bitmap(kPhoto.cx, kPhoto.cy, kPhoto.cx * 4, Gdiplus::PixelFormat32bppRGB,
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

inline Bytes MakePhotoFile(const Gdiplus::CLSID& encoder)
{
    Pixels pixels = MakePhoto(kPhoto);
    return Encode(pixels, encoder);
}

} // namespace bench
