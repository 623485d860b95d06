#pragma once

#include "include/platform/GdiPlus.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>

// A picture out of a fuzzer's bytes, as a client loads one from memory, and its frames: at most a few of
// them, forwards and back.
class PictureFuzz
{
public:
    static int Run(const std::uint8_t* data, std::size_t size)
    {
        static const PictureFuzz started;
        struct End
        {
            void operator()(IStream* p) const { p->Release(); }
        };
        IStream* pStream = nullptr;
        if (CreateStreamOnHGlobal(nullptr, 1, &pStream) != S_OK) std::abort();
        const std::unique_ptr<IStream, End> stream(pStream);
        stream->Write(data, static_cast<ULONG>(size), nullptr);
        Gdiplus::Bitmap bitmap(pStream);
        Check(bitmap, bitmap.GetLastStatus());
        return 0;
    }

private:
    PictureFuzz()
    {
        std::uintptr_t nToken = 0;
        const Gdiplus::GdiplusStartupInput input;
        if (Gdiplus::GdiplusStartup(&nToken, &input, nullptr) != Gdiplus::Ok) std::abort();
    }

    // One that was loaded is within the limits, has a frame, and all its pixels are there.
    static void Check(Gdiplus::Bitmap& bitmap, Gdiplus::Status status)
    {
        const auto nWidth = static_cast<int>(bitmap.GetWidth()),
                   nHeight = static_cast<int>(bitmap.GetHeight());
        GUID dimension{};
        bitmap.GetFrameDimensionsList(&dimension, 1);
        const UINT nFrames = std::min(bitmap.GetFrameCount(&dimension), 8u);
        if (status != Gdiplus::Ok) {
            if (nWidth != 0 || nHeight != 0 || nFrames != 0) std::abort();
            return;
        }
        if (std::int64_t{nWidth} * nHeight > Gdiplus::MAX_IMAGE_PIXELS || nFrames == 0) std::abort();
        for (UINT n = 0; n < nFrames; ++n)
            bitmap.SelectActiveFrame(&dimension, n);
        bitmap.SelectActiveFrame(&dimension, 0);
        Gdiplus::Color color;
        const auto nRight = static_cast<int>(bitmap.GetWidth()) - 1,
                   nLast = static_cast<int>(bitmap.GetHeight()) - 1;
        if (bitmap.GetPixel(nRight, nLast, &color) != Gdiplus::Ok) std::abort();
    }
};
