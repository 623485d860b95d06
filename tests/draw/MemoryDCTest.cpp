#include "KXMemDC.h"
#include "KXMemoryDC.h"
#include "KXPaintMemoryDC.h"
#include "tests/platform/window/Support.h"
#include "tests/support/Picture.h"
#include "tests/support/Test.h"

using namespace test;
using testing::ElementsAre;

namespace {

CSize SizeOf(CBitmap& bitmap)
{
    BITMAP record{};
    bitmap.GetBitmap(&record);
    return {record.bmWidth, record.bmHeight};
}

TEST(MemDC, MirrorsARectangle)
{
    const NoLeak noLeak;
    const Paper paper(Picture{"RGB", "CMY"});
    CDC& dc = *CDC::FromHandle(paper);
    CKXMemDC mem;
    EXPECT_EQ(mem.IsValid(), 0);
    mem.FromDC();
    mem.Create(&dc, CRect(1, 0, 3, 2), 0xFFFFFFFF);
    EXPECT_EQ(mem.IsValid(), 1);
    EXPECT_EQ(SizeOf(mem.GetBitmap()), CSize(2, 2));
    mem.FromDC();
    EXPECT_THAT(Read(mem, 0, 0, 2, 2), ElementsAre("GB", "MY"));
    mem.Create(&dc, CRect(), 0xFFFFFFFF); // anew, of the clip box
    EXPECT_EQ(SizeOf(mem.GetBitmap()), CSize(3, 2));
    EXPECT_STREQ(mem.GetRuntimeClass()->m_lpszClassName, "CKXMemDC");
    EXPECT_TRUE(mem.IsKindOf(CDC::GetThisClass()));
    EXPECT_EQ(mem.GetRuntimeClass()->m_wSchema, 0xFFFFu);
}

TEST(MemDC, FillsItsRectangleUnshifted)
{
    const Paper paper(8, 8);
    CKXMemDC mem(CDC::FromHandle(paper), CRect(1, 2, 5, 6), ColorOf('R'));
    EXPECT_THAT(Read(mem, 0, 0, 4, 4), ElementsAre("....", "....", ".RRR", ".RRR"));
    CKXMemDC black(CDC::FromHandle(paper), CRect(0, 0, 2, 2), 0);
    EXPECT_EQ(black.GetPixel(0, 0), 0u);
    CKXMemDC unfilled(CDC::FromHandle(paper), CRect(0, 0, 2, 2), static_cast<unsigned long>(-1));
    EXPECT_EQ(unfilled.GetPixel(0, 0), 0u);
    CKXMemDC none(CDC::FromHandle(paper), CRect(0, 0, 1 << 15, 1 << 15), ColorOf('R')); // too large
    EXPECT_EQ(none.IsValid(), 1);
    EXPECT_EQ(none.GetBitmap().GetSafeHandle(), nullptr);
    EXPECT_EQ(BitBlt(paper, 0, 0, 2, 2, none, 0, 0, SRCCOPY), 1);
    EXPECT_EQ(GetPixel(paper, 0, 0), 0u); // the fill drew nothing
}

TEST(MemoryDC, IsMadeDestroyedAndMadeAgain)
{
    const NoLeak noLeak;
    CKXMemoryDC mem;
    mem.Destroy();
    EXPECT_EQ(mem.GetHDC(), nullptr);
    mem.Create(10, 20);
    mem.Create(3, 4);
    EXPECT_EQ(mem.GetSize(), CSize(3, 4));
    EXPECT_EQ(SizeOf(mem.GetBitmap()), CSize(3, 4));
    EXPECT_NE(mem.GetHBitmap(), nullptr);
    mem.Destroy();
    EXPECT_EQ(mem.GetHDC(), nullptr);
    EXPECT_EQ(mem.GetHBitmap(), nullptr);
    EXPECT_EQ(mem.GetSize(), CSize(3, 4));
    mem.Create(-1, 1 << 30); // can't be: drawing on it does nothing
    EXPECT_EQ(mem.GetHBitmap(), nullptr);
    EXPECT_EQ(mem.GetHDC(), nullptr);
    mem.GetDC().FillSolidRect(0, 0, 9, 9, 0xFF);
}

// The wrapper of what a bitmap displaced ends with its thread, or after its handle.
TEST(MemoryDC, OutlivesTheWrapperOfWhatItsBitmapDisplaced)
{
    static CKXMemoryDC s_atExit; // ends behind the thread's wrappers
    s_atExit.Create(1, 1);
    const NoLeak noLeak;
    const Paper paper(2, 2);
    CKXMemoryDC fromThread;
    CKXMemDC mirror;
    std::thread([&] {
        fromThread.Create(2, 2);
        mirror.Create(CDC::FromHandle(paper), CRect(0, 0, 2, 2), 0);
    }).join();
    fromThread.Destroy();
    mirror.Create(CDC::FromHandle(paper), CRect(0, 0, 1, 1), 0);
    CKXMemoryDC mem;
    mem.Create(2, 2);
    mem.GetDC().DeleteDC();
    for (int n = 0; n < 200; ++n)
        CGdiObject::FromHandle(Scoped<HPEN>(CreatePen(PS_SOLID, 1, 0)));
}

TEST(PaintMemoryDC, CopiesItselfAtItsEnd)
{
    const NoLeak noLeak;
    const Paper paper(5, 3, 'W');
    {
        CKXPaintMemoryDC mem(CDC::FromHandle(paper), CRect(2, 1, 5, 3));
        CDC& dc = mem;
        dc.FillSolidRect(0, 0, 1, 2, ColorOf('R'));
        EXPECT_EQ(LetterOf(GetPixel(paper, 2, 1)), 'W');
    }
    EXPECT_THAT(paper.Read(), ElementsAre("WWWWW", "WWR..", "WWR.."));
    const CKXPaintMemoryDC nowhere(nullptr, CRect(0, 0, 2, 2));
    static_cast<void>(CKXPaintMemoryDC(CDC::FromHandle(paper), CRect(0, 0, 1 << 15, 1 << 15))); // too large
    EXPECT_EQ(LetterOf(GetPixel(paper, 0, 0)), 'W');
}

TEST(PaintMemoryDC, CoversAWindowAndFillsItUnlessWithBlack)
{
    const HWND hWnd = Make();
    ASSERT_TRUE(Move(hWnd, 0, 0, 3, 2));
    const Paper paper(4, 3, 'W');
    for (const auto& [clrBk, shown] :
         {std::pair<unsigned long, char>{ColorOf('G'), 'G'}, {0, '.'}, {1ul << 32, '.'}}) {
        {
            CKXPaintMemoryDC mem(CWnd::FromHandle(hWnd), CDC::FromHandle(paper), clrBk);
            EXPECT_EQ(mem.GetSize(), CSize(3, 2));
            CDC* pDC = mem;
            pDC->SetPixel(0, 0, ColorOf('R'));
            EXPECT_EQ(pDC->GetBkColor(), ColorOf(shown == 'G' ? 'G' : 'W')); // a fill leaves its colour
        }
        const std::string rest(2, shown);
        EXPECT_THAT(paper.Read(), ElementsAre("R" + rest + "W", shown + rest + "W", "WWWW"));
    }
    DestroyWindow(hWnd);
}

} // namespace
