#include "tests/language/LanguageTree.h"
#include "tests/support/Test.h"

#include <malloc.h>

using namespace test;
using testing::ElementsAre, testing::FieldsAre, testing::HasSubstr;

namespace {

struct LanData : testing::Test
{
    // Selects a language with this `Data.txt`.
    void Load(const std::string& data)
    {
        tree.Add("L", "L", data);
        ASSERT_EQ(lans->Initialize(tree.Name().c_str()), 1);
        ASSERT_EQ(lans->SetCurrentLan("L", 0), 1);
    }
    std::string Get(const char* pszKey) { return lans->GetString(pszKey).GetString(); }
    void ExpectTexts(const std::vector<std::pair<const char*, const char*>>& texts)
    {
        for (const auto& [pszKey, pszText] : texts)
            EXPECT_EQ(Get(pszKey), pszText) << pszKey;
    }

    LanguageTree tree;
    CKXLanResManager* lans = (AppDir(), CKXLanResManager::GetSingletonPtr());
};

TEST_F(LanData, ReadsLinesOfKeyAndValue)
{
    Load("a=b=c\r\n"
         "=empty key\n"
         "k=\n"
         "  padded \t =\v v v \f\r\n"
         "[Section]\n\nno entry\n"
         "; note = text\n"
         "dup=first\ndup=second\nDUP=other\n"
         "long=" +
         std::string(50'000, 'x') +
         "\n"
         "last=without an end");
    ExpectTexts({{"a", "b=c"}, {"", "empty key"}, {"k", ""}, {"padded", "v v"}, {"[Section]", "[Section]"}});
    ExpectTexts(
        {{"; note", "text"}, {"dup", "first"}, {"DUP", "other"}, {"last", "without an end"}, {" a", " a"}});
    EXPECT_EQ(Get("long").size(), 50'000u);
}

TEST_F(LanData, ReplacesEscapesInValuesAlone)
{
    Load("crlf=1\\r\\n2\nlf=1\\n2\\n\ntab=1\\t2\nback=\\\\n\nr=\\r\\\n"
         "k\\n=v\n"
         "gbk=\x95\x5Cn\x95\x5C\\t\n"); // a letter whose second byte is a backslash
    ExpectTexts({{"crlf", "1\r\n2"}, {"lf", "1\r\n2\r\n"}, {"tab", "1\t2"}, {"back", "\\\r\n"}});
    ExpectTexts({{"r", "\\r\\"}, {"k\\n", "v"}, {"gbk", "\x95\x5Cn\x95\x5C\t"}});
}

TEST_F(LanData, TextsByHandNeverOverwriteAndEndWithTheLanguage)
{
    Load("k=file\n");
    lans->InsertString("k", "hand");
    lans->InsertString(" k", " a\\n ");
    lans->InsertString("n", "first");
    lans->InsertString("n", "second");
    EXPECT_EQ(Get("k"), "file");
    EXPECT_EQ(Get(" k"), " a\r\n ");
    EXPECT_EQ(Get("n"), "first");
    lans->SetCurrentLan("L", 0);
    EXPECT_EQ(Get("n"), "n");
    // A text that is there costs nothing more.
    const std::string key(100'000, 'k');
    lans->InsertString(key.c_str(), "first");
    const std::size_t nBefore = mallinfo2().uordblks + mallinfo2().hblkhd;
    for (int n = 0; n < 1000; ++n)
        lans->InsertString(key.c_str(), "again");
    EXPECT_LT(mallinfo2().uordblks + mallinfo2().hblkhd, nBefore + 1'000'000);
}

// Diagnostics tell of what the table passes over, and of each missing key once for each selection.
TEST_F(LanData, DiagnosticsTellWhatIsWrongWithTheTexts)
{
    const DebugText described;
    Load("\xEF\xBB\xBFmarked=x\nk=v\nk=w\n");
    Get("none");
    const DebugText debug(true);
    Get("none");
    AppDir().MakeDir(tree.Path("nameless"));
    lans->Initialize(tree.Name().c_str());
    lans->SetCurrentLan("L", 0);
    for (int n = 0; n < 2; ++n)
        Get("none");
    const std::string root = "language: " + std::string(AppDir().Win(tree.Name())) + "\\";
    const std::string data = root + "L\\Data.txt";
    const std::string missing = "language: there is no text for key \"none\"; the key is taken\n";
    EXPECT_EQ(debug.Text(), missing + root +
                                "nameless is passed over: its Lan.ini isn't there or has no key Language in "
                                "section [Language]\n" +
                                data +
                                ":1: begins with a mark of UTF-8, which becomes part of the first key\n" +
                                data + ":3: key k stands at line 2 already, and that text is taken\n" + data +
                                " seems to be UTF-8, and is read in another code page\n" + missing);
    EXPECT_EQ(described.Text(), "");
}

TEST_F(LanData, AFileThatCannotBeReadIsShownAndTheSelectionStands)
{
    Load("k=v\n");
    const char* const ids[] = {"Missing", "Directory", "Pipe", "Unreadable"};
    for (const std::string id : ids)
        AppDir().Write(tree.Path(id + "/Lan.ini"), "[Language]\nLanguage=L\n");
    AppDir().MakeDir(tree.Path("Directory/Data.txt"));
    ASSERT_EQ(mkfifo(AppDir().Path(tree.Path("Pipe/Data.txt")).c_str(), 0600), 0);
    std::filesystem::create_symlink("/proc/self/mem",
                                    AppDir().Path(tree.Path("Unreadable/Data.txt"))); // opens
    ASSERT_EQ(lans->Initialize(tree.Name().c_str()), 1);
    KXHost::TakeMessageBoxes();
    for (const char* pszId : ids) {
        SCOPED_TRACE(pszId);
        EXPECT_EQ(lans->SetCurrentLan(pszId, 0), 1);
        EXPECT_STREQ(lans->GetCurrentLan().strID, pszId);
        EXPECT_EQ(Get("k"), "k");
        EXPECT_THAT(KXHost::TakeMessageBoxes(), ElementsAre(FieldsAre(HasSubstr("Data.txt"), 0u, 0u)));
    }
}

// While a language loads, other threads find each text whole or not at all.
TEST_F(LanData, ReadersMayRunDuringALoad)
{
    std::string data;
    for (int n = 0; n < 500; ++n)
        data += "k" + std::to_string(n) + "=some text\n";
    Load(data);
    std::atomic<bool> done{false};
    std::atomic<int> reads{0}, names{0};
    std::jthread reader([&] {
        for (; !done; ++reads) {
            const std::string text = Get("k499");
            if (text != "k499") {
                EXPECT_EQ(text, "some text");
            }
            names += lans->GetLanName(0) == "L";
        }
    });
    for (int n = 0; n < 20; ++n) {
        const int nBefore = reads;
        EXPECT_EQ(lans->SetCurrentLan("L", 0), 1);
        Await([&] { return reads != nBefore; });
    }
    EXPECT_EQ(lans->Initialize(tree.Name().c_str()), 1);
    done = true;
    reader.join();
    EXPECT_GE(reads, 20);
    EXPECT_GE(names, 20);
}

} // namespace
