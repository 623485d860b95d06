#include "platform/Errno.h"
#include "platform/gdi/Letters.h"
#include "platform/module/Door.h"
#include "platform/sync/Mutex.h"

#include <algorithm>
#include <cstdlib>
#include <fontconfig/fontconfig.h>
#include <ft2build.h>
#include <memory>
#include <new>
#include <utility>
#include FT_FREETYPE_H
#include FT_SYNTHESIS_H

namespace kx::gdi::letters {

namespace {

constexpr std::size_t kMaxSources = 16; // faces open for one font

// Whether a call of FreeType failed; throws std::bad_alloc where that was for lack of memory: a face or a
// letter that is kept must not be an empty one for that.
bool ThrowIfNoMemory(int nError)
{
    if (nError == FT_Err_Out_Of_Memory) throw std::bad_alloc();
    return nError != FT_Err_Ok;
}

// Held while a face is opened or closed, which changes the library's list of them: a face ends with its last
// user, which may be a font that is deleted outside of the text lock. Taken after that lock where both are.
constinit sync::Mutex g_libraryLock;
// Made at the first use and never ended: faces may be closed while static objects are destroyed.
FT_Library g_library KX_GUARDED_BY(g_libraryLock) = nullptr;

// On any thread.
struct CloseFace
{
    void operator()(FT_Face face) const noexcept
    {
        const sync::MutexLock lock(g_libraryLock);
        FT_Done_Face(face);
    }
};
using FacePtr = std::unique_ptr<FT_FaceRec_, CloseFace>;

// Null for a file that can't be used.
FacePtr Open(FcPattern* font)
{
    FcChar8* file = nullptr;
    int index = 0;
    FT_Face face = nullptr;
    if (FcPatternGetString(font, FC_FILE, 0, &file) != FcResultMatch) return nullptr;
    FcPatternGetInteger(font, FC_INDEX, 0, &index);
    const sync::MutexLock lock(g_libraryLock);
    if (!g_library && ThrowIfNoMemory(FT_Init_FreeType(&g_library))) return nullptr;
    const auto* const path = reinterpret_cast<const char*>(file);
    return FacePtr(ThrowIfNoMemory(FT_New_Face(g_library, path, index, &face)) ? nullptr : face);
}

bool Has(FcPattern* font, char32_t ch)
{
    FcCharSet* chars = nullptr;
    return FcPatternGetCharSet(font, FC_CHARSET, 0, &chars) == FcResultMatch && FcCharSetHasChar(chars, ch);
}

// The system's scalable faces for a request, best match first, opened one at a time as they are needed. Used
// under the text lock.
class FontFiles
{
public:
    explicit FontFiles(const FaceRequest& request)
    {
        NeedRoom();
        m_pattern.reset(FcPatternCreate());
        FcPattern* const pattern = m_pattern.get();
        if (!pattern) throw std::bad_alloc();
        if (!request.family.empty())
            FcPatternAddString(pattern, FC_FAMILY, reinterpret_cast<const FcChar8*>(request.family.c_str()));
        FcPatternAddString(pattern, FC_FAMILY, reinterpret_cast<const FcChar8*>("sans-serif"));
        FcPatternAddInteger(pattern, FC_WEIGHT, FcWeightFromOpenType(request.weight));
        FcPatternAddInteger(pattern, FC_SLANT, request.italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
        FcPatternAddBool(pattern, FC_SCALABLE, FcTrue);
        FcConfigSubstitute(nullptr, pattern, FcMatchPattern);
        FcDefaultSubstitute(pattern);
    }

    // The best match, or null where the system has no face at all.
    FacePtr OpenBest()
    {
        NeedRoom();
        FcResult result = FcResultNoMatch;
        const std::unique_ptr<FcPattern, Destroy> font(FcFontMatch(nullptr, m_pattern.get(), &result));
        if (result == FcResultOutOfMemory || !FcConfigGetCurrent()) throw std::bad_alloc();
        return font ? Open(font.get()) : nullptr;
    }
    // The best face that has this character; null without one.
    FacePtr OpenFor(char32_t ch)
    {
        NeedRoom();
        FcResult result = FcResultNoMatch;
        if (!m_sorted) m_sorted.reset(FcFontSort(nullptr, m_pattern.get(), FcTrue, nullptr, &result));
        for (int n = 0; m_sorted && n < m_sorted->nfont; ++n) {
            FcPattern* font = m_sorted->fonts[n];
            FcBool scalable = FcFalse;
            FcPatternGetBool(font, FC_SCALABLE, 0, &scalable);
            if (!scalable || !Has(font, ch)) continue;
            if (FacePtr face = Open(font)) return face;
        }
        return nullptr;
    }

private:
    struct Destroy
    {
        void operator()(FcPattern* pattern) const noexcept { FcPatternDestroy(pattern); }
        void operator()(FcFontSet* set) const noexcept { FcFontSetDestroy(set); }
    };
    std::unique_ptr<FcPattern, Destroy> m_pattern;
    std::unique_ptr<FcFontSet, Destroy> m_sorted; // made when a character is missing in the best match
};

int Round26(FT_Pos value)
{
    return static_cast<int>((value + 32) >> 6);
}

class Face : public Letters
{
public:
    Face(const FaceRequest& request, int nHeight) : m_request(request), m_height(nHeight), m_files(request)
    {
        AddSource(m_files.OpenBest());
    }

    bool IsThere() const noexcept KX_REQUIRES(textLock) { return !m_sources.empty(); }
    FontMetrics Metrics() const noexcept override KX_REQUIRES(textLock);
    Glyph Draw(char32_t ch) override KX_REQUIRES(textLock);

private:
    struct Source
    {
        FacePtr face;
        bool embolden = false;
        bool slant = false;
    };

    void SetSize(FT_Face face) const;
    void AddSource(FacePtr face) KX_REQUIRES(textLock);
    const Source& SourceOf(char32_t ch, unsigned& index) KX_REQUIRES(textLock);

    const FaceRequest m_request;
    const int m_height;
    FontFiles m_files KX_GUARDED_BY(textLock);
    std::vector<Source> m_sources KX_GUARDED_BY(textLock); // the best match first
};

// A height above 0 is that of the cell, from the highest to the lowest of the letters; below 0 that of the em
// square.
void Face::SetSize(FT_Face face) const
{
    FT_Size_RequestRec request{};
    request.type = m_height > 0 ? FT_SIZE_REQUEST_TYPE_REAL_DIM : FT_SIZE_REQUEST_TYPE_NOMINAL;
    request.height = static_cast<FT_Long>(std::abs(m_height)) * 64;
    FT_Request_Size(face, &request);
}

void Face::AddSource(FacePtr face)
{
    if (!face) return;
    SetSize(face.get());
    const bool bBold = (face->style_flags & FT_STYLE_FLAG_BOLD) != 0;
    const bool bItalic = (face->style_flags & FT_STYLE_FLAG_ITALIC) != 0;
    m_sources.push_back({std::move(face), m_request.weight >= 600 && !bBold, m_request.italic && !bItalic});
}

FontMetrics Face::Metrics() const noexcept
{
    const FT_Size_Metrics& size = m_sources[0].face->size->metrics;
    FontMetrics metrics;
    metrics.ascent = static_cast<int>((size.ascender + 63) >> 6);
    metrics.descent = static_cast<int>((-size.descender + 63) >> 6);
    if (m_height > 0) metrics.descent = std::max(0, m_height - metrics.ascent); // the cell, to the pixel
    return metrics;
}

// The first face that has the character; the best match, with its sign for a missing one, where none has.
const Face::Source& Face::SourceOf(char32_t ch, unsigned& index)
{
    for (const Source& source : m_sources)
        if ((index = FT_Get_Char_Index(source.face.get(), ch)) != 0) return source;
    if (m_sources.size() < kMaxSources) AddSource(m_files.OpenFor(ch));
    index = FT_Get_Char_Index(m_sources.back().face.get(), ch); // where none was added, 0 once more
    return index != 0 ? m_sources.back() : m_sources[0];
}

Glyph Face::Draw(char32_t ch)
{
    Glyph glyph;
    unsigned index = 0;
    const Source& source = SourceOf(ch, index);
    const int flags = FT_LOAD_TARGET_LIGHT | FT_LOAD_NO_BITMAP;
    if (ThrowIfNoMemory(FT_Load_Glyph(source.face.get(), index, flags))) return glyph;
    const FT_GlyphSlot slot = source.face->glyph;
    if (source.embolden) FT_GlyphSlot_Embolden(slot);
    if (source.slant) FT_GlyphSlot_Oblique(slot);
    glyph.advance = std::max(0, Round26(slot->advance.x));
    if (ThrowIfNoMemory(FT_Render_Glyph(slot, FT_RENDER_MODE_NORMAL)) ||
        slot->bitmap.pixel_mode != FT_PIXEL_MODE_GRAY)
        return glyph;

    const FT_Bitmap& bitmap = slot->bitmap;
    glyph.left = slot->bitmap_left;
    glyph.top = slot->bitmap_top;
    glyph.width = static_cast<int>(bitmap.width);
    glyph.rows = static_cast<int>(bitmap.rows);
    glyph.coverage.reserve(std::size_t{bitmap.width} * bitmap.rows);
    for (unsigned y = 0; y < bitmap.rows; ++y) {
        const unsigned char* row = bitmap.buffer + static_cast<std::ptrdiff_t>(y) * bitmap.pitch;
        glyph.coverage.insert(glyph.coverage.end(), row, row + bitmap.width);
    }
    return glyph;
}

std::unique_ptr<Letters> Open(const FaceRequest& request, int nHeight) KX_REQUIRES(textLock)
{
    auto face = std::make_unique<Face>(request, nHeight);
    return face->IsThere() ? std::move(face) : nullptr;
}

constexpr LetterFunctions kFunctions{Open};

} // namespace

} // namespace kx::gdi::letters

KX_MODULE_ENTRY(letters, kx::gdi::letters::kFunctions)
