#pragma once

#include "platform/gdiplus/GifCodes.h"
#include "platform/gdiplus/GifIndex.h"

#include <memory>
#include <vector>

namespace kx::gdiplus {

// Plays a GIF onto a surface. A step to the next frame decodes that one alone; a step back plays from the
// first again. From the first such step on what the frames show is kept, unless that is too much, so that one
// that plays over and over is decoded twice.
class GifFrames : public Frames
{
public:
    GifFrames(File file, GifIndex index);

    unsigned Count() const noexcept override { return static_cast<unsigned>(m_index.frames.size()); }
    Gdiplus::Status Select(unsigned nFrame, gdi::Surface& surface, Alpha& alpha) override;
    std::optional<Property> FindProperty(Gdiplus::PROPID id) const override;

    // How many rows of the first frame could be decoded when it was selected.
    int FirstRows() const noexcept { return m_nFirstRows; }

private:
    struct Kept
    {
        gdi::Surface surface;
        bool bOpaque;
    };

    bool FitsKept(const gdi::Surface& surface) const noexcept;
    void Keep(const gdi::Surface& surface) noexcept;
    void PutKept(int nFrame, gdi::Surface& surface) noexcept;
    void Restart(gdi::Surface& surface) noexcept;
    void Show(const GifFrame& frame, gdi::Surface& surface) noexcept;
    void Dispose(const GifFrame& frame, gdi::Surface& surface) noexcept;
    void Save(const GifFrame& frame, const gdi::Surface& surface) noexcept;

    const File m_file;
    const GifIndex m_index;
    GifIndices m_indices;       // room for the largest frame
    std::vector<DWORD> m_saved; // room for what the largest frame that will be undone covers
    std::vector<Kept> m_kept;   // the first frames, as they show
    bool m_bKeeps = false;
    int m_nFirstRows = 0;
    int m_nShown = -1;           // the frame on the surface
    bool m_bOpaque = false;      // no pixel of the surface is transparent
    bool m_bSavedOpaque = false; // nor was before the frame that will be undone
};

} // namespace kx::gdiplus
