#include "platform/gdi/letters/FontFiles.h"

#include "platform/NoMemory.h"
#include "platform/sync/Mutex.h"

#include <fontconfig/fontconfig.h>
#include <ft2build.h>
#include FT_FREETYPE_H
#include <memory>
#include <new>

namespace kx::gdi::letters {

namespace {

// Held while a face is opened or closed, which changes the library's list of them: a face ends with its last
// user, which may be a font that is deleted outside of the text lock. Taken after that lock where both are.
constinit sync::Mutex g_libraryLock;
// Made at the first use and never ended: faces may be closed while static objects are destroyed.
FT_Library g_library KX_GUARDED_BY(g_libraryLock) = nullptr;

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

} // namespace

bool ThrowIfNoMemory(int nError)
{
    if (nError == FT_Err_Out_Of_Memory) throw std::bad_alloc();
    return nError != FT_Err_Ok;
}

void FaceDeleter::operator()(FT_Face face) const noexcept
{
    const sync::MutexLock lock(g_libraryLock);
    FT_Done_Face(face);
}

struct FontFiles::Set
{
    FcPattern* pattern = nullptr;
    FcFontSet* sorted = nullptr; // made when a character is missing in the best match

    Set() = default;
    Set(const Set&) = delete;
    Set& operator=(const Set&) = delete;
    ~Set()
    {
        if (sorted) FcFontSetDestroy(sorted);
        if (pattern) FcPatternDestroy(pattern);
    }
};

FontFiles::FontFiles(const FaceRequest& request) : m_set(std::make_unique<Set>())
{
    NeedRoom();
    FcPattern* pattern = m_set->pattern = FcPatternCreate();
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

FontFiles::~FontFiles() = default;

FacePtr FontFiles::OpenBest()
{
    NeedRoom();
    FcResult result = FcResultNoMatch;
    const std::unique_ptr<FcPattern, decltype(&FcPatternDestroy)> font(
        FcFontMatch(nullptr, m_set->pattern, &result), FcPatternDestroy);
    if (result == FcResultOutOfMemory || !FcConfigGetCurrent()) throw std::bad_alloc();
    return font ? Open(font.get()) : nullptr;
}

FacePtr FontFiles::OpenFor(char32_t ch)
{
    NeedRoom();
    FcResult result = FcResultNoMatch;
    if (!m_set->sorted) m_set->sorted = FcFontSort(nullptr, m_set->pattern, FcTrue, nullptr, &result);
    if (!m_set->sorted) return nullptr;
    for (int n = 0; n < m_set->sorted->nfont; ++n) {
        FcPattern* font = m_set->sorted->fonts[n];
        FcBool scalable = FcFalse;
        FcPatternGetBool(font, FC_SCALABLE, 0, &scalable);
        if (!scalable || !Has(font, ch)) continue;
        if (FacePtr face = Open(font)) return face;
    }
    return nullptr;
}

} // namespace kx::gdi::letters
