#pragma once

#include "platform/gdiplus/Decode.h"
#include "platform/gdiplus/codecs/GifIndex.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace kx::gdiplus::codecs {

// More than a byte of a GIF can be: the longest run that a code of 12 bits stands for makes it 2,560.
inline constexpr std::int64_t MAX_GIF_PIXELS_PER_BYTE = 4096;
// Later ones don't count: a file of empty frames would take five times its size to index.
inline constexpr std::size_t MAX_GIF_FRAMES = 65'536;

// The end of a GIF's frame, when its time is over.
enum class Disposal
{
    Stay,   // 0, 1 and unknown numbers
    Clear,  // 2: its block becomes transparent
    Restore // 3: its block becomes what it was before
};

struct GifFrame
{
    std::size_t dataAt = 0;    // of the size of its codes, and its blocks behind that
    std::size_t paletteAt = 0; // its own, or the one that all share
    int colors = 0;            // of the palette; 0 without one
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    int transparent = -1; // index of the colour that leaves what is below, if any
    Disposal disposal = Disposal::Stay;
    WORD delay = 0; // hundredths of a second
    bool interlaced = false;

    std::size_t Pixels() const noexcept
    {
        return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    }
};

// The places of a GIF's frames.
struct GifIndex
{
    int width = 0;
    int height = 0;
    std::vector<GifFrame> frames;
};

// The frames whose blocks are all there, up to the first that isn't, has no pixel or too many, or claims more
// than 65,536 and more than its data can be. Of a file that is cut in its first frame that one counts. Passes
// over the blocks without decoding them. Nothing without a frame.
std::optional<GifIndex> ReadGifIndex(FileBytes file);

// The data that all players of a GIF read.
struct GifSource
{
    // Throws std::bad_alloc.
    GifSource(File of, GifIndex all);

    const File file;
    const GifIndex index;
    std::vector<BYTE> indices; // room for those of the largest frame
};

// Plays a GIF onto a surface of its size, from the first frame on.
class GifCanvas
{
public:
    // Stands before the first frame, with a surface of zeros. Throws std::bad_alloc.
    explicit GifCanvas(const GifIndex& index);

    // The frame that the surface shows; -1 before the first.
    int Shown() const noexcept { return m_nShown; }
    // No pixel of the surface is transparent.
    bool IsOpaque() const noexcept { return m_bOpaque; }
    // How many pixels it needs besides the surface.
    std::size_t SavedPixels() const noexcept { return m_saved.size(); }

    // Goes on to the next frame, which there must be, and decodes that one alone. Gives how many of its rows
    // could be decoded.
    int PlayNext(GifSource& source, gdi::Surface& surface) noexcept;
    // Stands before the first frame again.
    void Rewind(gdi::Surface& surface) noexcept;
    // The surface shows another frame than this left there.
    void Assume(int nFrame, bool bOpaque) noexcept;

private:
    int Show(const GifFrame& frame, GifSource& source, gdi::Surface& surface) noexcept;
    void Dispose(const GifFrame& frame, gdi::Surface& surface) noexcept;
    void Save(const GifFrame& frame, const gdi::Surface& surface) noexcept;

    std::vector<DWORD> m_saved; // room for what the largest frame that will be undone covers
    int m_nShown = -1;
    bool m_bOpaque = false;
    bool m_bSavedOpaque = false; // it was before the frame that will be undone
};

} // namespace kx::gdiplus::codecs
