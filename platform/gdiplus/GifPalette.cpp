#include "platform/gdiplus/GifPalette.h"

#include "platform/gdiplus/ColorCut.h"
#include "platform/gdiplus/EncodedRows.h"

#include <algorithm>
#include <array>

namespace kx::gdiplus {

namespace {

constexpr std::size_t kMaxColors = 256;
constexpr DWORD kTransparent = 0xFFFFFFFF; // marks a pixel without a colour

// The numbers of up to 256 colours, in the order in which they were first asked for.
class ColorNumbers
{
public:
    explicit ColorNumbers(std::size_t nMax) : m_nMax(nMax) { m_slots.fill(-1); }

    // -1 for one too many.
    int Of(DWORD color)
    {
        std::size_t slot = (color * 2654435761u) >> 22;
        for (; m_slots[slot] >= 0; slot = (slot + 1) % m_slots.size())
            if (m_colors[static_cast<std::size_t>(m_slots[slot])] == color) return m_slots[slot];
        if (m_colors.size() == m_nMax) return -1;
        m_slots[slot] = static_cast<int>(m_colors.size());
        m_colors.push_back(color);
        return m_slots[slot];
    }
    const std::vector<DWORD>& Colors() const noexcept { return m_colors; }

private:
    const std::size_t m_nMax;
    std::array<int, 1024> m_slots;
    std::vector<DWORD> m_colors;
};

std::size_t PixelCount(const PixelView& view) noexcept
{
    return static_cast<std::size_t>(view.width) * static_cast<std::size_t>(view.height);
}

// Calls `take(color)` for each pixel until it gives false.
template <class Take>
bool ForEachColor(const PixelView& view, Take&& take)
{
    RowsOverBlack rows(view);
    for (int y = 0; y < view.height; ++y) {
        const DWORD *const row = view.Row(y), *const overBlack = rows.Row(y);
        for (int x = 0; x < view.width; ++x) {
            const bool bSeen = view.alpha == Alpha::Opaque || row[x] >> 31 != 0;
            if (!take(bSeen ? overBlack[x] & gdi::COLOR_BITS : kTransparent)) return false;
        }
    }
    return true;
}

bool TakeExactly(const PixelView& view, std::size_t nMax, IndexedPicture& picture)
{
    ColorNumbers numbers(nMax);
    std::size_t at = 0;
    const bool bFits = ForEachColor(view, [&](DWORD color) {
        const int nNumber = color == kTransparent ? picture.transparent : numbers.Of(color);
        picture.indices[at++] = static_cast<std::uint8_t>(nNumber);
        return nNumber >= 0;
    });
    picture.colors = numbers.Colors();
    return bFits;
}

void Reduce(const PixelView& view, std::size_t nMax, IndexedPicture& picture)
{
    ColorCut cut;
    ForEachColor(view, [&](DWORD color) {
        if (color != kTransparent) cut.Count(color);
        return true;
    });
    picture.colors = cut.Cut(nMax);
    std::size_t at = 0;
    ForEachColor(view, [&](DWORD color) {
        picture.indices[at++] =
            color == kTransparent ? static_cast<std::uint8_t>(picture.transparent) : cut.NumberOf(color);
        return true;
    });
}

} // namespace

IndexedPicture ToIndices(const PixelView& view)
{
    IndexedPicture picture;
    const bool bTransparent = !ForEachColor(view, [](DWORD color) { return color != kTransparent; });
    const std::size_t nMax = bTransparent ? kMaxColors - 1 : kMaxColors;
    if (bTransparent) picture.transparent = static_cast<int>(nMax);
    picture.indices.resize(PixelCount(view));
    if (!TakeExactly(view, nMax, picture)) Reduce(view, nMax, picture);
    return picture;
}

} // namespace kx::gdiplus
