#include "include/platform/Dc.h"
#include "tests/support/Picture.h"

#include <climits>
#include <gtest/gtest.h>

namespace {

// A wrapper lives at least as long as its handle, whatever comes and goes meanwhile.
template <class Wrapper, class Make>
void ExpectKept(Make make)
{
    const auto handle = make();
    auto* wrapper = Wrapper::FromHandle(handle);
    for (int n = 0; n < 200; ++n) {
        const test::Scoped other(make());
        EXPECT_EQ(Wrapper::FromHandle(other)->GetSafeHandle(), other);
    }
    EXPECT_EQ(Wrapper::FromHandle(handle), wrapper);
    EXPECT_EQ(wrapper->GetSafeHandle(), handle);
    DeleteObject(handle);
}

TEST(Wrapper, OfALivingHandleStays)
{
    const test::NoLeak noLeak;
    const auto region = [] { return CreateRectRgn(0, 0, 1, 1); };
    ExpectKept<CRgn>(region);
    ExpectKept<CGdiObject>(region);
    ExpectKept<CPen>([] { return CreatePen(PS_SOLID, 1, 0); });
    EXPECT_EQ(CRgn::FromHandle(nullptr), nullptr);
}

TEST(Wrapper, ARegionIsCopiedIntoTheClip)
{
    const test::Paper paper(6, 4);
    CDC& dc = *CDC::FromHandle(paper);
    CRgn region;
    EXPECT_EQ(dc.SelectObject(&region), RGN_ERROR);
    region.CreateRectRgn(1, 1, 3, 9);
    EXPECT_EQ(dc.SelectObject(&region), SIMPLEREGION);
    EXPECT_EQ(dc.SelectObject(static_cast<CGdiObject*>(&region)), nullptr); // displaces no object
    EXPECT_EQ(dc.SelectObject(static_cast<CRgn*>(nullptr)), RGN_ERROR);
    RECT box;
    EXPECT_EQ(dc.GetClipBox(&box), SIMPLEREGION);
    EXPECT_EQ(box, CRect(1, 1, 3, 4));
}

TEST(Wrapper, FillsToTheEndOfTheRange)
{
    const test::Paper paper(3, 1);
    CDC& dc = *CDC::FromHandle(paper);
    dc.FillSolidRect(1, -1, INT_MAX, INT_MAX, test::ColorOf('R'));
    EXPECT_EQ(paper.Read(), test::Picture{".RR"});
    dc.FillSolidRect(INT_MIN, INT_MIN, INT_MIN, INT_MIN, test::ColorOf('G'));
    EXPECT_EQ(paper.Read(), test::Picture{".RR"});
}

} // namespace
