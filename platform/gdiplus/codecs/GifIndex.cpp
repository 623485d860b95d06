#include "platform/gdiplus/codecs/GifIndex.h"

#include "platform/gdi/ImageFile.h"

#include <algorithm>

namespace kx::gdiplus::codecs {

namespace {

using gdi::U16;

constexpr std::size_t kHeader = 13;
constexpr std::size_t kDescriptor = 10;
constexpr BYTE kImage = ',', kExtension = '!';
constexpr BYTE kControl = 0xF9;
constexpr std::int64_t kFreePixels = std::int64_t{1} << 16;

class Scanner
{
public:
    explicit Scanner(FileBytes file) noexcept : m_file(file) {}

    std::optional<GifIndex> Run()
    {
        if (m_file.size() < kHeader) return std::nullopt;
        m_index.width = U16(m_file, 6);
        m_index.height = U16(m_file, 8);
        m_at = kHeader;
        ReadPalette(m_file[10], m_next);
        while (ReadBlock()) {
        }
        return std::move(m_index);
    }

private:
    // Leaves the frame as it is where there is none.
    void ReadPalette(BYTE flags, GifFrame& frame) noexcept
    {
        if (!(flags & 0x80)) return;
        frame.paletteAt = m_at;
        frame.colors = 2 << (flags & 7);
        m_at += 3 * static_cast<std::size_t>(frame.colors);
    }
    bool Has(std::size_t nBytes) const noexcept
    {
        return m_at <= m_file.size() && nBytes <= m_file.size() - m_at;
    }

    // False at the end, at a frame that is cut, and at what is no block.
    bool ReadBlock()
    {
        if (!Has(2)) return false;
        if (m_file[m_at] == kImage) return ReadFrame();
        return m_file[m_at] == kExtension && ReadExtension();
    }

    bool ReadFrame()
    {
        if (!Has(kDescriptor)) return false;
        GifFrame frame = m_next;
        frame.left = U16(m_file, m_at + 1);
        frame.top = U16(m_file, m_at + 3);
        frame.width = U16(m_file, m_at + 5);
        frame.height = U16(m_file, m_at + 7);
        const BYTE flags = m_file[m_at + 9];
        frame.interlaced = (flags & 0x40) != 0;
        m_at += kDescriptor;
        ReadPalette(flags, frame);
        if (!Has(1)) return false;
        frame.dataAt = m_at++;
        const bool bWhole = SkipSubBlocks();
        m_at = std::min(m_at, m_file.size());
        if ((!bWhole && !m_index.frames.empty()) || !IsSound(frame)) return false;
        if (m_index.frames.size() == MAX_GIF_FRAMES) return false;
        m_index.frames.push_back(frame);
        m_next.transparent = -1;
        m_next.disposal = Disposal::Stay;
        m_next.delay = 0;
        return bWhole;
    }

    bool IsSound(const GifFrame& frame) const noexcept
    {
        const auto nPixels = static_cast<std::int64_t>(frame.Pixels());
        const auto nBytes = static_cast<std::int64_t>(m_at - frame.dataAt);
        const bool bAbsurd = nPixels > kFreePixels && nPixels / MAX_GIF_PIXELS_PER_BYTE > nBytes;
        return nPixels > 0 && nPixels <= Gdiplus::MAX_IMAGE_PIXELS && !bAbsurd;
    }

    bool ReadExtension()
    {
        const BYTE label = m_file[m_at + 1];
        m_at += 2;
        if (label == kControl && Has(5) && m_file[m_at] >= 4) ReadControl(m_file.subspan(m_at + 1, 4));
        return SkipSubBlocks();
    }

    void ReadControl(FileBytes control) noexcept
    {
        constexpr Disposal kDisposals[] = {Disposal::Stay, Disposal::Stay, Disposal::Clear,
                                           Disposal::Restore};
        const unsigned nDisposal = control[0] >> 2 & 7u;
        m_next.disposal = nDisposal < std::size(kDisposals) ? kDisposals[nDisposal] : Disposal::Stay;
        m_next.delay = U16(control, 1);
        m_next.transparent = control[0] & 1 ? control[3] : -1;
    }

    // False unless they end before the file does.
    bool SkipSubBlocks() noexcept
    {
        while (Has(1)) {
            const std::size_t nSize = m_file[m_at++];
            if (nSize == 0) return true;
            m_at += nSize;
        }
        return false;
    }

    FileBytes m_file;
    std::size_t m_at = 0;
    GifFrame m_next; // what is known before its descriptor comes
    GifIndex m_index;
};

} // namespace

std::optional<GifIndex> ReadGifIndex(FileBytes file)
{
    auto index = Scanner(file).Run();
    if (!index || index->frames.empty()) return std::nullopt;
    // Some writers leave the size of the whole to the first frame.
    const GifFrame& first = index->frames.front();
    if (index->width == 0) index->width = first.left + first.width;
    if (index->height == 0) index->height = first.top + first.height;
    return index;
}

} // namespace kx::gdiplus::codecs
