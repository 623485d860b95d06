#include "KXMemDC.h"
#include "KXMemoryDC.h"
#include "KXPaintMemoryDC.h"
#include "tests/support/Picture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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
    const test::NoLeak noLeak;
    const test::Paper paper(test::Picture{"RGB", "CMY"});
    CDC& dc = *CDC::FromHandle(paper);
    CKXMemDC mem;
    EXPECT_EQ(mem.IsValid(), 0);
    mem.FromDC();
    mem.Create(&dc, CRect(1, 0, 3, 2), 0xFFFFFFFF);
    EXPECT_EQ(mem.IsValid(), 1);
    EXPECT_EQ(SizeOf(mem.GetBitmap()), CSize(2, 2));
    mem.FromDC();
    EXPECT_THAT(test::Read(mem, 0, 0, 2, 2), ElementsAre("GB", "MY"));
    mem.Create(&dc, CRect(), 0xFFFFFFFF); // anew, of the clip box
    EXPECT_EQ(SizeOf(mem.GetBitmap()), CSize(3, 2));
    EXPECT_STREQ(mem.GetRuntimeClass()->m_lpszClassName, "CKXMemDC");
    EXPECT_TRUE(mem.IsKindOf(CDC::GetThisClass()));
    EXPECT_EQ(mem.GetRuntimeClass()->m_wSchema, 0xFFFFu);
}

TEST(MemDC, FillsItsRectangleUnshifted)
{
    const test::Paper paper(8, 8);
    CKXMemDC mem(CDC::FromHandle(paper), CRect(1, 2, 5, 6), test::ColorOf('R'));
    EXPECT_THAT(test::Read(mem, 0, 0, 4, 4), ElementsAre("....", "....", ".RRR", ".RRR"));
    CKXMemDC black(CDC::FromHandle(paper), CRect(0, 0, 2, 2), 0);
    EXPECT_EQ(black.GetPixel(0, 0), 0u);
}

TEST(MemoryDC, IsMadeDestroyedAndMadeAgain)
{
    const test::NoLeak noLeak;
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
    mem.GetDC().FillSolidRect(0, 0, 9, 9, 0xFF);
}

TEST(PaintMemoryDC, CopiesItselfAtItsEnd)
{
    const test::NoLeak noLeak;
    const test::Paper paper(4, 3, 'W');
    {
        CKXPaintMemoryDC mem(CDC::FromHandle(paper), CRect(1, 1, 3, 3));
        CDC& dc = mem;
        dc.FillSolidRect(0, 0, 1, 2, test::ColorOf('R'));
        EXPECT_EQ(test::LetterOf(GetPixel(paper, 1, 1)), 'W');
    }
    EXPECT_THAT(paper.Read(), ElementsAre("WWWW", "WR.W", "WR.W"));
    const CKXPaintMemoryDC nowhere(nullptr, CRect(0, 0, 2, 2));
}

} // namespace
