#include "bench/CairoPaper.h"
#include "bench/Loop.h"
#include "bench/Surfaces.h"

#include <KXEnglishWord.h>
#include <array>
#include <cstring>
#include <string>
#include <string_view>

// A test word of twelve letters, of which five are hidden in boxes: each letter measured, then drawn or
// framed.

namespace {

constexpr const char* pszWord = "photographer";
constexpr const char* pszTest = "ph*t*g**ph*r";
constexpr bench::Size paperSize{240, 40};
const CRect rcWord(10, 4, 230, 36);

void Frame(cairo_t* cairo, double x, double width)
{
    cairo_set_source_rgb(cairo, 0, 0, 1);
    cairo_rectangle(cairo, x + 0.5, rcWord.top + 1.5, width, rcWord.Height() - 3);
    cairo_stroke(cairo);
    cairo_set_source_rgb(cairo, 1, 1, 1);
}

void DrawCairo(cairo_t* cairo)
{
    const std::string_view word = pszWord, test = pszTest;
    double x = rcWord.left;
    for (std::size_t n = 0; n < word.size(); ++n) {
        const std::array<char, 2> letter{word[n], '\0'};
        cairo_text_extents_t extents;
        cairo_text_extents(cairo, letter.data(), &extents);
        if (test[n] == '*') {
            Frame(cairo, x, extents.x_advance);
        } else {
            cairo_move_to(cairo, x, 27);
            cairo_show_text(cairo, letter.data());
        }
        x += extents.x_advance;
    }
}

void DrawOurs(benchmark::State& state, bool bThreaded)
{
    if (bThreaded) bench::HaveHadThreads();
    const bench::Ours paper(paperSize);
    LOGFONTA log{};
    log.lfHeight = -bench::nFontHeight;
    std::strcpy(log.lfFaceName, bench::pszFace);
    CFont font;
    font.CreateFontIndirectA(&log);
    CDC* const pDC = CDC::FromHandle(paper);
    const CString strWord = pszWord;
    const CString strTest = pszTest;
    const auto draw = [&] {
        CKXEnglishWord::DrawTestWord(pDC, strWord, strTest, rcWord, &font, RGB(0, 0, 255), RGB(255, 255, 255),
                                     1);
    };
    draw();
    const bench::CairoPaper peer(paperSize);
    DrawCairo(peer);
    if (!bench::InkOf(paper, paperSize).IsAbout(peer.Ink()))
        state.SkipWithError("another word than the peer's");
    for (auto _ : bench::Loop(state))
        draw();
}

void DrawPeer(benchmark::State& state, bool bThreaded)
{
    if (bThreaded) bench::HaveHadThreads();
    const bench::CairoPaper paper(paperSize);
    for (auto _ : bench::Loop(state))
        DrawCairo(paper);
}

const int registered = [] {
    for (const std::string work : {"test_word", "test_word_threaded"}) {
        bench::Register(work + "/ours", DrawOurs, work != "test_word");
        bench::Register(work + "/cairo", DrawPeer, work != "test_word");
    }
    return 0;
}();

} // namespace
