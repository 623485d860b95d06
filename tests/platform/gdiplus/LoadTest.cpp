#include "tests/platform/gdiplus/Images.h"

namespace {

using namespace test;

using LoadTest = DrawingTest;

TEST_F(LoadTest, FilesAreReadWholeAndMayGoAtOnce)
{
    const TempDir dir;
    dir.Write("red.png", kRed);
    const Image image(Wide(dir.Win("red.png")).c_str());
    std::filesystem::remove(dir.Path("red.png"));
    EXPECT_EQ(image.GetLastStatus(), Ok);
    EXPECT_EQ(image.GetWidth(), 1u);

    dir.Write("words", "no picture");
    dir.Write("empty", "");
    dir.MakeDir("directory");
    for (const auto& [name, status] : {std::pair{"none", FileNotFound},
                                       {"none\\none", FileNotFound},
                                       {"directory", AccessDenied},
                                       {"words", UnknownImageFormat},
                                       {"empty", UnknownImageFormat}})
        EXPECT_EQ(Bitmap(Wide(dir.Win(name)).c_str()).GetLastStatus(), status) << name;
    EXPECT_EQ(Bitmap(u"").GetLastStatus(), FileNotFound);
    const CodePage gbk(936);
    dir.Write("\xE5\x9B\xBE.png", kRed);
    EXPECT_EQ(Bitmap((Wide(dir.Win()) + u"\\\u56FE.png").c_str()).GetLastStatus(), Ok);
}

// A file is told by its head: what can't be a picture costs no more than that, however long it is.
TEST_F(LoadTest, WhatIsNoPictureIsReadNoFurtherThanItsHead)
{
    const TempDir dir;
    const std::pair<std::string, Status> files[] = {
        {"no picture", UnknownImageFormat},
        {"BM" + std::string(60, 'x'), OutOfMemory},
        {"BM" + std::string(12, 'x') + "\x28\0\0\0\1\0\0\0\1\0\0\0"s, GenericError},
        {"\x89PNG\r\n\x1A\nIHDR", GenericError},
        {"GIF89a" + std::string(4, 1) + std::string(20, '\0'), GenericError}};
    for (const auto& [head, status] : files) {
        dir.Write("long", head);
        ASSERT_EQ(truncate(dir.Path("long").c_str(), MAX_IMAGE_BYTES), 0);
        const std::u16string path = Wide(dir.Win("long"));
        rusage before{}, after{};
        getrusage(RUSAGE_SELF, &before);
        EXPECT_EQ(Bitmap(path.c_str()).GetLastStatus(), status) << head;
        getrusage(RUSAGE_SELF, &after);
        EXPECT_LT(after.ru_maxrss, before.ru_maxrss + 65'536) << head; // KiB
    }
}

// A client's own stream, which gives its bytes in steps.
class OwnStream : public IStream
{
public:
    explicit OwnStream(std::string of, std::size_t nStep) : bytes(std::move(of)), step(nStep) {}
    virtual ~OwnStream() = default;
    HRESULT QueryInterface(const GUID&, void**) override { return E_NOINTERFACE; }
    ULONG AddRef() override { return ++refs; }
    ULONG Release() override { return --refs; }
    HRESULT Read(void* to, ULONG n, ULONG* pnRead) override
    {
        *pnRead = static_cast<ULONG>(std::min({std::size_t{n}, step, bytes.size() - at}));
        std::memcpy(to, bytes.data() + at, *pnRead);
        at += *pnRead;
        *pnRead += lie;
        if (*pnRead == 0) ++ends;
        return *pnRead > 0 || ends == 1 ? S_OK : S_FALSE; // the end is told by either
    }
    HRESULT Write(const void* from, ULONG n, ULONG* pnWritten) override
    {
        *pnWritten = static_cast<ULONG>(std::min({std::size_t{n}, step, room}));
        room -= *pnWritten;
        written.append(static_cast<const char*>(from), *pnWritten);
        return S_OK;
    }
    HRESULT Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER*) override
    {
        if (origin != STREAM_SEEK_SET || !seeks) return E_FAIL;
        at = static_cast<std::size_t>(move.QuadPart);
        return S_OK;
    }

    std::string bytes;
    std::size_t step;
    std::size_t at = 1;
    ULONG refs = 1;
    ULONG lie = 0;
    ULONG ends = 0;
    std::size_t room = 0;
    bool seeks = true;
    std::string written = {};
};

TEST_F(LoadTest, AStreamIsReadFromItsBeginningAndHeldAsLongAsTheImageLives)
{
    OwnStream stream(kRed, 1);
    {
        const Bitmap bitmap(&stream);
        EXPECT_EQ(bitmap.GetLastStatus(), Ok);
        EXPECT_EQ(bitmap.GetWidth(), 1u);
        EXPECT_EQ(stream.refs, 2u);
        EXPECT_EQ(stream.ends, 1u);
    }
    EXPECT_EQ(stream.refs, 1u);

    stream.bytes.resize(20);
    EXPECT_EQ(Image(&stream, 1).GetLastStatus(), GenericError);
    stream.lie = 1000;
    EXPECT_EQ(Image(&stream).GetLastStatus(), GenericError);
    stream.seeks = false;
    EXPECT_EQ(Image(&stream).GetLastStatus(), GenericError);
    EXPECT_EQ(stream.refs, 1u);
    const CLSID png = EncoderOf(u"png");
    EXPECT_EQ(GdipSaveImageToStream(Loaded(kRed), &stream, &png, nullptr), GenericError); // full
    stream.room = 1000;
    EXPECT_EQ(GdipSaveImageToStream(Loaded(kRed), &stream, &png, nullptr), Ok);
    EXPECT_TRUE(stream.written == Saved(Loaded(kRed), u"png"));
}

} // namespace
