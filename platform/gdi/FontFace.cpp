#include "platform/gdi/FontFace.h"

#include "platform/Errno.h"
#include "platform/Immortal.h"
#include "platform/gdi/Tools.h"
#include "platform/module/Door.h"
#include "platform/text/Conversion.h"

#include <algorithm>
#include <list>
#include <tuple>
#include <utility>

KX_DOOR(letters, kx::gdi::LetterFunctions);

namespace kx::gdi {

constinit sync::Mutex textLock;

namespace {

constexpr int kMaxHeight = 1024;            // pixels; larger letters are drawn at this size
constexpr int kDefaultHeight = -12;         // for a height of 0
constexpr std::size_t kMaxBytes = 4u << 20; // of letters kept for a face
constexpr std::size_t kKept = 16;           // fonts kept after their last use
constexpr char32_t kWide = 0x2E80;          // the first of the letters that are as wide as high

using Key = std::tuple<FaceRequest, int>;

// Lately used fonts, the latest first: a client that makes its font anew for each drawing finds its letters
// again.
struct Recent
{
    std::list<std::pair<Key, std::shared_ptr<FontFace>>> entries KX_GUARDED_BY(textLock);
};

int Clamped(int nHeight)
{
    return nHeight == 0 ? kDefaultHeight : std::clamp(nHeight, -kMaxHeight, kMaxHeight);
}

std::unique_ptr<Letters> OpenLetters(const FaceRequest& request, int nHeight)
{
    const LetterFunctions* const functions = g_door.Open();
    return functions ? functions->open(request, nHeight) : nullptr;
}

// The metrics of a face of which nothing is known but its height: four fifths of it stand on the base line,
// and a cell is as high as a quarter more than its em square.
FontMetrics StockMetrics(int nHeight) noexcept
{
    const int nCell = nHeight > 0 ? nHeight : -nHeight * 5 / 4;
    return {nCell * 4 / 5, nCell - nCell * 4 / 5};
}

} // namespace

void NeedLetters() noexcept
{
    g_door.Open();
}

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
    : m_height(nHeight),
      m_letters(OpenLetters(request, nHeight)),
      m_metrics(m_letters ? m_letters->Metrics() : StockMetrics(nHeight))
{
}

Glyph FontFace::Draw(char32_t ch)
{
    if (m_letters) return m_letters->Draw(ch);
    Glyph blank;
    const int nEm = m_height > 0 ? m_height * 4 / 5 : -m_height;
    blank.advance = ch < kWide ? nEm / 2 : nEm;
    return blank;
}

const Glyph& FontFace::Get(char32_t ch)
{
    if (const auto found = m_glyphs.find(ch); found != m_glyphs.end()) return found->second;
    Glyph glyph = Draw(ch);
    if (m_bytes > kMaxBytes) {
        m_glyphs.clear();
        m_bytes = 0;
    }
    m_bytes += glyph.coverage.size() + sizeof(Glyph);
    return m_glyphs[ch] = std::move(glyph);
}

Font::Font(const LOGFONTA& log) : Object(KIND), m_log(log)
{
    m_log.lfFaceName[sizeof(m_log.lfFaceName) - 1] = '\0';
}

FontFace& Font::Face()
{
    if (!m_face)
        m_face = FontFace::For({.family = text::ToUtf8(m_log.lfFaceName).value_or(""),
                                .weight = m_log.lfWeight > 0 ? m_log.lfWeight : FW_NORMAL,
                                .italic = m_log.lfItalic != 0},
                               m_log.lfHeight);
    return *m_face;
}

std::shared_ptr<Object> MakeStockFont()
{
    LOGFONTA log{};
    log.lfHeight = -12;
    return std::make_shared<Font>(log);
}

} // namespace kx::gdi

HFONT CreateFontIndirectA(const LOGFONTA* pFont)
try {
    return pFont ? static_cast<HFONT>(kx::gdi::Add(std::make_shared<kx::gdi::Font>(*pFont))) : nullptr;
} catch (...) {
    return kx::NoMemory();
}
