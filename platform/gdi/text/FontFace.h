#pragma once

#include "include/platform/Gdi.h"
#include "platform/gdi/text/FontFiles.h"

#include <array>
#include <cstddef>
#include <memory>
#include <unordered_map>
#include <vector>

namespace kx::gdi {

// One letter at one size: how far it moves on, and its coverage, 0 to 255 a pixel, placed from the pen's
// position on the base line. The coverage lies as it is blended: once for each colour of a pixel, and 0 for
// the pixel's high byte. Zeros fill each row up to whole blocks, and some follow the last, so that it may be
// read in blocks from any column.
struct Glyph
{
    static constexpr int BLOCK = 4; // pixels
    static constexpr std::size_t PADDING = 12;

    int advance = 0;
    int left = 0; // of the first column
    int top = 0;  // of the first row, upwards
    int width = 0;
    int rows = 0;
    int stride = 0; // from one row to the next, in pixels
    std::vector<std::uint8_t> coverage;
};

// A typeface at one size, with the letters that were used. Characters that it lacks come from whatever face
// has them. Used under the text lock (TextLock.h).
class FontFace
{
public:
    // The face for a request at a height as LOGFONTA::lfHeight counts it; shared by all who ask for the same,
    // and kept for a while after the last. Never null; without any face on the system it has letters of no
    // size.
    static std::shared_ptr<FontFace> For(const FaceRequest& request, int nHeight);

    FontFace(const FaceRequest& request, int nHeight);

    // Valid until the next call.
    const Glyph& Get(char32_t ch);
    const TEXTMETRICA& Metrics() const noexcept { return m_metrics; }

private:
    struct Source
    {
        FacePtr face;
        bool embolden = false;
        bool slant = false;
    };

    void SetSize(FT_Face face) const;
    void AddSource(FacePtr face);
    const Source* SourceOf(char32_t ch, unsigned& index);
    Glyph Render(char32_t ch);
    void ReadMetrics();

    const FaceRequest m_request;
    const int m_height;
    FontFiles m_files;
    std::vector<Source> m_sources; // the best match first
    TEXTMETRICA m_metrics{};
    std::array<std::unique_ptr<Glyph>, 128> m_ascii;
    std::unordered_map<char32_t, Glyph> m_others;
    std::size_t m_bytes = 0; // of coverage in m_others
};

} // namespace kx::gdi
