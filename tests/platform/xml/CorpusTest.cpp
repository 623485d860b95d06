// Documents and patterns of strangers, where KX_CORPORA names a directory that has them: `xml`, with lists of
// those that libxml2 accepts and refuses, and `xml-xpath`. scripts/check-corpora runs these tests.

#include "include/KXXmlDomDocument.h"
#include "tests/platform/xml/Peer.h"
#include "tests/support/Com.h"

namespace {

struct Corpus : testing::Test
{
    void SetUp() override
    {
        const char* const pszRoot = std::getenv("KX_CORPORA");
        if (!pszRoot) GTEST_SKIP() << "KX_CORPORA names no corpora";
        m_root = pszRoot;
    }

    std::string Read(const std::string& name) const { return test::ReadFile(m_root + "/" + name); }
    std::vector<std::string> Lines(const std::string& name) const
    {
        std::istringstream text(Read(name));
        std::vector<std::string> lines;
        for (std::string line; std::getline(text, line);)
            if (!line.empty()) lines.push_back(line);
        return lines;
    }
    bool Load(CKXXmlDomDocument& doc, const std::string& bytes) const
    {
        m_dir.Write("in.xml", bytes);
        return doc.Load(m_dir.Win("in.xml"));
    }

    // A document that is loaded, saved and loaded is the same, for this library and for libxml2.
    void ExpectSame(CKXXmlDomDocument& doc, const std::string& bytes, const std::string& what)
    {
        doc.Save(m_dir.Win("out.xml"));
        const std::string saved = m_dir.Read("out.xml");
        CKXXmlDomDocument again;
        ASSERT_TRUE(Load(again, saved)) << what;
        EXPECT_TRUE(again.GetXml() == doc.GetXml()) << what;
        test::Peer before(bytes);
        test::Peer after(saved);
        EXPECT_TRUE(!before || (after && after.Canonical() == before.Canonical())) << what;
        ++m_nRounds;
    }

    std::string m_root;
    test::Com m_com;
    test::CodePage m_page{65001};
    test::TempDir m_dir;
    int m_nRounds = 0;
};

TEST_F(Corpus, AcceptsWhatIsWellFormedAndSavesIt)
{
    int nRefused = 0;
    for (const std::string& name : Lines("xml/refused.txt")) {
        CKXXmlDomDocument doc;
        EXPECT_FALSE(Load(doc, Read("xml/" + name))) << name;
        ++nRefused;
    }
    for (const std::string& name : Lines("xml/accepted.txt")) {
        CKXXmlDomDocument doc;
        const std::string bytes = Read("xml/" + name);
        if (Load(doc, bytes))
            ExpectSame(doc, bytes, name);
        else
            ADD_FAILURE() << name << " is refused";
    }
    std::printf("%d accepted and loaded again, %d refused\n", m_nRounds, nRefused);
}

// A byte changed, taken out or doubled, some times over. What is still accepted, for libxml2 too, is kept.
TEST_F(Corpus, SavesMutationsToo)
{
    std::mt19937 random(1);
    for (const std::string& name : Lines("xml/accepted.txt")) {
        const std::string bytes = Read("xml/" + name);
        if (bytes.size() < 4 || bytes.size() > 20'000) continue;
        for (int nRound = 0; nRound < 8; ++nRound) {
            std::string changed = bytes;
            for (int n = static_cast<int>(random() % 3); n >= 0 && !changed.empty(); --n) {
                const std::size_t at = random() % changed.size();
                const std::size_t other = random() % changed.size();
                switch (random() % 4) {
                case 0:
                    changed[at] = changed[other];
                    break;
                case 1:
                    changed.erase(at, 1 + random() % 3);
                    break;
                case 2:
                    changed.insert(at, changed.substr(other, 1 + random() % 8));
                    break;
                default:
                    changed.insert(at, std::string(1, "&<>\"';%]\r"[random() % 9]));
                }
            }
            CKXXmlDomDocument doc;
            if (Load(doc, changed)) ExpectSame(doc, changed, name + "\n" + changed);
            if (HasFailure()) return;
        }
    }
    std::printf("%d mutations accepted and loaded again\n", m_nRounds);
}

TEST_F(Corpus, SelectsAsLibxml2)
{
    int nPatterns = 0;
    std::vector<std::string> general;
    for (const auto& entry : std::filesystem::directory_iterator(m_root + "/xml-xpath/expr"))
        for (const std::string& line : Lines("xml-xpath/expr/" + entry.path().filename().string()))
            general.push_back(line);
    for (const auto& entry : std::filesystem::directory_iterator(m_root + "/xml-xpath/docs")) {
        const std::string name = entry.path().filename().string();
        const std::string bytes = Read("xml-xpath/docs/" + name);
        std::vector<std::string> patterns = general;
        for (const auto& tests : std::filesystem::directory_iterator(m_root + "/xml-xpath/tests")) {
            const std::string file = tests.path().filename().string();
            if (!file.starts_with(name)) continue;
            for (const std::string& line : Lines("xml-xpath/tests/" + file))
                patterns.push_back(line);
        }
        CKXXmlDomDocument doc;
        ASSERT_TRUE(Load(doc, bytes)) << name;
        test::Peer peer(bytes);
        ASSERT_TRUE(peer) << name;
        peer.ForgetDefaultNamespaces();
        for (const std::string& pattern : patterns) {
            EXPECT_EQ(test::Selected(doc.GetDocumentElement().GetElementPtr(), pattern),
                      peer.Selected(pattern))
                << name << ": " << pattern;
            ++nPatterns;
        }
    }
    std::printf("%d patterns\n", nPatterns);
}

} // namespace
