#include "include/platform/Error.h"
#include "platform/files/Path.h"
#include "platform/files/WholeFile.h"
#include "platform/gdiplus/Calls.h"
#include "platform/gdiplus/Encode.h"
#include "platform/gdiplus/Image.h"

#include <algorithm>

using namespace kx::gdiplus;

namespace Gdiplus::DllExports {

namespace {

// Replaces a file as a whole, or makes it.
Status SaveFile(const WCHAR* pszPath, const Bytes& bytes)
{
    const auto named = kx::files::Resolve(ToCodePage(pszPath).c_str());
    if (!named) return StatusOf(GetLastError());
    if (named->trailing || named->root) return AccessDenied;
    const DWORD dwError = kx::files::ReplaceWholeFile(
        named->system, {reinterpret_cast<const char*>(bytes.data()), bytes.size()}, 0666);
    return dwError == ERROR_SUCCESS ? Ok : StatusOf(dwError);
}

// Encodes before anything is written, so that what can't be encoded leaves nothing behind.
template <class Put>
GpStatus Save(GpImage* pImage, const void* pTarget, const CLSID* pEncoder, Put&& put) noexcept
{
    return Guarded([&] {
        if (!pImage || !pTarget || !pEncoder) return InvalidParameter;
        const Encoder* const encoder = FindEncoder(*pEncoder);
        if (!encoder) return UnknownImageFormat;
        Bytes file;
        const GpStatus status = Encode(*encoder, pImage->Pixels(), file);
        return status == Ok ? put(file) : status;
    });
}

GpStatus PutInto(IStream& stream, const Bytes& file)
{
    constexpr std::size_t kStep = std::size_t{1} << 30;
    for (std::size_t at = 0; at < file.size();) {
        const auto nStep = static_cast<ULONG>(std::min(file.size() - at, kStep));
        ULONG nWritten = 0;
        const HRESULT hr = stream.Write(file.data() + at, nStep, &nWritten);
        if (FAILED(hr) || nWritten == 0 || nWritten > nStep) return GenericError;
        at += nWritten;
    }
    return Ok;
}

} // namespace

GpStatus GdipGetImageEncodersSize(UINT* pnCount, UINT* pnBytes)
{
    return Guarded([&] {
        if (!pnCount || !pnBytes) return InvalidParameter;
        *pnCount = static_cast<UINT>(Encoders().size());
        *pnBytes = static_cast<UINT>(Encoders().size() * sizeof(ImageCodecInfo));
        return Ok;
    });
}

GpStatus GdipGetImageEncoders(UINT nCount, UINT nBytes, ImageCodecInfo* pEncoders)
{
    return Guarded([&] {
        const auto encoders = Encoders();
        if (!pEncoders || nCount != encoders.size() || nBytes != encoders.size() * sizeof(ImageCodecInfo))
            return InvalidParameter;
        for (const Encoder& encoder : encoders)
            *pEncoders++ = encoder.info;
        return Ok;
    });
}

GpStatus GdipSaveImageToFile(GpImage* pImage, const WCHAR* pszPath, const CLSID* pEncoder,
                             const EncoderParameters*)
{
    return Save(pImage, pszPath, pEncoder, [&](const Bytes& file) { return SaveFile(pszPath, file); });
}

GpStatus GdipSaveImageToStream(GpImage* pImage, IStream* pStream, const CLSID* pEncoder,
                               const EncoderParameters*)
{
    return Save(pImage, pStream, pEncoder, [&](const Bytes& file) { return PutInto(*pStream, file); });
}

} // namespace Gdiplus::DllExports
