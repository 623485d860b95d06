#pragma once

#include "include/platform/Gdi.h"
#include "platform/gdi/FontFace.h"
#include "platform/gdi/Letters.h"
#include "platform/gdi/Object.h"
#include "platform/sync/Mutex.h"

#include <cstddef>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kx::gdi {

// Loads the module for letters, if it isn't yet; without the text lock, since what it tells is heard.
void NeedLetters() noexcept;

// A typeface at one size, with the letters that were used. Without any face on the system, or without the
// module for letters, a text takes room by its height alone and draws nothing.
class FontFace
{
public:
    // The face for a request at a height as LOGFONTA::lfHeight counts it; shared by all who ask for the same,
    // and kept for a while after the last. Never null.
    static std::shared_ptr<FontFace> For(const FaceRequest& request, int nHeight) KX_REQUIRES(textLock);

    FontFace(const FaceRequest& request, int nHeight) KX_REQUIRES(textLock);

    // Valid until the next call.
    const Glyph& Get(char32_t ch) KX_REQUIRES(textLock);
    const FontMetrics& Metrics() const noexcept { return m_metrics; }

private:
    Glyph Draw(char32_t ch) KX_REQUIRES(textLock);

    const int m_height;
    const std::unique_ptr<Letters> m_letters;
    const FontMetrics m_metrics;
    std::unordered_map<char32_t, Glyph> m_glyphs KX_GUARDED_BY(textLock);
    std::size_t m_bytes KX_GUARDED_BY(textLock) = 0; // of all these letters
};

class Font final : public Object
{
public:
    static constexpr Kind KIND = Kind::Font;

    explicit Font(const LOGFONTA& log);
    // A LOGFONTA.
    int Describe(int nSize, void* pBuffer) const override { return DescribeAs(m_log, nSize, pBuffer); }

    // The typeface, looked for at the first use.
    FontFace& Face() KX_REQUIRES(textLock);
    bool Underline() const noexcept { return m_log.lfUnderline != 0; }
    bool StrikeOut() const noexcept { return m_log.lfStrikeOut != 0; }

private:
    LOGFONTA m_log;
    std::shared_ptr<FontFace> m_face KX_GUARDED_BY(textLock);
};

// A line of letters and its length in pixels, the sum of its letters' advances.
struct TextLine
{
    std::u32string text;
    int width = 0;
    int mark = -1; // the letter to be underlined, -1 for none
};

// Divides a text into lines as DrawTextA does by its flags, for a room of `nRoom` pixels.
std::vector<TextLine> BreakLines(FontFace& face, std::string_view text, UINT nFormat, int nRoom)
    KX_REQUIRES(textLock);

} // namespace kx::gdi
