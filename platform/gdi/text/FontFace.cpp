#include "platform/gdi/text/FontFace.h"

#include "platform/Immortal.h"

#include <algorithm>
#include <cstdlib>
#include <ft2build.h>
#include <list>
#include <tuple>
#include <utility>
#include FT_FREETYPE_H
#include FT_SYNTHESIS_H

namespace kx::gdi {

namespace {

constexpr int kMaxHeight = 1024;            // pixels; larger letters are drawn at this size
constexpr int kDefaultHeight = -12;         // for a height of 0
constexpr std::size_t kMaxBytes = 4u << 20; // of letters kept for a face
constexpr std::size_t kMaxSources = 16;     // faces open for one font
constexpr std::size_t kKept = 16;           // fonts kept after their last use

using Key = std::tuple<FaceRequest, int>;

// Lately used fonts, the latest first: a client that makes its font anew for each drawing finds its letters
// again.
struct Recent
{
    std::list<std::pair<Key, std::shared_ptr<FontFace>>> entries;
};

int Clamped(int nHeight)
{
    return nHeight == 0 ? kDefaultHeight : std::clamp(nHeight, -kMaxHeight, kMaxHeight);
}

int Round26(FT_Pos value)
{
    return static_cast<int>((value + 32) >> 6);
}

// The weight for a coverage of 0 to 255.
std::int16_t WeightOf(unsigned char coverage)
{
    return static_cast<std::int16_t>(coverage * (Glyph::WHOLE - 1) / 255);
}

} // namespace

std::shared_ptr<FontFace> FontFace::For(const FaceRequest& request, int nHeight)
{
    static Immortal<Recent> recent;
    auto& entries = recent->entries;
    const Key key(request, Clamped(nHeight));
    const auto found =
        std::find_if(entries.begin(), entries.end(), [&](const auto& entry) { return entry.first == key; });
    if (found != entries.end()) {
        entries.splice(entries.begin(), entries, found);
        return entries.front().second;
    }
    auto made = std::make_shared<FontFace>(request, std::get<int>(key));
    entries.emplace_front(key, made);
    if (entries.size() > kKept) entries.pop_back();
    return made;
}

FontFace::FontFace(const FaceRequest& request, int nHeight)
    : m_request(request), m_height(nHeight), m_files(request)
{
    AddSource(m_files.OpenBest());
    ReadMetrics();
}

// A height above 0 is that of the cell, from the highest to the lowest of the letters; below 0 that of the em
// square.
void FontFace::SetSize(FT_Face face) const
{
    FT_Size_RequestRec request{};
    request.type = m_height > 0 ? FT_SIZE_REQUEST_TYPE_REAL_DIM : FT_SIZE_REQUEST_TYPE_NOMINAL;
    request.height = static_cast<FT_Long>(std::abs(m_height)) * 64;
    FT_Request_Size(face, &request);
}

void FontFace::AddSource(FacePtr face)
{
    if (!face) return;
    SetSize(face.get());
    const bool bBold = (face->style_flags & FT_STYLE_FLAG_BOLD) != 0;
    const bool bItalic = (face->style_flags & FT_STYLE_FLAG_ITALIC) != 0;
    m_sources.push_back({std::move(face), m_request.weight >= 600 && !bBold, m_request.italic && !bItalic});
}

void FontFace::ReadMetrics()
{
    if (m_sources.empty()) return;
    const FT_Face face = m_sources[0].face.get();
    const FT_Size_Metrics& size = face->size->metrics;
    m_metrics.ascent = static_cast<int>((size.ascender + 63) >> 6);
    m_metrics.descent = static_cast<int>((-size.descender + 63) >> 6);
    if (m_height > 0) m_metrics.descent = std::max(0, m_height - m_metrics.ascent); // the cell, to the pixel
}

// The first face that has the character; the best match, with its sign for a missing one, where none has.
const FontFace::Source* FontFace::SourceOf(char32_t ch, unsigned& index)
{
    for (const Source& source : m_sources)
        if ((index = FT_Get_Char_Index(source.face.get(), ch)) != 0) return &source;
    const std::size_t before = m_sources.size();
    if (before < kMaxSources) AddSource(m_files.OpenFor(ch));
    if (m_sources.size() > before && (index = FT_Get_Char_Index(m_sources.back().face.get(), ch)) != 0)
        return &m_sources.back();
    return m_sources.empty() ? nullptr : &m_sources[0];
}

Glyph FontFace::Render(char32_t ch)
{
    Glyph glyph;
    unsigned index = 0;
    const Source* source = SourceOf(ch, index);
    if (!source) return glyph;
    const int flags = FT_LOAD_TARGET_LIGHT | FT_LOAD_NO_BITMAP;
    if (ThrowIfNoMemory(FT_Load_Glyph(source->face.get(), index, flags))) return glyph;
    const FT_GlyphSlot slot = source->face->glyph;
    if (source->embolden) FT_GlyphSlot_Embolden(slot);
    if (source->slant) FT_GlyphSlot_Oblique(slot);
    glyph.advance = std::max(0, Round26(slot->advance.x));
    if (ThrowIfNoMemory(FT_Render_Glyph(slot, FT_RENDER_MODE_NORMAL)) ||
        slot->bitmap.pixel_mode != FT_PIXEL_MODE_GRAY)
        return glyph;

    const FT_Bitmap& bitmap = slot->bitmap;
    glyph.left = slot->bitmap_left;
    glyph.top = slot->bitmap_top;
    glyph.width = static_cast<int>(bitmap.width);
    glyph.rows = static_cast<int>(bitmap.rows);
    glyph.stride = (glyph.width + Glyph::BLOCK - 1) / Glyph::BLOCK * Glyph::BLOCK;
    glyph.weights.reserve(static_cast<std::size_t>(glyph.stride) * bitmap.rows * Glyph::CHANNELS);
    for (unsigned y = 0; y < bitmap.rows; ++y) {
        const unsigned char* row = bitmap.buffer + static_cast<std::ptrdiff_t>(y) * bitmap.pitch;
        for (unsigned x = 0; x < bitmap.width; ++x) {
            const std::int16_t weight = WeightOf(row[x]);
            glyph.weights.insert(glyph.weights.end(), {weight, weight, weight, 0});
        }
        glyph.weights.resize(static_cast<std::size_t>(glyph.stride) * (y + 1) * Glyph::CHANNELS);
    }
    return glyph;
}

const Glyph& FontFace::Get(char32_t ch)
{
    if (ch < m_ascii.size()) {
        if (const auto& kept = m_ascii[ch]) return *kept;
    } else if (const auto found = m_others.find(ch); found != m_others.end()) {
        return found->second;
    }
    return Keep(ch, Render(ch));
}

const Glyph& FontFace::Keep(char32_t ch, Glyph glyph)
{
    if (m_bytes > kMaxBytes) {
        m_ascii = {};
        m_others.clear();
        m_bytes = 0;
    }
    m_bytes += glyph.weights.size() * sizeof(std::int16_t) + sizeof(Glyph);
    Glyph& place = ch < m_ascii.size() ? *(m_ascii[ch] = std::make_unique<Glyph>()) : m_others[ch];
    return place = std::move(glyph);
}

} // namespace kx::gdi
