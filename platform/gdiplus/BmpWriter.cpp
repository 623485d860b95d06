#include "include/platform/Gdi.h"
#include "platform/gdi/Bitmap.h"
#include "platform/gdiplus/Encode.h"

#include <cstring>

namespace kx::gdiplus {

namespace {

constexpr std::size_t kHeaders = 14 + 40;
constexpr std::uint32_t kPixelsPerMetre = 3780; // 96 to the inch

// Puts little-endian numbers one behind the other.
class Header
{
public:
    explicit Header(std::uint8_t* at) noexcept : m_at(at) {}
    Header& Put(std::uint64_t value, int nBytes) noexcept
    {
        for (; nBytes > 0; --nBytes, value >>= 8)
            *m_at++ = static_cast<std::uint8_t>(value);
        return *this;
    }

private:
    std::uint8_t* m_at;
};

} // namespace

Gdiplus::Status WriteBmp(const PixelView& view, Bytes& file)
{
    const std::size_t nRow = gdi::RowBytes(view.width, 24, 32);
    const std::size_t nPixels = nRow * static_cast<std::size_t>(view.height);
    file.resize(kHeaders + nPixels);
    Header(file.data()).Put(0x4D42, 2).Put(file.size(), 4).Put(0, 4).Put(kHeaders, 4); // "BM"
    Header(file.data() + 14)
        .Put(40, 4)
        .Put(static_cast<std::uint32_t>(view.width), 4)
        .Put(static_cast<std::uint32_t>(view.height), 4)
        .Put(1, 2)
        .Put(24, 2)
        .Put(BI_RGB, 4)
        .Put(nPixels, 4)
        .Put(kPixelsPerMetre, 4)
        .Put(kPixelsPerMetre, 4)
        .Put(0, 8);
    RowsOverBlack rows(view);
    std::uint8_t* to = file.data() + kHeaders;
    for (int y = view.height; y-- > 0; to += nRow) {
        const DWORD* const row = rows.Row(y);
        for (int x = 0; x < view.width; ++x)
            std::memcpy(to + 3 * static_cast<std::size_t>(x), &row[x], 3);
    }
    return Gdiplus::Ok;
}

} // namespace kx::gdiplus
