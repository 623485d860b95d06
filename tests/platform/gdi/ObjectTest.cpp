#include "tests/support/Picture.h"
#include "tests/support/Test.h"

using namespace test;

namespace {

using Object = LeakTest;

HGDIOBJ Invented(std::uintptr_t n)
{
    return reinterpret_cast<HGDIOBJ>(n);
}

template <class Record>
Record Describe(HGDIOBJ object)
{
    Record record{};
    EXPECT_EQ(GetObjectA(object, 0, nullptr), static_cast<int>(sizeof record));
    EXPECT_EQ(GetObjectA(object, static_cast<int>(sizeof record) - 1, &record), 0);
    EXPECT_EQ(GetObjectA(object, sizeof record, &record), static_cast<int>(sizeof record));
    return record;
}

} // namespace

TEST_F(Object, IsNamedByItsHandleUntilItsEndAndByNoOtherNumber)
{
    const int nLive = KXHost::LiveHandles();
    const HBRUSH brush = CreateSolidBrush(0);
    EXPECT_EQ(KXHost::LiveHandles(), nLive + 1);
    EXPECT_EQ(DeleteObject(brush), 1);
    EXPECT_EQ(DeleteObject(brush), 0);
    const Scoped<HBRUSH> next(CreateSolidBrush(0)); // in the same place of the table
    EXPECT_NE(next, brush);
    const HGDIOBJ turned = Invented(reinterpret_cast<std::uintptr_t>(HBRUSH{next}) ^ std::uintptr_t{1} << 63);
    int local = 0;
    for (const HGDIOBJ handle :
         {HGDIOBJ{brush}, turned, HGDIOBJ{nullptr}, HGDIOBJ{&local}, Invented(1), Invented(5),
          Invented(UINTPTR_MAX), Invented(std::uintptr_t{1} << 32 | 0xFFFFF), Invented(0xFFFFFFFF)}) {
        EXPECT_EQ(GetObjectA(handle, 0, nullptr), 0);
        EXPECT_EQ(DeleteObject(handle), 0);
        EXPECT_EQ(SelectObject(Paper(1, 1), handle), nullptr);
        EXPECT_EQ(SelectObject(static_cast<HDC>(handle), next), nullptr);
        EXPECT_EQ(DeleteDC(static_cast<HDC>(handle)), 0);
        EXPECT_EQ(PtInRegion(static_cast<HRGN>(handle), 0, 0), 0);
    }
}

TEST_F(Object, OfAnotherClassServesNoOperation)
{
    const Scoped<HBRUSH> brush(CreateSolidBrush(0));
    const Scoped<HRGN> region(CreateRectRgn(0, 0, 1, 1));
    const Paper paper(1, 1);
    const RECT rect{0, 0, 1, 1};
    EXPECT_EQ(FillRect(paper, &rect, reinterpret_cast<HBRUSH>(HRGN{region})), 0);
    EXPECT_EQ(FillRgn(paper, reinterpret_cast<HRGN>(HBRUSH{brush}), brush), 0);
    EXPECT_EQ(GetPixel(reinterpret_cast<HDC>(HBRUSH{brush}), 0, 0), CLR_INVALID);
    EXPECT_EQ(SetPixel(reinterpret_cast<HDC>(HBRUSH{brush}), 0, 0, 0), CLR_INVALID);
    EXPECT_EQ(SelectObject(paper, HDC{paper}), nullptr);
    EXPECT_EQ(DeleteObject(HDC{paper}), 0);
    EXPECT_EQ(GetObjectA(HDC{paper}, 0, nullptr), 0);
}

TEST_F(Object, TellsItsRecord)
{
    EXPECT_THAT(Describe<BITMAP>(Paper(50, 7).Bitmap()), testing::FieldsAre(0, 50, 7, 200, 1, 32, nullptr));
    LOGFONTA log{};
    log.lfHeight = 33;
    std::fill(std::begin(log.lfFaceName), std::end(log.lfFaceName), 'F');
    const Scoped<HFONT> font(CreateFontIndirectA(&log));
    EXPECT_EQ(Describe<LOGFONTA>(font).lfHeight, 33);
    EXPECT_EQ(std::string(Describe<LOGFONTA>(font).lfFaceName), std::string(31, 'F'));

    const Scoped<HRGN> region(CreateRectRgn(0, 0, 1, 1));
    EXPECT_EQ(GetObjectA(region, 0, nullptr), 0);
    EXPECT_EQ(CreatePen(3, 1, 0), nullptr);
}

TEST_F(Object, StaysWhileASurfaceHoldsIt)
{
    const HBRUSH brush = CreateSolidBrush(ColorOf('R'));
    const HPEN pen = CreatePen(PS_SOLID, 1, ColorOf('G'));
    {
        const Paper paper(3, 3);
        const Paper other(1, 1);
        EXPECT_EQ(SelectObject(paper, brush), GetStockObject(WHITE_BRUSH));
        EXPECT_EQ(SelectObject(paper, brush), brush);
        // A tool may be in several surfaces.
        EXPECT_EQ(SelectObject(other, brush), GetStockObject(WHITE_BRUSH));
        EXPECT_EQ(SelectObject(paper, pen), GetStockObject(BLACK_PEN));
        for (const HGDIOBJ object : {HGDIOBJ{brush}, HGDIOBJ{pen}, HGDIOBJ{paper.Bitmap()}})
            EXPECT_EQ(DeleteObject(object), 0);
        EXPECT_EQ(SelectObject(paper, GetStockObject(WHITE_BRUSH)), brush);
        EXPECT_EQ(DeleteObject(brush), 0);
        Rectangle(paper, 0, 0, 3, 3);
        EXPECT_EQ(paper.Read(), (test::Picture{"GGG", "GWG", "GGG"}));
    }
    EXPECT_EQ(DeleteObject(brush), 1);
    EXPECT_EQ(DeleteObject(pen), 1);
}

TEST_F(Object, ABitmapIsInOneMemorySurfaceAtATime)
{
    const HDC first = CreateCompatibleDC(nullptr);
    const HDC second = CreateCompatibleDC(nullptr);
    const HDC desktop = GetDC(nullptr);
    const HBITMAP bitmap = CreateCompatibleBitmap(desktop, 2, 2);
    EXPECT_EQ(SelectObject(desktop, bitmap), nullptr);
    const HGDIOBJ own = SelectObject(first, bitmap);
    EXPECT_EQ(Describe<BITMAP>(own).bmBitsPixel, 32);
    EXPECT_EQ(SelectObject(second, bitmap), nullptr);
    EXPECT_EQ(GetPixel(first, 1, 1), 0u);
    EXPECT_EQ(SelectObject(first, own), bitmap);
    EXPECT_EQ(GetPixel(first, 1, 1), CLR_INVALID);
    EXPECT_NE(SelectObject(second, bitmap), nullptr);
    EXPECT_EQ(DeleteObject(bitmap), 0);
    EXPECT_EQ(DeleteDC(second), 1); // gives it back
    EXPECT_EQ(DeleteObject(own), 0);
    EXPECT_NE(SelectObject(first, bitmap), nullptr);
    EXPECT_EQ(DeleteDC(first), 1);
    EXPECT_EQ(GetObjectA(own, 0, nullptr), 0); // ended with its surface
    EXPECT_EQ(DeleteObject(bitmap), 1);
    EXPECT_EQ(ReleaseDC(nullptr, desktop), 1);
}

TEST_F(Object, StockIsAlwaysTheSameAndStays)
{
    for (const int n : {WHITE_BRUSH, LTGRAY_BRUSH, GRAY_BRUSH, DKGRAY_BRUSH, BLACK_BRUSH, NULL_BRUSH,
                        WHITE_PEN, BLACK_PEN, NULL_PEN}) {
        EXPECT_NE(GetStockObject(n), nullptr);
        EXPECT_EQ(DeleteObject(GetStockObject(n)), 0);
        EXPECT_EQ(GetStockObject(n), GetStockObject(n));
    }
    for (const int n : {-1, 9, 18, INT_MIN, INT_MAX})
        EXPECT_EQ(GetStockObject(n), nullptr) << n;
    const Paper paper(9, 3);
    const std::map<int, DWORD> greys{
        {BLACK_BRUSH, 0}, {DKGRAY_BRUSH, 64}, {GRAY_BRUSH, 128}, {LTGRAY_BRUSH, 192}, {WHITE_BRUSH, 255}};
    const RECT all{0, 0, 9, 3};
    for (const auto& [n, nGrey] : greys) {
        FillRect(paper, &all, static_cast<HBRUSH>(GetStockObject(n)));
        EXPECT_EQ(GetPixel(paper, 8, 2), RGB(nGrey, nGrey, nGrey));
    }
    FillRect(paper, &all, Scoped<HBRUSH>(CreateSolidBrush(ColorOf('R'))));
    SelectObject(paper, GetStockObject(NULL_BRUSH));
    for (const int n : {WHITE_PEN, BLACK_PEN, NULL_PEN}) {
        SelectObject(paper, GetStockObject(n));
        Rectangle(paper, 3 * (n - WHITE_PEN), 0, 3 * (n - WHITE_PEN) + 3, 3);
    }
    EXPECT_EQ(paper.Read(), (Picture{"WWW...RRR", "WRW.R.RRR", "WWW...RRR"}));
    for (const int n : {SYSTEM_FONT, DEFAULT_GUI_FONT})
        EXPECT_EQ(Describe<LOGFONTA>(GetStockObject(n)).lfHeight, -12);
}

TEST_F(Object, ThreadsMakeFindAndEndThemAtOnce)
{
    const auto make = [] {
        const HDC dc = CreateCompatibleDC(nullptr);
        const HBITMAP bitmap = CreateCompatibleBitmap(dc, 1, 1);
        DeleteDC(dc);
        return bitmap;
    };
    std::atomic<HBITMAP> shared{make()};
    RunThreads(3, [&](int) {
        for (int n = 0; n < 2000; ++n) {
            BITMAP record;
            GetObjectA(shared.load(), sizeof record, &record);
            const Scoped<HBITMAP> own(make());
            EXPECT_EQ(GetObjectA(own, 0, nullptr), static_cast<int>(sizeof(BITMAP)));
            if (n % 16 == 0) DeleteObject(shared.exchange(make()));
        }
    });
    DeleteObject(shared);
}
