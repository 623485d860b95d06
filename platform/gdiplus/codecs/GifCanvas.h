#pragma once

#include "platform/gdiplus/codecs/GifIndex.h"

#include <cstddef>
#include <utility>
#include <vector>

namespace kx::gdiplus::codecs {

// What all who play a GIF read.
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
