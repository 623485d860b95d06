#include "include/platform/StdioFile.h"
#include "tests/platform/files/Mounted.h"

namespace {

constexpr std::size_t kBuffer = std::size_t{64} << 10;

bool Fails(const std::function<void()>& operation)
{
    return test::CauseOf(operation) != CFileException::none;
}

std::vector<std::string> Lines(const char* pszPath)
{
    std::vector<std::string> lines;
    CStdioFile file;
    EXPECT_TRUE(file.Open(pszPath, CFile::modeRead | CFile::shareDenyNone));
    CString strLine("left over");
    while (file.ReadString(strLine))
        lines.emplace_back(strLine.View());
    EXPECT_TRUE(strLine.IsEmpty());
    return lines;
}

using StdioFile = test::OnDrive;

} // namespace

TEST_F(StdioFile, LinesEndAtLfOrCrLfAndHaveAnyLength)
{
    const std::string huge(5'000'000, 'h');
    const std::string edge(kBuffer - 1, 'e'); // so that the CR is the block's last byte
    using std::string_literals::operator""s;
    const std::pair<std::string, std::vector<std::string>> facts[] = {
        {"", {}},
        {"\n", {""}},
        {"\r\n\n", {"", ""}},
        {"a", {"a"}},
        {"a\r\nb\nc", {"a", "b", "c"}},
        {"a\r\r\nb\rc\r", {"a\r", "b\rc\r"}},
        {"a\0b\nc"s, {"a\0b"s, "c"}},
        {"\xD5\x5C=\x81\n\xFF", {"\xD5\x5C=\x81", "\xFF"}},
        {edge + "\r\nb", {edge, "b"}},
        {edge + "\r" + "b\r\n", {edge + "\rb"}},
        {edge + "x\r\nb", {edge + "x", "b"}},
        {edge + "\r\r\n", {edge + "\r"}},
        {huge + "\r\n" + huge, {huge, huge}}};
    for (const auto& [content, lines] : facts) {
        drive.Write("text", content);
        EXPECT_TRUE(Lines("X:\\text") == lines) << content.substr(0, 20);
    }
}

TEST_F(StdioFile, WritesWhenTheBufferIsFullOrFlushed)
{
    CStdioFile file;
    ASSERT_TRUE(file.Open("X:\\log", CFile::modeCreate | CFile::modeWrite | CFile::shareDenyWrite));
    file.WriteString("l");
    EXPECT_EQ(file.GetLength(), 1u);
    const std::string line = std::string(999, 'l') + "\n";
    file.WriteString(line.c_str() + 1);
    for (int i = 1; i < 65; ++i)
        file.WriteString(line.c_str());
    EXPECT_EQ(drive.Read("log").size(), 0u);
    EXPECT_EQ(file.GetLength(), 65'000u);
    EXPECT_EQ(file.GetPosition(), 65'000u);
    file.WriteString(CString(line.c_str()));
    EXPECT_EQ(drive.Read("log").size(), 65'000u); // whole lines
    file.Flush();
    EXPECT_EQ(drive.Read("log").size(), 66'000u);
    file.Write(std::string(2 * kBuffer, 'b').data(), 2 * kBuffer);
    EXPECT_EQ(drive.Read("log").size(), 66'000 + 2 * kBuffer);
    file.WriteString("end");
    file.WriteString("");
    file.Close();
    EXPECT_TRUE(drive.Read("log").ends_with("bend"));
    {
        CStdioFile last;
        ASSERT_TRUE(last.Open("X:\\log", CFile::modeCreate | CFile::modeWrite));
        last.WriteString("by the end of the object");
    }
    EXPECT_EQ(drive.Read("log"), "by the end of the object");
}

TEST_F(StdioFile, ReadingAndWritingShareOnePosition)
{
    drive.Write("text", "one\ntwo\nthree\n");
    CStdioFile file;
    ASSERT_TRUE(file.Open("X:\\text", CFile::modeReadWrite));
    CString strLine;
    EXPECT_TRUE(file.ReadString(strLine));
    EXPECT_EQ(file.GetPosition(), 4u);
    file.WriteString("TWO");
    EXPECT_EQ(file.GetPosition(), 7u);
    std::array<char, 3> next{};
    EXPECT_EQ(file.Read(next.data(), 3), 3u);
    EXPECT_EQ(std::string(next.data(), 3), "\nth");
    EXPECT_EQ(file.Read(nullptr, 0), 0u);
    EXPECT_EQ(file.Seek(-2, CFile::current), 8u);
    EXPECT_TRUE(file.ReadString(strLine));
    EXPECT_EQ(strLine, "three");
    EXPECT_TRUE(Fails([&] { file.Seek(-1, CFile::begin); }));
    EXPECT_EQ(file.Seek(0, CFile::end), 14u);
    file.WriteString("end");
    file.SeekToBegin();
    std::string all(100, ' ');
    all.resize(file.Read(all.data(), all.size()));
    EXPECT_EQ(all, "one\nTWO\nthree\nend");
    drive.Write("big", std::string(3 * kBuffer + 5, 'b'));
    ASSERT_TRUE(file.Open("X:\\big", CFile::modeRead));
    all.resize(4 * kBuffer);
    EXPECT_EQ(file.Read(all.data(), kBuffer - 1), kBuffer - 1); // all that is buffered but one
    EXPECT_EQ(file.Read(all.data(), kBuffer + 1), kBuffer + 1);
    EXPECT_EQ(file.Read(all.data(), all.size()), kBuffer + 5);
}

TEST_F(StdioFile, FullDiskLosesTheTextAndNeverGrowsMemory)
{
    CStdioFile file;
    ASSERT_TRUE(file.Open("C:\\dev\\full", CFile::modeCreate | CFile::modeWrite | CFile::shareDenyWrite));
    const std::string line(1000, 'l');
    int nFailures = 0;
    for (int i = 0; i < 65 * 100; ++i)
        nFailures += Fails([&] { file.WriteString(line.c_str()); });
    EXPECT_EQ(nFailures, 98); // once for each full buffer, whose next line is lost with it
    EXPECT_TRUE(Fails([&] { file.Flush(); }));
    EXPECT_FALSE(Fails([&] { file.Flush(); })); // dropped
    EXPECT_EQ(file.GetPosition(), 0u);
    file.WriteString("x");
    EXPECT_TRUE(Fails([&] { file.Close(); }));
    EXPECT_FALSE(file.IsOpen());
    EXPECT_FALSE(Fails([&] { file.Close(); }));
}

TEST_F(StdioFile, ClosedOneAnswersReadsAndWritesWithAnException)
{
    CStdioFile file;
    CString strLine("x");
    EXPECT_TRUE(Fails([&] { file.ReadString(strLine); }));
    EXPECT_TRUE(Fails([&] { file.Read(nullptr, 0); }));
    EXPECT_TRUE(Fails([&] { file.WriteString("x"); }));
    EXPECT_TRUE(Fails([&] { file.WriteString(static_cast<const char*>(nullptr)); }));
    EXPECT_FALSE(Fails([&] { file.Flush(), file.Close(), file.Seek(0, CFile::end); }));
    EXPECT_EQ(file.GetLength(), 0u);
    EXPECT_EQ(file.GetPosition(), 0u);
}
