// Documents and patterns of strangers, where KX_CORPORA names a directory that has them: `xml`, with lists of
// those that libxml2 accepts and refuses, and `xml-xpath`. scripts/check-corpora runs these tests.

#include "include/KXXmlDomDocument.h"
#include "tests/platform/xml/Peer.h"

namespace {

struct Corpus : testing::Test
{
    void SetUp() override
    {
        const char* const pszRoot = std::getenv("KX_CORPORA");
        if (!pszRoot) GTEST_SKIP() << "KX_CORPORA names no corpora";
        m_root = pszRoot;
    }

    std::vector<std::string> Names(const std::string& directory) const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(m_root + "/" + directory))
            names.push_back(entry.path().filename().string());
        return names;
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

    std::string m_root;
    test::Com m_com;
    test::CodePage m_page{65001};
    test::TempDir m_dir;
};

// A document that is loaded, saved and loaded is the same, for this library and for libxml2.
TEST_F(Corpus, AcceptsWhatIsWellFormedAndSavesIt)
{
    const std::vector<std::string> refused = Lines("xml/refused.txt"), accepted = Lines("xml/accepted.txt");
    for (const std::string& name : refused) {
        CKXXmlDomDocument doc;
        EXPECT_FALSE(Load(doc, Read("xml/" + name))) << name;
    }
    for (const std::string& name : accepted) {
        CKXXmlDomDocument doc, again;
        const std::string bytes = Read("xml/" + name);
        EXPECT_TRUE(Load(doc, bytes)) << name;
        doc.Save(m_dir.Win("out.xml"));
        const std::string saved = m_dir.Read("out.xml");
        EXPECT_TRUE(Load(again, saved)) << name;
        EXPECT_TRUE(again.GetXml() == doc.GetXml()) << name;
        test::Peer before(bytes), after(saved);
        EXPECT_TRUE(!before || (after && after.Canonical() == before.Canonical())) << name;
    }
    std::printf("%zu accepted and loaded again, %zu refused\n", accepted.size(), refused.size());
}

TEST_F(Corpus, SelectsAsLibxml2)
{
    int nPatterns = 0;
    for (const std::string& name : Names("xml-xpath/docs")) {
        const std::string bytes = Read("xml-xpath/docs/" + name);
        CKXXmlDomDocument doc;
        ASSERT_TRUE(Load(doc, bytes)) << name;
        test::Peer peer(bytes);
        ASSERT_TRUE(peer) << name;
        peer.ForgetDefaultNamespaces();
        const auto compare = [&](const std::string& patterns) {
            for (const std::string& pattern : Lines("xml-xpath/" + patterns)) {
                EXPECT_EQ(test::Selected(doc.GetDocumentElement().GetElementPtr(), pattern),
                          peer.Selected(pattern))
                    << name << ": " << pattern;
                ++nPatterns;
            }
        };
        for (const std::string& file : Names("xml-xpath/expr"))
            compare("expr/" + file);
        for (const std::string& file : Names("xml-xpath/tests"))
            if (file.starts_with(name)) compare("tests/" + file);
    }
    std::printf("%d patterns\n", nPatterns);
}

} // namespace
