#include "platform/gdiplus/Source.h"

#include "include/platform/Error.h"
#include "platform/gdiplus/WidePath.h"
#include "platform/module/RegularFile.h"

#include <algorithm>

namespace kx::gdiplus {

namespace {

constexpr std::size_t kMaxBytes = std::size_t{Gdiplus::MAX_IMAGE_BYTES};
constexpr std::size_t kStep = std::size_t{1} << 16;

// How much there seems to be; the reads alone decide.
std::size_t Hint(IStream& stream)
{
    ULARGE_INTEGER nEnd{};
    const bool bKnown = SUCCEEDED(stream.Seek({0}, STREAM_SEEK_END, &nEnd));
    return bKnown ? static_cast<std::size_t>(std::min<std::uint64_t>(nEnd.QuadPart, kMaxBytes)) : 0;
}

} // namespace

Gdiplus::Status ReadWhole(const WCHAR* pszPath, File& file)
{
    const auto source = module::RegularFile::Open(ToCodePage(pszPath).c_str());
    if (!source) return StatusOf(GetLastError());
    if (source->Size() > kMaxBytes) return Gdiplus::OutOfMemory;
    auto bytes = source->Read(0, source->Size());
    if (!bytes) return Gdiplus::GenericError;
    file = std::make_shared<const std::vector<std::uint8_t>>(std::move(*bytes).Take());
    return Gdiplus::Ok;
}

Gdiplus::Status ReadWhole(IStream& stream, File& file)
{
    const std::size_t nHint = Hint(stream);
    if (FAILED(stream.Seek({0}, STREAM_SEEK_SET, nullptr))) return Gdiplus::GenericError;
    std::vector<std::uint8_t> bytes;
    for (std::size_t nFilled = 0;;) {
        // One more than is expected, to be told of the end.
        const std::size_t nAsk = nFilled <= nHint ? nHint - nFilled + 1 : std::max(kStep, nFilled / 2);
        bytes.resize(nFilled + nAsk);
        ULONG nRead = 0;
        const HRESULT hr = stream.Read(bytes.data() + nFilled, static_cast<ULONG>(nAsk), &nRead);
        if (FAILED(hr) || nRead > nAsk) return Gdiplus::GenericError;
        nFilled += nRead;
        if (nFilled > kMaxBytes) return Gdiplus::OutOfMemory;
        if (hr == S_OK && nRead > 0) continue;
        bytes.resize(nFilled);
        break;
    }
    file = std::make_shared<const std::vector<std::uint8_t>>(std::move(bytes));
    return Gdiplus::Ok;
}

} // namespace kx::gdiplus
