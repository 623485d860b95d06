#include "platform/gdiplus/codecs/Codecs.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <gif_lib.h>
#include <memory>
#include <span>
#include <unordered_map>
#include <vector>

namespace kx::gdiplus::codecs {

namespace {

// Finds the colours that stand best for a picture's many: the block of them whose colours differ most, over
// all their pixels, is cut at its mean along the channel in which they do, again and again. Colours that have
// the upper six bits of each channel in common stay together. All are 0x00RRGGBB.
class ColorCut
{
public:
    // Throws std::bad_alloc.
    ColorCut() : m_cells(kCells) {}

    void Count(DWORD color) noexcept
    {
        Cell& cell = m_cells[CellOf(color)];
        for (std::size_t n = 0; n < cell.sums.size(); ++n)
            cell.sums[n] += color >> 8 * (2 - n) & 0xFF;
        ++cell.count;
    }
    // At most so many, up to 256, of what was counted. Throws std::bad_alloc.
    std::vector<DWORD> Cut(std::size_t nMax);
    // The number of the one that stands for a colour that was counted.
    std::uint8_t NumberOf(DWORD color) const noexcept { return m_cells[CellOf(color)].number; }

private:
    static constexpr std::size_t kCells = std::size_t{1} << 18;

    struct Cell
    {
        std::array<std::uint64_t, 3> sums; // of its pixels' channels, red first
        std::uint32_t count;
        std::uint8_t number;
    };
    struct ColorBox
    {
        explicit ColorBox(std::span<Cell*> of) noexcept;
        DWORD Mean() const noexcept;
        // The cells at or below the mean in its channel come first; gives how many.
        std::size_t Part() noexcept;

        std::span<Cell*> cells;
        std::array<double, 3> means{};
        std::size_t channel = 0; // in which they differ most
        double spread = 0;       // there: the sum of all pixels' squares of what they are off the mean
    };

    static constexpr std::size_t CellOf(DWORD color) noexcept
    {
        return (color >> 6 & 0x3F000) | (color >> 4 & 0xFC0) | (color >> 2 & 0x3F);
    }

    std::vector<Cell> m_cells;
};

ColorCut::ColorBox::ColorBox(std::span<Cell*> of) noexcept : cells(of)
{
    double count = 0;
    std::array<double, 3> sums{}, squares{};
    for (const Cell* cell : cells) {
        count += cell->count;
        for (std::size_t n = 0; n < sums.size(); ++n) {
            const auto sum = static_cast<double>(cell->sums[n]);
            sums[n] += sum;
            squares[n] += sum * sum / cell->count;
        }
    }
    for (std::size_t n = 0; n < sums.size(); ++n) {
        means[n] = sums[n] / count;
        const double off = squares[n] - sums[n] * means[n];
        if (off > spread) {
            spread = off;
            channel = n;
        }
    }
}

DWORD ColorCut::ColorBox::Mean() const noexcept
{
    DWORD color = 0;
    for (const double mean : means)
        color = color << 8 | static_cast<DWORD>(std::lround(mean));
    return color;
}

std::size_t ColorCut::ColorBox::Part() noexcept
{
    const auto low = std::partition(cells.begin(), cells.end(), [this](const Cell* cell) {
        return static_cast<double>(cell->sums[channel]) <= means[channel] * cell->count;
    });
    return static_cast<std::size_t>(low - cells.begin());
}

std::vector<DWORD> ColorCut::Cut(std::size_t nMax)
{
    std::vector<Cell*> used;
    for (Cell& cell : m_cells)
        if (cell.count > 0) used.push_back(&cell);
    std::vector<ColorBox> blocks;
    if (!used.empty()) blocks.emplace_back(used);
    while (!blocks.empty() && blocks.size() < nMax) {
        auto widest =
            std::max_element(blocks.begin(), blocks.end(),
                             [](const ColorBox& a, const ColorBox& b) { return a.spread < b.spread; });
        if (widest->spread == 0) break;
        const std::span<Cell*> cells = widest->cells;
        const std::size_t nLow = widest->Part();
        if (nLow == 0 || nLow == cells.size()) {
            widest->spread = 0; // that of rounding alone
            continue;
        }
        *widest = ColorBox(cells.first(nLow));
        blocks.emplace_back(cells.subspan(nLow));
    }
    std::vector<DWORD> colors;
    for (const ColorBox& block : blocks) {
        for (Cell* cell : block.cells)
            cell->number = static_cast<std::uint8_t>(colors.size());
        colors.push_back(block.Mean());
    }
    return colors;
}

// A picture as indices into at most 256 colours.
struct IndexedPicture
{
    std::vector<DWORD> colors; // 0x00RRGGBB
    int transparent = -1;      // its index, behind those of the colours, if there is one
    Bytes indices;             // the top row first
};

constexpr std::size_t kMaxColors = 256;
constexpr DWORD kTransparent = 0xFFFFFFFF; // marks a pixel without a colour

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

// False for more colours than that. They are numbered in the order in which they come.
bool TakeExactly(const PixelView& view, std::size_t nMax, IndexedPicture& picture)
{
    std::unordered_map<DWORD, std::uint8_t> numbers;
    std::size_t at = 0;
    return ForEachColor(view, [&](DWORD color) {
        if (color == kTransparent) {
            picture.indices[at++] = static_cast<std::uint8_t>(picture.transparent);
            return true;
        }
        const auto [number, bNew] = numbers.try_emplace(color, static_cast<std::uint8_t>(numbers.size()));
        if (bNew) picture.colors.push_back(color);
        picture.indices[at++] = number->second;
        return numbers.size() <= nMax;
    });
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

struct FreeMap
{
    void operator()(ColorMapObject* p) const noexcept { GifFreeMapObject(p); }
};
using Map = std::unique_ptr<ColorMapObject, FreeMap>;

struct CloseGif
{
    void operator()(GifFileType* p) const noexcept { EGifCloseFile(p, nullptr); }
};
using Gif = std::unique_ptr<GifFileType, CloseGif>;

// giflib goes on when the bytes of a colour map aren't taken.
struct Target
{
    Bytes& file;
    bool bWhole = true;
};

int Write(GifFileType* gif, const GifByteType* bytes, int nBytes) noexcept
{
    auto& target = *static_cast<Target*>(gif->UserData);
    target.bWhole &= Append(target.file, bytes, static_cast<std::size_t>(nBytes));
    return target.bWhole ? nBytes : 0;
}

// A power of two of colours, black behind those that there are.
Map ToMap(const IndexedPicture& picture) noexcept
{
    const int nHighest = std::max(picture.transparent, static_cast<int>(picture.colors.size()) - 1);
    Map map(GifMakeMapObject(1 << std::max(1, GifBitSize(nHighest + 1)), nullptr));
    for (std::size_t i = 0; map && i < picture.colors.size(); ++i)
        map->Colors[i] = {static_cast<GifByteType>(picture.colors[i] >> 16),
                          static_cast<GifByteType>(picture.colors[i] >> 8),
                          static_cast<GifByteType>(picture.colors[i])};
    return map;
}

bool PutTransparency(GifFileType* gif, int nTransparent) noexcept
{
    if (nTransparent < 0) return true;
    const GraphicsControlBlock block{DISPOSAL_UNSPECIFIED, false, 0, nTransparent};
    std::uint8_t bytes[4];
    return EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, static_cast<int>(EGifGCBToExtension(&block, bytes)),
                            bytes) == GIF_OK;
}

bool PutPixels(GifFileType* gif, Bytes& indices, int nWidth) noexcept
{
    for (std::size_t at = 0; at < indices.size(); at += static_cast<std::size_t>(nWidth))
        if (EGifPutLine(gif, indices.data() + at, nWidth) != GIF_OK) return false;
    return true;
}

} // namespace

Gdiplus::Status WriteGif(const PixelView& view, Bytes& file)
{
    IndexedPicture picture = ToIndices(view);
    const Map map = ToMap(picture);
    Target target{file};
    Gif gif(EGifOpen(&target, Write, nullptr));
    if (!map || !gif) return Gdiplus::OutOfMemory;
    EGifSetGifVersion(gif.get(), true);
    const bool bWritten =
        EGifPutScreenDesc(gif.get(), view.width, view.height, 8, 0, map.get()) == GIF_OK &&
        PutTransparency(gif.get(), picture.transparent) &&
        EGifPutImageDesc(gif.get(), 0, 0, view.width, view.height, false, nullptr) == GIF_OK &&
        PutPixels(gif.get(), picture.indices, view.width);
    const bool bEnded = EGifCloseFile(gif.release(), nullptr) == GIF_OK;
    return bWritten && bEnded && target.bWhole ? Gdiplus::Ok : Gdiplus::OutOfMemory;
}

} // namespace kx::gdiplus::codecs
