#include "include/platform/Error.h"
#include "include/platform/Module.h"
#include "tests/platform/gdi/LoadedImage.h"
#include "tests/platform/module/Bundles.h"
#include "tests/support/Process.h"

namespace {

using namespace test;

const Picture kPicture = {"RGB", "WKY"};

DWORD ErrorOf(const char* pszPath, UINT nType = IMAGE_BITMAP, int cx = 0, int cy = 0)
{
    SetLastError(ERROR_NOT_ENOUGH_MEMORY); // an older one, which isn't to be taken for this call's
    EXPECT_EQ(LoadImageA(nullptr, pszPath, nType, cx, cy, LR_LOADFROMFILE), nullptr);
    return GetLastError();
}

TEST(LoadImage, WhatIsNoReadableImageGivesNullAtOnce)
{
    const TempDir dir;
    dir.MakeDir("folder");
    dir.Write("empty.bmp", "");
    dir.Write("text.bmp", "BM is how this text begins, and it goes on for more bytes than a header has.");
    ASSERT_EQ(mkfifo(dir.Path("pipe.bmp").c_str(), 0600), 0);
    const std::string huge = dir.Write("huge.bmp", ToBmp(kPicture, 24).File());
    std::filesystem::resize_file(huge, 257u << 20); // the longest: four bytes a pixel, and one mebibyte
    EXPECT_EQ(LoadedBitmap(LoadImageA(nullptr, dir.Win("huge.bmp"), 0, 0, 0, LR_LOADFROMFILE)).Letters(),
              kPicture);
    std::filesystem::resize_file(huge, (257u << 20) + 1);

    EXPECT_EQ(ErrorOf(dir.Win("none.bmp")), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(ErrorOf(dir.Win("folder")), ERROR_ACCESS_DENIED);
    EXPECT_EQ(ErrorOf(dir.Win("pipe.bmp")), ERROR_ACCESS_DENIED);
    for (const char* name : {"empty.bmp", "text.bmp", "huge.bmp"})
        EXPECT_EQ(ErrorOf(dir.Win(name)), ERROR_RESOURCE_DATA_NOT_FOUND) << name;
    for (const auto& [nType, kind] : {std::pair{IMAGE_BITMAP, "a BMP file"}, {IMAGE_ICON, "an icon"}}) {
        const DebugText told(true);
        EXPECT_EQ(ErrorOf(dir.Win("text.bmp"), nType), ERROR_RESOURCE_DATA_NOT_FOUND);
        EXPECT_THAT(told.Text(), testing::EndsWith("text.bmp can't be read as " + std::string(kind) +
                                                   "; nothing is drawn from it\n"));
    }

    // A large file that is no picture, or claims a byte more than it has, is refused by its beginning.
    Bmp liar = ToBmp(kPicture, 24);
    liar.height = 16 << 20; // rows of 9 bytes and 3 of padding
    const auto readBytes = [&](const char* name, const std::string& head) {
        std::filesystem::resize_file(dir.Write(name, head), 54 + std::uintmax_t{12} * (16 << 20) - 4);
        const std::uint64_t nBefore = BytesRead();
        EXPECT_EQ(ErrorOf(dir.Win(name)), ERROR_RESOURCE_DATA_NOT_FOUND) << name;
        EXPECT_EQ(ErrorOf(dir.Win(name), IMAGE_ICON), ERROR_RESOURCE_DATA_NOT_FOUND) << name;
        return BytesRead() - nBefore;
    };
    EXPECT_LT(readBytes("noise.bmp", "no picture"), 1u << 20);
    EXPECT_LT(readBytes("liar.bmp", liar.File()), 1u << 20);

    const CString good = dir.Win("common\\GOOD.BMP"); // found as paths are
    dir.Write("Common/good.bmp", ToBmp(kPicture, 24).File());
    constexpr UINT nFlags = LR_LOADFROMFILE | LR_CREATEDIBSECTION;
    EXPECT_EQ(LoadedBitmap(LoadImageA(nullptr, good, IMAGE_BITMAP, 0, 0, nFlags)).Letters(), kPicture);
    for (const DWORD error : {ErrorOf(nullptr), ErrorOf(MAKEINTRESOURCEA(0xFFFF)), ErrorOf(good, 2),
                              ErrorOf(good, IMAGE_BITMAP, -1, 4), ErrorOf(good, IMAGE_BITMAP, 4, -1)})
        EXPECT_EQ(error, ERROR_INVALID_PARAMETER);
    EXPECT_EQ(ErrorOf(good, IMAGE_BITMAP, 1 << 20, 1 << 20), ERROR_RESOURCE_DATA_NOT_FOUND);
}

TEST(LoadImage, AnotherSizeTakesTheNearestPixels)
{
    const std::string file = ToBmp({"RGBW", "KYMC"}, 8).File();
    const std::tuple<int, int, Picture> cases[] = {{0, 0, {"RGBW", "KYMC"}},
                                                   {4, 2, {"RGBW", "KYMC"}},
                                                   {8, 0, {"RRGGBBWW", "KKYYMMCC"}},
                                                   {2, 1, {"RB"}},
                                                   {0, 4, {"RGBW", "RGBW", "KYMC", "KYMC"}}};
    for (const auto& [cx, cy, expected] : cases) {
        const LoadedBitmap bitmap(LoadFile(file, IMAGE_BITMAP, cx, cy));
        EXPECT_EQ(bitmap.Letters(), expected) << cx << " by " << cy;
        EXPECT_EQ(bitmap.Record().bmBitsPixel, 8);
    }
}

TEST(LoadImage, TakesResourcesByNumberAndName)
{
    const TempDir dir;
    const Bmp bmp = ToBmp(kPicture, 4);
    CompileBundle(dir, {{"BITMAP/101", bmp.Dib()},
                        {"BITMAP/102", bmp.File()},
                        {"BITMAP/BAR", bmp.File()},
                        {"BITMAP/103", "no picture"},
                        {"BITMAP/104", ""},
                        {"ICON/101", Ico({IconBmp({"RG"}, 4), IconBmp({"RGB"}, 4)})}});
    const HMODULE module = LoadLibraryA(dir.Win("bundle"));
    ASSERT_NE(module, nullptr);
    for (const char* name : {MAKEINTRESOURCEA(101), MAKEINTRESOURCEA(102), "#101", "Bar"}) {
        const LoadedBitmap bitmap(LoadBitmapA(module, name));
        EXPECT_EQ(bitmap.Letters(), kPicture);
        EXPECT_EQ(bitmap.Record().bmBitsPixel, 4);
    }
    for (const WORD id : {WORD{0}, WORD{99}, WORD{103}, WORD{104}})
        EXPECT_EQ(LoadBitmapA(module, MAKEINTRESOURCEA(id)), nullptr) << id;
    EXPECT_EQ(LoadBitmapA(nullptr, MAKEINTRESOURCEA(101)), nullptr) << "not of this module";

    EXPECT_EQ(DestroyIcon(static_cast<HICON>(LoadImageA(module, MAKEINTRESOURCEA(101), IMAGE_ICON, 3, 1, 0))),
              1);
    FreeLibrary(module);
    EXPECT_EQ(LoadBitmapA(module, MAKEINTRESOURCEA(101)), nullptr) << "after its end";
}

} // namespace
