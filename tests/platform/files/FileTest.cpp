#include "platform/files/WholeFile.h"
#include "tests/platform/files/Mounted.h"

using test::CauseOf;

namespace {

// The cause, and the system's own error.
std::pair<int, long> OpenFailure(const char* pszPath, unsigned nFlags)
{
    CFile file;
    CFileException failure;
    const bool bOpen = file.Open(pszPath, nFlags, &failure) != 0;
    EXPECT_EQ(bOpen, failure.m_cause == CFileException::none);
    return {failure.m_cause, failure.m_lOsError};
}
int OpenCause(const char* pszPath, unsigned nFlags)
{
    return OpenFailure(pszPath, nFlags).first;
}

CString TextOf(const CException& exception)
{
    std::array<char, 200> text{"untouched"};
    UINT nHelp = 7;
    const bool bText = exception.GetErrorMessage(text.data(), 200, &nHelp) != 0;
    EXPECT_EQ(bText, text[0] != '\0');
    EXPECT_EQ(nHelp, 0u);
    return text.data();
}

using File = test::OnDrive;

} // namespace

TEST_F(File, CreatesKeepsEmptiesAndMoves)
{
    CFile file;
    ASSERT_TRUE(file.Open("X:\\new", CFile::modeCreate | CFile::modeReadWrite));
    file.Write("0123456789", 10);
    errno = EIO; // of something before
    file.Write("", 0);
    EXPECT_EQ(file.GetPosition(), 10u);
    EXPECT_EQ(file.Seek(-3, CFile::current), 7u);
    std::array<char, 20> buffer{};
    EXPECT_EQ(file.Read(buffer.data(), 20), 3u);
    EXPECT_STREQ(buffer.data(), "789");
    EXPECT_EQ(file.Read(buffer.data(), 20), 0u);
    EXPECT_EQ(file.Seek(0, CFile::end), 10u);
    EXPECT_EQ(CauseOf([&] { file.Seek(-1, CFile::begin); }), CFileException::badSeek);
    EXPECT_EQ(CauseOf([&] { file.Seek(0, 9); }), CFileException::badSeek);
    EXPECT_EQ(file.GetLength(), 10u);
    EXPECT_EQ(file.GetFilePath(), "X:\\new");
    ASSERT_TRUE(
        file.Open("X:\\NEW", CFile::modeCreate | CFile::modeNoTruncate | CFile::modeWrite)); // closes first
    EXPECT_EQ(drive.Read("new").size(), 10u);
    file.Close();
    ASSERT_TRUE(file.Open("X:\\new", CFile::modeCreate)); // to be read
    EXPECT_EQ(file.GetLength(), 0u);
}

TEST_F(File, ClosedOneIsQuietButForReadsAndWrites)
{
    CFile file;
    EXPECT_FALSE(file.Open("X:\\none", CFile::modeRead)); // no record for the reason
    char ch = 0;
    EXPECT_EQ(CauseOf([&] { file.Read(&ch, 1); }), CFileException::invalidFile);
    EXPECT_EQ(CauseOf([&] { file.Write(&ch, 1); }), CFileException::invalidFile);
    EXPECT_EQ(CauseOf([&] { file.Close(), file.Flush(), file.SeekToBegin(); }), CFileException::none);
    EXPECT_THAT((std::array{file.GetLength(), file.GetPosition(), file.Seek(3, CFile::begin)}),
                testing::Each(0));
    EXPECT_FALSE(file.IsOpen());
    EXPECT_EQ(file.GetFilePath(), "");
}

TEST_F(File, FailuresToOpenTellTheCause)
{
    drive.Write("file", "content");
    drive.MakeDir("dir");
    mkfifo(drive.Path("pipe").c_str(), 0600);
    const std::string overlong = "X:\\" + std::string(300, 'a');
    const std::tuple<const char*, unsigned, int, int> facts[] = {
        {"X:\\none", CFile::modeRead, CFileException::fileNotFound, ENOENT},
        {"X:\\none", CFile::modeWrite, CFileException::fileNotFound, ENOENT},
        {"X:\\none\\a", CFile::modeCreate | CFile::modeWrite, CFileException::badPath, ENOENT},
        {"X:\\file\\a", CFile::modeRead, CFileException::badPath, ENOTDIR},
        {"X:\\file\\", CFile::modeRead, CFileException::badPath, ENOTDIR},
        {"Q:\\file", CFile::modeRead, CFileException::badPath, ENOENT},
        {overlong.c_str(), CFile::modeRead, CFileException::badPath, ENAMETOOLONG},
        {"X:\\\xFF", CFile::modeRead, CFileException::badPath, EILSEQ},
        {nullptr, CFile::modeRead, CFileException::badPath, ENOENT},
        {"X:\\dir", CFile::modeRead, CFileException::accessDenied, EISDIR},
        {"X:\\dir", CFile::modeCreate | CFile::modeWrite, CFileException::accessDenied, EISDIR},
        {"X:\\pipe", CFile::modeRead, CFileException::accessDenied, EACCES},
        {"X:\\pipe", CFile::modeReadWrite, CFileException::accessDenied, EACCES},
        {"X:\\file", 3, CFileException::badPath, EINVAL},
        {"X:\\file", CFile::modeRead | CFile::typeText | CFile::modeNoInherit, CFileException::none, 0}};
    for (const auto& [path, flags, cause, error] : facts)
        EXPECT_EQ(OpenFailure(path, flags), std::pair(cause, static_cast<long>(error))) << path;
    EXPECT_EQ(drive.Read("file"), "content");
}

TEST_F(File, DevicesAreFilesAndAFullOneSaysSo)
{
    CFile file;
    CFileException none;
    ASSERT_TRUE(file.Open("C:\\dev\\full", CFile::modeCreate | CFile::modeWrite, &none));
    CFile second;
    EXPECT_TRUE(second.Open("C:\\dev\\full", CFile::modeWrite)); // devices are not kept from others
    const CFileException failure = test::FailureOf([&] { file.Write("x", 1); });
    EXPECT_EQ(failure.m_cause, CFileException::diskFull);
    EXPECT_EQ(failure.m_lOsError, ENOSPC);
    EXPECT_EQ(TextOf(failure), "C:\\dev\\full: The disk is full.");
    // A file whose size isn't told is read whole, up to a limit.
    kx::files::FileContent content;
    EXPECT_EQ(kx::files::ReadWholeFile("/proc/self/maps", 10'000'000, content), ERROR_SUCCESS);
    EXPECT_THAT(content.bytes, testing::HasSubstr("[stack]")); // stands near its end
    EXPECT_EQ(kx::files::ReadWholeFile("/proc/self/pagemap", 8191, content), ERROR_ACCESS_DENIED);
}

TEST_F(File, TakesAnyDescriptorThatIsFree)
{
    drive.Write("file", "");
    const kx::UniqueFd input(dup(STDIN_FILENO));
    close(STDIN_FILENO);
    {
        CFile file;
        EXPECT_TRUE(file.Open("X:\\file", CFile::modeRead)); // as the first
        EXPECT_EQ(file.GetLength(), 0u);
    }
    EXPECT_EQ(fcntl(STDIN_FILENO, F_GETFD), -1);
    dup2(input.Get(), STDIN_FILENO);
}

TEST_F(File, WritersShareAsTheySayAndReadersAlwaysDo)
{
    const CString strPath = drive.Win("file"); // as other processes know it
    const unsigned exclusive[] = {CFile::shareCompat, CFile::shareExclusive, CFile::shareDenyWrite};
    const unsigned open[] = {CFile::shareDenyNone, CFile::shareDenyRead};
    const auto second = [&](unsigned first, unsigned flags) {
        CFile file;
        EXPECT_TRUE(file.Open(strPath, CFile::modeCreate | CFile::modeWrite | first));
        file.Write("kept", 4);
        const int nHere = OpenCause(strPath, flags);
        test::Child child("OpenChild", {strPath.GetString(), std::to_string(flags)});
        EXPECT_EQ(child.Wait(), nHere);
        return nHere;
    };
    for (const unsigned first : exclusive) {
        EXPECT_EQ(second(first, CFile::modeCreate | CFile::modeWrite | CFile::shareDenyNone),
                  CFileException::sharingViolation);
        EXPECT_EQ(drive.Read("file"), "kept");
        EXPECT_EQ(second(first, CFile::modeRead | CFile::shareExclusive), CFileException::none);
    }
    for (const unsigned first : open) {
        EXPECT_EQ(second(first, CFile::modeReadWrite | CFile::shareDenyNone), CFileException::none);
        EXPECT_EQ(second(first, CFile::modeWrite | CFile::shareDenyWrite), CFileException::sharingViolation);
    }
    CFile reader;
    EXPECT_TRUE(reader.Open(strPath, CFile::modeRead | CFile::shareExclusive));
    EXPECT_EQ(OpenCause(strPath, CFile::modeWrite | CFile::shareExclusive), CFileException::none);
}

// A process has copies of its parent's descriptors until it runs a program of its own. They keep no file from
// others once it is closed; and what a fork closes stays its parent's.
TEST_F(File, IsFreeForOthersOnceClosedWhoeverHasCopies)
{
    const unsigned flags = CFile::modeCreate | CFile::modeWrite | CFile::shareDenyWrite;
    CFile file;
    ASSERT_TRUE(file.Open("X:\\held", flags));
    EXPECT_EQ(test::InFork([&] { return file.Abort(), 0; }), 0);
    EXPECT_EQ(OpenCause("X:\\held", flags), CFileException::sharingViolation);

    test::Child holding([] { return pause(); });
    file.Close();
    EXPECT_EQ(OpenCause("X:\\held", flags), CFileException::none);
    holding.Kill();
    holding.Wait();

    const auto openAndDie = [&] { return CFile().Open("X:\\held", flags) ? raise(SIGKILL) : 1; };
    EXPECT_EQ(test::InFork(openAndDie), 128 + SIGKILL);
    EXPECT_EQ(OpenCause("X:\\held", flags), CFileException::none);
}

TEST(Exceptions, TextsNameTheFileAndTheCauseAndFitTheBuffer)
{
    CFileException failure;
    CFile().Open("X:\\\xD5\x5C.txt", CFile::modeRead, &failure);
    EXPECT_EQ(TextOf(failure), "X:\\\xD5\x5C.txt: The path is invalid, or a directory of it doesn't exist.");
    EXPECT_EQ(TextOf(CFileException(CFileException::fileNotFound)), "The file was not found.");
    EXPECT_EQ(TextOf(CFileException(CFileException::genericException, EFAULT, "f")),
              "f: The file can't be used. (Bad address)");
    EXPECT_EQ(TextOf(CFileException()), "");
    EXPECT_EQ(TextOf(CException()), "");
    std::array<char, 5> small{};
    EXPECT_TRUE(failure.GetErrorMessage(small.data(), 5));
    EXPECT_STREQ(small.data(), "X:\\"); // no half character
    EXPECT_TRUE(failure.GetErrorMessage(small.data(), 1));
    EXPECT_STREQ(small.data(), "");
    EXPECT_FALSE(failure.GetErrorMessage(nullptr, 5));
    EXPECT_FALSE(failure.GetErrorMessage(small.data(), 0));
    EXPECT_EQ(TextOf(test::FailureOf([] { AfxThrowFileException(CFileException::endOfFile, 0, "f"); })),
              "f: The file ended unexpectedly.");
    const std::pair<void (*)(), const char*> throwers[] = {
        {AfxThrowMemoryException, "There is not enough memory."},
        {AfxThrowInvalidArgException, "An argument is invalid."}};
    for (const auto& [thrower, text] : throwers) {
        try {
            thrower();
        } catch (CException* pException) {
            EXPECT_EQ(TextOf(*pException), text);
            pException->Delete();
        }
    }
}
