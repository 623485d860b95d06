#include "include/platform/Version.h"
#include "include/platform/Error.h"
#include "tests/platform/module/Images.h"

namespace {

using namespace test;

std::string VersionOf(const char* pszPath)
{
    SetLastError(0);
    DWORD handle = 1;
    const DWORD size = GetFileVersionInfoSizeA(pszPath, &handle);
    EXPECT_EQ(handle, 0u);
    std::vector<std::uint64_t> block(size / 8 + 16, 0x2323232323232323);
    EXPECT_EQ(GetFileVersionInfoA(pszPath, 0, 128, block.data()) != 0, size != 0);
    void* record = nullptr;
    UINT recordSize = 0;
    if (size == 0 || !VerQueryValueA(block.data(), "\\", &record, &recordSize)) return "none";
    EXPECT_EQ(recordSize, sizeof(VS_FIXEDFILEINFO));
    const auto* const info = static_cast<VS_FIXEDFILEINFO*>(record);
    std::string numbers;
    for (const DWORD pair : {info->dwFileVersionMS, info->dwFileVersionLS})
        numbers += std::to_string(pair >> 16) + '.' + std::to_string(pair & 0xFFFF) + '.';
    numbers.pop_back();
    return numbers;
}

std::string VersionOf(const Image& image)
{
    static const TempDir dir;
    dir.Write("image", image.bytes);
    return VersionOf(dir.Win("image"));
}

TEST(FileVersion, IsAPeImagesFixedRecordOrAnElfFilesNote)
{
    for (const bool b64 : {false, true})
        EXPECT_EQ(VersionOf(PeImage(b64)), "1.2.3.4");
    EXPECT_EQ(VersionOf(ElfImage()), "5.6.7.8");
}

// Fields by place and width, each with what isn't to be believed of it.
using Lies = std::vector<std::tuple<std::size_t, std::size_t, std::vector<std::uint64_t>>>;

void ExpectNone(const Image& sound, const Lies& lies)
{
    for (const auto& [place, width, values] : lies)
        for (const std::uint64_t value : values) {
            Image image = sound;
            image.Put(place, width, value);
            EXPECT_EQ(VersionOf(image), "none") << std::hex << place << ' ' << value;
            EXPECT_EQ(GetLastError(), ERROR_RESOURCE_DATA_NOT_FOUND);
        }
}

TEST(FileVersion, LyingPeHeadersGiveNone)
{
    for (const bool b64 : {false, true}) {
        SCOPED_TRACE(b64);
        const PeFields at(b64);
        ExpectNone(PeImage(b64),
                   {
                       {0, 1, {'N'}},
                       {at.peAt, 4, {0xFFFFFFFF, 0x5F0}},
                       {at.pe, 1, {'L'}},
                       {at.pe + 6, 2, {0, 0xFFFF}},    // no section, and more than the file holds
                       {at.pe + 20, 2, {100, 0xFFFF}}, // no room for the directories
                       {at.optional, 2, {0x107}},      // another kind of image
                       {at.directories - 4, 4, {2}},   // the resource directory isn't there
                       {at.directories + 16, 4, {0, 0xFFFFFFF8}},
                       {at.section + 16, 4, {15, 0x60 + 91}}, // too small for the tree, and for the record
                       {at.section + 12, 4, {0x2001}},        // the address lies before it
                       {at.section + 20, 4, {0xFFFFFF00}},
                       {at.root + 24, 4, {17}}, // another type
                       // A tree that goes round, and a leaf where a directory should be.
                       {at.root + 28, 4, {0x80000000, 0x20, 0xFFFFFFFF}},
                       {at.root + 12, 4, {0xFFFFFFFF}}, // 131,070 entries
                       {at.names + 12, 4, {0}},
                       {at.names + 20, 4, {0x80000020, 0x50}}, // to itself, and a leaf
                       {at.languages + 12, 4, {0}},
                       {at.languages + 20, 4, {0x80000050, 0x1FF}},
                       {at.data, 4, {0x21B0, 0xFFFFFFFF}}, // the record would reach past its section
                       {at.data + 4, 4, {91}},
                       {at.head, 2, {91}},
                       {at.head + 2, 2, {51}},
                       {at.head + 6, 1, {'W'}},
                       {at.head + 36, 1, {'!'}},
                       {at.record, 4, {0xFEEF04BC}},
                   });
    }
}

TEST(FileVersion, OfManyNamesAndLanguagesAFewAreTried)
{
    Image image = PeImage(true);
    image.Put(PeFields::names + 12, 4, 0xFFFFFFFF);
    image.Put(PeFields::languages + 12, 4, 0xFFFFFFFF);
    EXPECT_EQ(VersionOf(image), "1.2.3.4");
}

TEST(FileVersion, ASecondNameServesWhereTheFirstHasNoRecord)
{
    const PeFields at(true);
    Image image = PeImage(true);
    image.Text(at.languages, std::string_view(image.bytes).substr(at.names, 24));
    image.Text(at.names, std::string(24, '\0'));
    image.Put(at.root + 28, 4, 0x80000180);
    image.Put(0x580 + 12, 4, 0x00020000); // two names
    image.Put(0x580 + 20, 4, 0x80000000 | 0x1F0);
    image.Put(0x580 + 28, 4, 0x800001A0);
    image.Put(0x5A0 + 12, 4, 0x00020000); // two languages
    image.Put(0x5A0 + 20, 4, 0x1F0);
    image.Put(0x5A0 + 28, 4, at.data - at.root);
    EXPECT_EQ(VersionOf(image), "1.2.3.4");
}

TEST(FileVersion, LyingElfHeadersGiveNone)
{
    const std::size_t entry = 64 + 56;
    ExpectNone(ElfImage(), {
                               {0, 1, {0}},
                               {4, 1, {1}},
                               {5, 1, {0, 2}}, // the other byte order
                               {32, 8, {0xFFFFFFFFFFFFFFFF}},
                               {54, 2, {55}},
                               {56, 2, {1}},
                               {entry + 8, 8, {0xFFFFFFFFFFFFFFF0}},
                               {entry + 32, 8, {0xFFFFFFFFFFFFFFFF, 59}}, // the note is cut short
                               {0x100, 4, {0xFFFFFFFF}},                  // a name of 4 GiB
                               {0x104, 4, {0xFFFFFFFD}},
                               {kElfNote, 4, {9}},
                               {kElfNote + 4, 4, {12}},
                               {kElfNote + 8, 4, {2}},
                               {kElfNote + 12, 1, {'k'}},
                               {kElfNote + 24, 4, {0x10000}}, // no 16-bit number
                           });
}

// A false or a missing byte gives another version or none, in no time, and never a read outside.
TEST(FileVersion, DamageIsHarmless)
{
    const TempDir dir;
    const CString path = dir.Win("image");
    for (const Image& image : {PeImage(false), PeImage(true), ElfImage()}) {
        std::fstream file(dir.Write("image", image.bytes), std::ios::in | std::ios::out | std::ios::binary);
        for (std::size_t at = 0; at < image.bytes.size(); ++at)
            for (const char value : {'\0', '\x7F', '\x80', '\xFF', image.bytes[at]}) {
                file.seekp(static_cast<std::streamoff>(at)).put(value).flush();
                VersionOf(path);
            }
        EXPECT_NE(VersionOf(path), "none");
        for (std::size_t length = std::min(image.bytes.size(), PeFields::end); length-- > 0;) {
            std::filesystem::resize_file(dir.Path("image"), length);
            ASSERT_EQ(VersionOf(path), "none") << length;
        }
    }
}

TEST(FileVersion, WhatIsNoFileHasNone)
{
    const TempDir dir;
    dir.Write("empty", "");
    ASSERT_EQ(mkfifo(dir.Path("fifo").c_str(), 0600), 0);
    // The pipe's at once, with no writer there.
    for (const CString& strPath : {dir.Win("fifo"), dir.Win("empty"), dir.Win(), CString("C:\\dev\\zero"),
                                   CString(), dir.Win("absent")})
        EXPECT_EQ(VersionOf(strPath), "none");
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(VersionOf(static_cast<const char*>(nullptr)), "none");
}

TEST(FileVersion, BlocksAreChecked)
{
    const TempDir dir;
    dir.Write("image", PeImage(true).bytes);
    const CString path = dir.Win("image");
    const DWORD size = GetFileVersionInfoSizeA(path, nullptr);
    std::vector<std::uint32_t> block(size / 4);
    EXPECT_EQ(GetFileVersionInfoA(path, 0, size - 1, block.data()), 0);
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(GetFileVersionInfoA(path, 0, size, nullptr), 0);

    void* record = nullptr;
    EXPECT_EQ(VerQueryValueA(block.data(), "\\", &record, nullptr), 0); // all zero
    ASSERT_EQ(GetFileVersionInfoA(path, 0, size, block.data()), 1);
    EXPECT_EQ(VerQueryValueA(block.data(), "\\VarFileInfo\\Translation", &record, nullptr), 0);
    EXPECT_EQ(VerQueryValueA(block.data(), "", &record, nullptr), 0);
    EXPECT_EQ(VerQueryValueA(block.data(), nullptr, &record, nullptr), 0);
    EXPECT_EQ(VerQueryValueA(nullptr, "\\", &record, nullptr), 0);
    EXPECT_EQ(VerQueryValueA(block.data(), "\\", nullptr, nullptr), 0);
    EXPECT_EQ(record, nullptr);
    ASSERT_EQ(VerQueryValueA(block.data(), "\\", &record, nullptr), 1);
    EXPECT_EQ(static_cast<VS_FIXEDFILEINFO*>(record)->dwFileDateLS, 77u);
}

} // namespace
