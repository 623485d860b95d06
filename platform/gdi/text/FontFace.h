#pragma once

#include "include/platform/Gdi.h"
#include "platform/gdi/text/FontFiles.h"
#include "platform/sync/Mutex.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

namespace kx::gdi {

// Held while text is measured or drawn: FreeType's faces and the glyph caches belong to one thread at a time.
inline constinit sync::Mutex textLock;

// One letter at one size: how far it moves on, and how much of each pixel it covers, placed from the pen's
// position on the base line. The weights lie as they are blended: a pixel's coverage once for each of its
// colours, and 0 for its high byte. Zeros fill each row up to whole blocks.
struct Glyph
{
    static constexpr int BLOCK = 4;    // pixels
    static constexpr int CHANNELS = 4; // weights of a pixel
    static constexpr int WHOLE = 1 << 15;

    int advance = 0;
    int left = 0; // of the first column
    int top = 0;  // of the first row, upwards
    int width = 0;
    int rows = 0;
    int stride = 0;                    // from one row to the next, in pixels
    std::vector<std::int16_t> weights; // as parts of WHOLE, which itself is written as one less
};

// In pixels, from the base line.
struct FontMetrics
{
    int ascent = 0;
    int descent = 0;
    int Height() const noexcept { return ascent + descent; }
};

// A typeface at one size, with the letters that were used. Characters that it lacks come from whatever face
// has them. Used under the text lock.
class FontFace
{
public:
    // The face for a request at a height as LOGFONTA::lfHeight counts it; shared by all who ask for the same,
    // and kept for a while after the last. Never null; without any face on the system it has letters of no
    // size.
    static std::shared_ptr<FontFace> For(const FaceRequest& request, int nHeight) KX_REQUIRES(textLock);

    FontFace(const FaceRequest& request, int nHeight);

    // Valid until the next call.
    const Glyph& Get(char32_t ch);
    const FontMetrics& Metrics() const noexcept { return m_metrics; }

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
    const Glyph& Keep(char32_t ch, Glyph glyph);
    void ReadMetrics();

    const FaceRequest m_request;
    const int m_height;
    FontFiles m_files;
    std::vector<Source> m_sources; // the best match first
    FontMetrics m_metrics;
    std::array<std::unique_ptr<Glyph>, 128> m_ascii;
    std::unordered_map<char32_t, Glyph> m_others;
    std::size_t m_bytes = 0; // of all these letters
};

} // namespace kx::gdi
