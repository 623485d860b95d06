#include "include/platform/Error.h"
#include "include/platform/Stream.h"
#include "tests/support/Picture.h"
#include "tests/support/Test.h"

namespace {

using Block = test::LeakTest;

std::string Content(HGLOBAL block)
{
    const std::string text(static_cast<const char*>(GlobalLock(block)), GlobalSize(block));
    GlobalUnlock(block);
    return text;
}

TEST_F(Block, AFixedOneIsItsAddressAndAMoveableOneIsNot)
{
    for (const UINT flags : {GMEM_FIXED, GMEM_MOVEABLE}) {
        const HGLOBAL block = GlobalAlloc(flags | GMEM_ZEROINIT, 5);
        EXPECT_EQ(Content(block), std::string(5, '\0'));
        std::memcpy(GlobalLock(block), "abcde", 5);
        EXPECT_EQ(Content(block), "abcde");
        EXPECT_EQ(GlobalLock(block) == block, flags == GMEM_FIXED);
        EXPECT_EQ(GlobalFree(block), nullptr);
    }
}

TEST_F(Block, LocksAreCounted)
{
    const HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, 1);
    EXPECT_EQ(GlobalUnlock(block), 0);
    EXPECT_EQ(GlobalLock(block), GlobalLock(block));
    EXPECT_NE(GlobalUnlock(block), 0);
    EXPECT_EQ(GlobalUnlock(block), 0);
    EXPECT_EQ(GlobalUnlock(block), 0);
    GlobalFree(block);
}

TEST_F(Block, NoneIsMadeBeyondTheLimitAndBadHandlesAreHarmless)
{
    SetLastError(ERROR_SUCCESS);
    EXPECT_EQ(GlobalAlloc(GMEM_FIXED, MAX_BLOCK_BYTES + 1), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_ENOUGH_MEMORY));
    EXPECT_EQ(GlobalAlloc(GMEM_MOVEABLE, SIZE_MAX), nullptr);
    const HGLOBAL empty = GlobalAlloc(GMEM_FIXED, 0), freed = GlobalAlloc(GMEM_MOVEABLE, 9);
    EXPECT_EQ(GlobalSize(empty), 0u);
    EXPECT_NE(GlobalLock(empty), nullptr);
    EXPECT_EQ(GlobalFree(empty), nullptr);
    EXPECT_EQ(GlobalFree(freed), nullptr);
    int other = 0;
    for (const HGLOBAL bad : {HGLOBAL{}, freed, HGLOBAL{&other}}) {
        EXPECT_EQ(GlobalLock(bad), nullptr);
        EXPECT_EQ(GlobalUnlock(bad), 0);
        EXPECT_EQ(GlobalSize(bad), 0u);
        EXPECT_EQ(GlobalFree(bad), bad);
    }
}

class StreamTest : public test::LeakTest
{
protected:
    ~StreamTest() override
    {
        if (stream) stream->Release();
    }
    void Make(HGLOBAL block, bool bDelete)
    {
        ASSERT_EQ(CreateStreamOnHGlobal(block, bDelete, &stream), S_OK);
    }
    // Over a fixed block of a text, which ends with it.
    HGLOBAL MakeOf(std::string_view text)
    {
        const HGLOBAL block = GlobalAlloc(GMEM_FIXED, text.size());
        std::memcpy(block, text.data(), text.size());
        Make(block, true);
        return block;
    }
    std::string Read(ULONG nBytes, HRESULT expected = S_OK)
    {
        std::string bytes(nBytes, '#');
        ULONG nRead = 99;
        EXPECT_EQ(stream->Read(bytes.data(), nBytes, &nRead), expected);
        return bytes.substr(0, nRead);
    }
    HRESULT Write(std::string_view text)
    {
        ULONG nWritten = 99;
        const HRESULT hr = stream->Write(text.data(), static_cast<ULONG>(text.size()), &nWritten);
        EXPECT_EQ(nWritten, hr == S_OK ? text.size() : 0u);
        return hr;
    }
    // The new position, or -1.
    std::int64_t Seek(std::int64_t nMove, DWORD nOrigin)
    {
        ULARGE_INTEGER at{};
        const HRESULT hr = stream->Seek({nMove}, nOrigin, &at);
        return hr == S_OK ? static_cast<std::int64_t>(at.QuadPart) : -1;
    }
    HGLOBAL Block()
    {
        HGLOBAL block = nullptr;
        EXPECT_EQ(GetHGlobalFromStream(stream, &block), S_OK);
        return block;
    }

    IStream* stream = nullptr;
};

TEST_F(StreamTest, ReadsAndWritesAtItsPosition)
{
    const HGLOBAL block = MakeOf("abcdef");
    EXPECT_EQ(Block(), block);
    EXPECT_EQ(Read(2), "ab");
    EXPECT_EQ(Write("CD"), S_OK);
    EXPECT_EQ(Read(9, S_FALSE), "ef");
    EXPECT_EQ(Read(1, S_FALSE), "");
    EXPECT_EQ(Read(0), "");
    EXPECT_EQ(Content(block), "abCDef");
    EXPECT_EQ(stream->Read(nullptr, 0, nullptr), S_OK);
    EXPECT_EQ(stream->Read(nullptr, 1, nullptr), E_POINTER);
    EXPECT_EQ(stream->Write(nullptr, 1, nullptr), E_POINTER);
}

TEST_F(StreamTest, SeeksFromThreePlacesButNotBeforeTheBeginning)
{
    Make(GlobalAlloc(GMEM_ZEROINIT, 10), true);
    EXPECT_THAT((std::array{Seek(4, STREAM_SEEK_SET), Seek(-1, STREAM_SEEK_CUR), Seek(-2, STREAM_SEEK_END)}),
                testing::ElementsAre(4, 3, 8));
    EXPECT_EQ(Seek(INT64_MAX, STREAM_SEEK_SET), INT64_MAX);
    EXPECT_EQ(Read(1, S_FALSE), "");
    EXPECT_EQ(Write("x"), STG_E_MEDIUMFULL);
    EXPECT_THAT((std::array{Seek(1, STREAM_SEEK_CUR), Seek(-11, STREAM_SEEK_END), Seek(0, 3)}),
                testing::Each(-1));
    EXPECT_EQ(Seek(0, STREAM_SEEK_CUR), INT64_MAX);
    EXPECT_EQ(stream->Seek({0}, STREAM_SEEK_SET, nullptr), S_OK);
}

TEST_F(StreamTest, AMoveableBlockGrowsAndAFixedOneIsFull)
{
    Make(nullptr, true);
    EXPECT_EQ(Write("abc"), S_OK);
    EXPECT_EQ(Seek(2, STREAM_SEEK_CUR), 5);
    EXPECT_EQ(GlobalSize(Block()), 3u);
    EXPECT_EQ(Write("f"), S_OK);
    EXPECT_EQ(Content(Block()), std::string("abc\0\0f", 6));
    const std::string long_text(100'000, 'x');
    EXPECT_EQ(Write(long_text), S_OK);
    EXPECT_EQ(GlobalSize(Block()), 100'006u);

    GlobalLock(Block());
    EXPECT_EQ(Write(long_text), STG_E_MEDIUMFULL); // would move under the lock
    GlobalUnlock(Block());
    EXPECT_EQ(Write(long_text), S_OK);
    stream->Release();

    Make(GlobalAlloc(GMEM_ZEROINIT, 3), true);
    EXPECT_EQ(Write("abcd"), STG_E_MEDIUMFULL);
    EXPECT_EQ(Write("abc"), S_OK);
}

TEST_F(StreamTest, ItsBlockEndsWithItOrBeforeItOrAfterIt)
{
    const HGLOBAL kept = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, 4);
    Make(kept, false);
    EXPECT_EQ(stream->Release(), 0u);
    EXPECT_EQ(GlobalSize(kept), 4u);
    Make(kept, true);
    EXPECT_EQ(GlobalFree(kept), nullptr);
    EXPECT_EQ(Read(1, S_FALSE), "");
    EXPECT_EQ(Write("x"), STG_E_MEDIUMFULL);
    EXPECT_EQ(Seek(0, STREAM_SEEK_END), 0);
    stream->Release();

    const HGLOBAL gone = GlobalAlloc(GMEM_FIXED, 1000);
    Make(gone, true);
    GlobalFree(gone);
    const HGLOBAL next = GlobalAlloc(GMEM_FIXED, 1000); // at the same address, as it usually is
    stream->Release();
    EXPECT_EQ(GlobalSize(next), 1000u);
    GlobalFree(next);
    Make(nullptr, true);
}

TEST_F(StreamTest, BytesMayComeFromTheBlockItself)
{
    const HGLOBAL block = MakeOf("abcdef");
    Seek(2, STREAM_SEEK_SET);
    EXPECT_EQ(stream->Write(GlobalLock(block), 4, nullptr), S_OK);
    EXPECT_EQ(Content(block), "ababcd");
    GlobalUnlock(block);
}

TEST_F(StreamTest, AnswersForItsInterfacesAndRefusesBadArguments)
{
    EXPECT_EQ(CreateStreamOnHGlobal(nullptr, 0, nullptr), E_POINTER);
    IStream* none = reinterpret_cast<IStream*>(this);
    EXPECT_EQ(CreateStreamOnHGlobal(this, 0, &none), E_INVALIDARG);
    EXPECT_EQ(none, nullptr);
    HGLOBAL block = this;
    EXPECT_EQ(GetHGlobalFromStream(nullptr, &block), E_INVALIDARG);
    EXPECT_EQ(block, nullptr);

    Make(nullptr, true);
    EXPECT_EQ(GetHGlobalFromStream(stream, nullptr), E_POINTER);
    for (const GUID& iid : {IID_IUnknown, IID_IStream}) {
        void* found = nullptr;
        EXPECT_EQ(stream->QueryInterface(iid, &found), S_OK);
        EXPECT_EQ(found, stream);
        EXPECT_EQ(stream->Release(), 1u);
    }
    void* found = this;
    EXPECT_EQ(stream->QueryInterface(GUID{}, &found), E_NOINTERFACE);
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(stream->QueryInterface(IID_IStream, nullptr), E_POINTER);
}

} // namespace
