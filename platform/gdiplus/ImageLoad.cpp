#include "include/platform/Error.h"
#include "internal/Debug.h"
#include "platform/files/Path.h"
#include "platform/files/WholeFile.h"
#include "platform/gdi/Bitmap.h"
#include "platform/gdi/ImageFile.h"
#include "platform/gdiplus/Calls.h"
#include "platform/gdiplus/Decode.h"
#include "platform/gdiplus/Image.h"

#include <algorithm>

using namespace kx::gdiplus;

namespace Gdiplus::DllExports {

namespace {

constexpr std::size_t kMaxBytes = std::size_t{MAX_IMAGE_BYTES};
constexpr std::size_t kStep = std::size_t{1} << 16;

// How much there seems to be; the reads alone decide.
std::size_t Hint(IStream& stream)
{
    ULARGE_INTEGER nEnd{};
    const bool bKnown = SUCCEEDED(stream.Seek({0}, STREAM_SEEK_END, &nEnd));
    return bKnown ? static_cast<std::size_t>(std::min<std::uint64_t>(nEnd.QuadPart, kMaxBytes)) : 0;
}

// A whole file by its path, of which no more than the head is read if that is no picture's. FileNotFound,
// AccessDenied; GenericError for what can't be read; OutOfMemory for more than MAX_IMAGE_BYTES.
Status ReadWhole(const WCHAR* pszPath, File& file)
{
    const auto path = kx::files::ToSystem(ToCodePage(pszPath).c_str());
    if (!path) return StatusOf(GetLastError());
    kx::files::FileContent content;
    if (const DWORD error = kx::files::ReadFileHead(*path, HEAD_BYTES, content)) return StatusOf(error);
    const Status status = CheckHead(kx::gdi::BytesOf(content.bytes));
    if (status != Ok) return status;
    if (static_cast<std::uint64_t>(content.status.st_size) > kMaxBytes) return OutOfMemory;
    if (const DWORD error = kx::files::ReadWholeFile(*path, kMaxBytes, content)) return StatusOf(error);
    file = std::make_shared<const std::vector<std::uint8_t>>(content.bytes.begin(), content.bytes.end());
    return Ok;
}

// Reads at most so many bytes more; `bMore` tells whether the stream may have others.
Status ReadOn(IStream& stream, std::size_t nAsk, std::vector<std::uint8_t>& bytes, bool& bMore)
{
    const std::size_t nFilled = bytes.size();
    bytes.resize(nFilled + nAsk);
    ULONG nRead = 0;
    const HRESULT hr = stream.Read(bytes.data() + nFilled, static_cast<ULONG>(nAsk), &nRead);
    if (FAILED(hr) || nRead > nAsk) return GenericError;
    bytes.resize(nFilled + nRead);
    bMore = hr == S_OK && nRead > 0;
    return bytes.size() > kMaxBytes ? OutOfMemory : Ok;
}

// A stream from its beginning to where it gives no more, in the same way.
Status ReadWhole(IStream& stream, File& file)
{
    const std::size_t nHint = Hint(stream);
    if (FAILED(stream.Seek({0}, STREAM_SEEK_SET, nullptr))) return GenericError;
    std::vector<std::uint8_t> bytes;
    bool bMore = true;
    Status status = Ok;
    while (bMore && status == Ok && bytes.size() < HEAD_BYTES)
        status = ReadOn(stream, HEAD_BYTES - bytes.size(), bytes, bMore);
    if (status == Ok) status = CheckHead(bytes);
    while (bMore && status == Ok) {
        // One more than is expected, to be told of the end.
        const std::size_t nAsk =
            bytes.size() <= nHint ? nHint - bytes.size() + 1 : std::max(kStep, bytes.size() / 2);
        status = ReadOn(stream, nAsk, bytes, bMore);
    }
    if (status == Ok) file = std::make_shared<const std::vector<std::uint8_t>>(std::move(bytes));
    return status;
}

const char* ReasonOf(Status status) noexcept
{
    if (*kx::gdi::LastRefusal()) return kx::gdi::LastRefusal();
    switch (status) {
    case UnknownImageFormat:
        return "it is no picture of a known format";
    case FileNotFound:
        return "it isn't there";
    case AccessDenied:
        return "it may not be read";
    case OutOfMemory:
        return "it is too large";
    default:
        return "its content is damaged";
    }
}

// The status, told to who listens where it is a refusal.
Status Told(Status status, const std::string& name) noexcept
{
    if (status != Ok)
        kx::debug::Tell("picture", "%s is refused: %s; the picture stays empty", name.c_str(),
                        ReasonOf(status));
    return status;
}

// All pictures are bitmaps, whichever of both a call gives.
template <class Result>
GpStatus FromBytes(const File& file, StreamRef stream, Result** ppImage)
{
    std::optional<Picture> picture;
    const GpStatus status = Decode(file, picture);
    return status == Ok ? Give<GpBitmap>(ppImage, std::move(*picture), std::move(stream)) : status;
}

template <class Result>
GpStatus FromFile(const WCHAR* pszPath, Result** ppImage) noexcept
{
    return MakeObject(ppImage, [&] {
        if (!pszPath) return InvalidParameter;
        File file;
        kx::gdi::NoteRefusal("");
        GpStatus status = ReadWhole(pszPath, file);
        if (status == Ok) status = FromBytes(file, nullptr, ppImage);
        return kx::debug::Wants("picture") ? Told(status, ToCodePage(pszPath)) : status;
    });
}

template <class Result>
GpStatus FromStream(IStream* pStream, Result** ppImage) noexcept
{
    return MakeObject(ppImage, [&] {
        if (!pStream) return InvalidParameter;
        File file;
        kx::gdi::NoteRefusal("");
        GpStatus status = ReadWhole(*pStream, file);
        if (status == Ok) status = FromBytes(file, Refer(pStream), ppImage);
        return kx::debug::Wants("picture") ? Told(status, kx::debug::StreamName::Get()) : status;
    });
}

GpStatus OverCallerPixels(INT nWidth, INT nHeight, INT nStride, Alpha alpha, BYTE* pScan0,
                          GpBitmap** ppBitmap)
{
    const bool bAligned = nStride % 4 == 0 && reinterpret_cast<std::uintptr_t>(pScan0) % 4 == 0;
    if (!bAligned || nStride / 4 < nWidth) return InvalidParameter;
    return Give<GpBitmap>(ppBitmap,
                          PixelView{reinterpret_cast<DWORD*>(pScan0), nStride / 4, nWidth, nHeight, alpha});
}

GpStatus OfOwnPixels(INT nWidth, INT nHeight, PixelFormat format, Alpha alpha, GpBitmap** ppBitmap)
{
    auto surface = kx::gdi::Surface::Make(nWidth, nHeight);
    if (!surface) return OutOfMemory;
    return Give<GpBitmap>(ppBitmap, Picture{std::move(*surface), alpha, format});
}

} // namespace

GpStatus GdipLoadImageFromFile(const WCHAR* pszPath, GpImage** ppImage)
{
    return FromFile(pszPath, ppImage);
}

GpStatus GdipLoadImageFromStream(IStream* pStream, GpImage** ppImage)
{
    return FromStream(pStream, ppImage);
}

GpStatus GdipLoadImageFromStreamICM(IStream* pStream, GpImage** ppImage)
{
    return FromStream(pStream, ppImage);
}

GpStatus GdipCreateBitmapFromFile(const WCHAR* pszPath, GpBitmap** ppBitmap)
{
    return FromFile(pszPath, ppBitmap);
}

GpStatus GdipCreateBitmapFromStream(IStream* pStream, GpBitmap** ppBitmap)
{
    return FromStream(pStream, ppBitmap);
}

GpStatus GdipCreateBitmapFromHBITMAP(HBITMAP hBitmap, void*, GpBitmap** ppBitmap)
{
    return MakeObject(ppBitmap, [&] {
        const auto bitmap = kx::gdi::FindAs<kx::gdi::Bitmap>(hBitmap);
        if (!bitmap) return InvalidParameter;
        kx::gdi::Surface& from = bitmap->surface;
        const GpStatus status = CheckSize(from.Width(), from.Height());
        if (status != Ok) return status;
        auto surface = CopyPixels(ViewOf(from, Alpha::Opaque));
        if (!surface) return OutOfMemory;
        return Give<GpBitmap>(ppBitmap,
                              Picture{std::move(*surface), Alpha::Opaque, FormatOfDepth(bitmap->depth)});
    });
}

GpStatus GdipCreateBitmapFromScan0(INT nWidth, INT nHeight, INT nStride, PixelFormat format, BYTE* pScan0,
                                   GpBitmap** ppBitmap)
{
    return MakeObject(ppBitmap, [&] {
        if (nWidth <= 0 || nHeight <= 0) return InvalidParameter;
        const GpStatus status = CheckSize(nWidth, nHeight);
        if (status != Ok) return status;
        if (format != PixelFormat32bppRGB && format != PixelFormat32bppARGB) return NotImplemented;
        const Alpha alpha = format == PixelFormat32bppRGB ? Alpha::Opaque : Alpha::Straight;
        return pScan0 ? OverCallerPixels(nWidth, nHeight, nStride, alpha, pScan0, ppBitmap)
                      : OfOwnPixels(nWidth, nHeight, format, alpha, ppBitmap);
    });
}

GpStatus GdipDisposeImage(GpImage* pImage)
{
    return EndObject(pImage);
}

} // namespace Gdiplus::DllExports
