#include "platform/gdiplus/codecs/TiffFile.h"

#include "internal/Debug.h"
#include "platform/Errno.h"
#include "platform/gdi/ImageFile.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <new>
#include <vector>

namespace kx::gdiplus::codecs {

namespace {

TiffMemory& Of(thandle_t handle) noexcept
{
    return *static_cast<TiffMemory*>(handle);
}

std::uint64_t SizeOf(thandle_t handle) noexcept
{
    const TiffMemory& memory = Of(handle);
    return memory.target ? memory.target->size() : memory.bytes.size();
}

tmsize_t Read(thandle_t handle, void* target, tmsize_t nBytes) noexcept
{
    TiffMemory& memory = Of(handle);
    const std::uint64_t nSize = SizeOf(handle);
    const std::uint64_t nThere = memory.at < nSize ? nSize - memory.at : 0;
    const std::size_t nRead = std::min<std::uint64_t>(static_cast<std::uint64_t>(nBytes), nThere);
    const std::uint8_t* const from = memory.target ? memory.target->data() : memory.bytes.data();
    if (nRead > 0) std::memcpy(target, from + memory.at, nRead);
    memory.at += nRead;
    return static_cast<tmsize_t>(nRead);
}

tmsize_t Write(thandle_t handle, void* bytes, tmsize_t nBytes) noexcept
try {
    TiffMemory& memory = Of(handle);
    const auto nCount = static_cast<std::size_t>(nBytes);
    if (!memory.target || nCount == 0) return 0;
    if (memory.target->size() < memory.at + nCount) memory.target->resize(memory.at + nCount);
    std::memcpy(memory.target->data() + memory.at, bytes, nCount);
    memory.at += nCount;
    return nBytes;
} catch (const std::bad_alloc&) {
    return -1; // nothing is thrown through the library
}

toff_t Seek(thandle_t handle, toff_t nMove, int nOrigin) noexcept
{
    TiffMemory& memory = Of(handle);
    if (nOrigin == SEEK_CUR) nMove += memory.at;
    if (nOrigin == SEEK_END) nMove += SizeOf(handle);
    return memory.at = nMove;
}

int OnError(TIFF*, void*, const char*, const char* pszFormat, va_list args) noexcept
{
    if (!debug::Wants("picture")) return 1;
    std::array<char, 128> text;
    std::vsnprintf(text.data(), text.size(), pszFormat, args);
    gdi::NoteRefusal(text.data());
    return 1;
}

int Silent(TIFF*, void*, const char*, const char*, va_list) noexcept
{
    return 1;
}

struct FreeOptions
{
    void operator()(TIFFOpenOptions* p) const noexcept { TIFFOpenOptionsFree(p); }
};

} // namespace

TiffHandle OpenTiff(TiffMemory& memory, const char* pszMode, std::int64_t nMaxBlock)
{
    NeedRoom();
    const std::unique_ptr<TIFFOpenOptions, FreeOptions> options(TIFFOpenOptionsAlloc());
    if (!options) return nullptr;
    TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), nMaxBlock);
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), OnError, nullptr);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), Silent, nullptr);
    return TiffHandle(TIFFClientOpenExt(
        "", pszMode, &memory, Read, Write, Seek, [](thandle_t) { return 0; }, SizeOf, nullptr, nullptr,
        options.get()));
}

} // namespace kx::gdiplus::codecs
