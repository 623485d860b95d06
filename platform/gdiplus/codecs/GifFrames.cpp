#include "platform/gdiplus/codecs/Codecs.h"
#include "platform/gdiplus/codecs/GifIndex.h"

#include <algorithm>
#include <new>
#include <utility>

namespace kx::gdiplus::codecs {

namespace {

// How many players of one picture keep their places, at most.
constexpr std::size_t kMaxWaiting = 64;

void CopyPixels(const gdi::Surface& from, gdi::Surface& to) noexcept
{
    for (int y = 0; y < from.Height(); ++y)
        std::copy_n(from.Row(y), from.Width(), to.Row(y));
}

// A step to the next frame decodes that one alone. From the first step back on, what the frames show is kept,
// unless that is too much: then several players of the picture, each at another frame, have a canvas each, as
// long as these are not too much.
class GifFrames final : public Frames
{
public:
    // At the first frame, of which `nRows` could be decoded. Throws std::bad_alloc.
    GifFrames(File file, GifIndex index, gdi::Surface& surface, int& nRows)
        : m_source(std::move(file), std::move(index)),
          m_canvas(m_source.index),
          m_bFitsKept(std::int64_t{surface.Width()} * surface.Height() * static_cast<std::int64_t>(Count()) <=
                      Gdiplus::MAX_KEPT_FRAMES_PIXELS)
    {
        nRows = m_canvas.PlayNext(m_source, surface);
    }

    unsigned Count() const noexcept override { return static_cast<unsigned>(m_source.index.frames.size()); }
    Gdiplus::Status Select(unsigned nFrame, gdi::Surface& surface, Alpha& alpha) override;
    std::optional<Property> FindProperty(Gdiplus::PROPID id) const override;
    Alpha HighByte() const noexcept { return m_canvas.IsOpaque() ? Alpha::Opaque : Alpha::Straight; }

private:
    struct Kept
    {
        gdi::Surface surface;
        bool bOpaque;
    };
    struct Player
    {
        GifCanvas canvas;
        gdi::Surface surface;
        unsigned nTurn; // when it last had one
    };

    bool IsAtLast(const GifCanvas& canvas) const noexcept
    {
        return canvas.Shown() + 1 == static_cast<int>(Count());
    }
    void Keep(const gdi::Surface& surface) noexcept;
    void PutKept(int nFrame, gdi::Surface& surface) noexcept;
    void TakeTurn(int nWanted, gdi::Surface& surface) noexcept;
    void StartOver(gdi::Surface& surface) noexcept;
    void Change(Player& player, gdi::Surface& surface) noexcept;
    bool AddWaiting(const gdi::Surface& surface) noexcept;

    GifSource m_source;
    GifCanvas m_canvas; // of the picture's surface
    const bool m_bFitsKept;
    bool m_bKeeps = false;
    std::vector<Kept> m_kept;      // the first frames, as they show
    std::vector<Player> m_waiting; // for their turn at the picture
    unsigned m_nTurns = 0;
};

Gdiplus::Status GifFrames::Select(unsigned nFrame, gdi::Surface& surface, Alpha& alpha)
{
    const int nWanted = static_cast<int>(nFrame);
    if (nWanted < m_canvas.Shown() && m_kept.empty()) {
        m_bKeeps = m_bFitsKept;
        if (m_bKeeps) m_canvas.Rewind(surface);
    }
    const int nKept = static_cast<int>(m_kept.size());
    if (nKept > 0 && m_canvas.Shown() != std::min(nWanted, nKept - 1))
        PutKept(std::min(nWanted, nKept - 1), surface);
    if (!m_bFitsKept) TakeTurn(nWanted, surface);
    if (nWanted < m_canvas.Shown()) m_canvas.Rewind(surface);
    while (m_canvas.Shown() < nWanted) {
        m_canvas.PlayNext(m_source, surface);
        if (m_bKeeps) Keep(surface);
    }
    alpha = HighByte();
    return Gdiplus::Ok;
}

// Frames are kept in their order from the first on, so the last one kept is the last one decoded: what was
// saved of it still holds.
void GifFrames::Keep(const gdi::Surface& surface) noexcept
{
    try {
        if (auto copy = gdi::Surface::Make(surface.Width(), surface.Height())) {
            CopyPixels(surface, *copy);
            m_kept.push_back({std::move(*copy), m_canvas.IsOpaque()});
            return;
        }
    } catch (const std::bad_alloc&) { // goes on without
    }
    m_kept.clear();
    m_bKeeps = false;
}

void GifFrames::PutKept(int nFrame, gdi::Surface& surface) noexcept
{
    const Kept& kept = m_kept[static_cast<std::size_t>(nFrame)];
    CopyPixels(kept.surface, surface);
    m_canvas.Assume(nFrame, kept.bOpaque);
}

// Gives the picture to the player that stands nearest before the frame.
void GifFrames::TakeTurn(int nWanted, gdi::Surface& surface) noexcept
{
    Player* pNearest = nullptr;
    const bool bCurrent = m_canvas.Shown() <= nWanted;
    int nNearest = bCurrent ? m_canvas.Shown() : -2;
    for (Player& player : m_waiting) {
        const int nShown = player.canvas.Shown();
        if (nShown > nWanted || nShown <= nNearest) continue;
        pNearest = &player;
        nNearest = nShown;
    }
    if (pNearest)
        Change(*pNearest, surface);
    else if (!bCurrent)
        StartOver(surface);
}

// At the last frame a player needs its place no more; else there is room for another player, or the one goes
// whose turn was longest ago.
void GifFrames::StartOver(gdi::Surface& surface) noexcept
{
    if (!IsAtLast(m_canvas)) {
        auto player = std::find_if(m_waiting.begin(), m_waiting.end(),
                                   [this](const Player& p) { return IsAtLast(p.canvas); });
        if (player == m_waiting.end() && AddWaiting(surface)) player = m_waiting.end() - 1;
        if (player == m_waiting.end())
            player = std::min_element(m_waiting.begin(), m_waiting.end(),
                                      [](const Player& a, const Player& b) { return a.nTurn < b.nTurn; });
        if (player != m_waiting.end()) Change(*player, surface);
    }
    m_canvas.Rewind(surface);
}

void GifFrames::Change(Player& player, gdi::Surface& surface) noexcept
{
    std::swap(player.canvas, m_canvas);
    std::swap(player.surface, surface);
    player.nTurn = ++m_nTurns;
}

bool GifFrames::AddWaiting(const gdi::Surface& surface) noexcept
try {
    const std::size_t nPixels =
        static_cast<std::size_t>(surface.Width()) * static_cast<std::size_t>(surface.Height()) +
        m_canvas.SavedPixels();
    if (m_waiting.size() == kMaxWaiting || (m_waiting.size() + 1) * nPixels > Gdiplus::MAX_KEPT_FRAMES_PIXELS)
        return false;
    auto fresh = gdi::Surface::Make(surface.Width(), surface.Height());
    if (fresh) m_waiting.push_back({GifCanvas(m_source.index), std::move(*fresh), 0});
    return fresh.has_value();
} catch (const std::bad_alloc&) {
    return false;
}

std::optional<Property> GifFrames::FindProperty(Gdiplus::PROPID id) const
{
    if (id != Gdiplus::PropertyTagFrameDelay) return std::nullopt;
    Property property{Gdiplus::PropertyTagTypeLong, {}};
    for (const GifFrame& frame : m_source.index.frames) {
        const DWORD nDelay = frame.delay;
        const auto* const bytes = reinterpret_cast<const std::uint8_t*>(&nDelay);
        property.value.insert(property.value.end(), bytes, bytes + sizeof nDelay);
    }
    return property;
}

} // namespace

Gdiplus::Status ReadGif(const File& file, std::optional<Picture>& picture)
{
    auto index = ReadGifIndex(*file);
    if (!index) return Gdiplus::GenericError;
    const Gdiplus::Status status = CheckSize(index->width, index->height);
    if (status != Gdiplus::Ok) return status;
    if (IsAbsurd(std::int64_t{index->width} * index->height, file->size(), MAX_GIF_PIXELS_PER_BYTE))
        return Gdiplus::GenericError;
    auto surface = gdi::Surface::Make(index->width, index->height);
    if (!surface) return Gdiplus::OutOfMemory;
    int nRows = 0;
    auto frames = std::make_unique<GifFrames>(file, std::move(*index), *surface, nRows);
    if (nRows == 0) return Gdiplus::GenericError;
    picture = Picture{std::move(*surface), frames->HighByte(), Gdiplus::PixelFormat8bppIndexed, nullptr,
                      Gdiplus::FrameDimensionTime};
    if (frames->Count() > 1) picture->frames = std::move(frames);
    return Gdiplus::Ok;
}

} // namespace kx::gdiplus::codecs
