#include "include/KXXmlDomDocument.h"

#include "tests/support/Com.h"
#include "tests/support/Test.h"

namespace {

const std::string kNiHao = "\xC4\xE3\xBA\xC3"; // two characters of code page 936
const std::string kNiHaoUtf8 = "\xE4\xBD\xA0\xE5\xA5\xBD";

struct KXXmlDomDocument : testing::Test
{
    // Loads a file of these bytes.
    bool Load(CKXXmlDomDocument& doc, std::string_view bytes) const
    {
        m_dir.Write("in.xml", bytes);
        return doc.Load(m_dir.Win("in.xml"));
    }
    std::string Saved(CKXXmlDomDocument& doc) const
    {
        doc.Save(m_dir.Win("out.xml"));
        return m_dir.Read("out.xml");
    }

    test::Com m_com;
    test::TempDir m_dir;
};

// Every operation of a document that there is none of, and of the elements that it gives.
TEST_F(KXXmlDomDocument, IsNullWithoutComOnItsThread)
{
    std::thread([&] {
        CKXXmlDomDocument doc;
        EXPECT_FALSE(Load(doc, "<a/>"));
        EXPECT_FALSE(doc.LoadXml("<a/>"));
        EXPECT_EQ(Saved(doc), "");
        doc.SetText("x");
        EXPECT_EQ(doc.GetXml(), "");
        EXPECT_EQ(doc.GetText(), "");
        EXPECT_FALSE(doc.GetDocumentElement().IsValid());
        CKXXmlDomElement element = doc.CreateElement("a", "b");
        EXPECT_FALSE(element.IsValid());
        doc.SetDocumentElement(element);
    }).join();
    CKXXmlDomDocument doc;
    EXPECT_TRUE(doc.LoadXml("<a/>"));
}

TEST_F(KXXmlDomDocument, LoadsWhatIsWellFormed)
{
    // A text and what it reads back as.
    const std::pair<const char*, const char*> cases[] = {
        {"<a/>", "<a/>"},
        {"<?xml version='1.0' standalone='no'?><a></a>", "<?xml version=\"1.0\" standalone=\"no\"?>\n<a/>"},
        {"<?xml version='1.0'?><a>1</a>", "<?xml version=\"1.0\"?>\n<a>1</a>"},
        {"<?xml version=\"1.0\" encoding=\"GB2312\" standalone='yes'?><a/>",
         "<?xml version=\"1.0\" standalone=\"yes\"?>\n<a/>"},
        {"<!-- c --><a>\n <b x='1'/>\n</a>", "<!-- c -->\n<a>\n <b x=\"1\"/>\n</a>"},
        {"<a><![CDATA[<b>&]]>x<!--c--><?p i?></a>", "<a><![CDATA[<b>&]]>x<!--c--><?p i?></a>"},
        {"<a xmlns='urn:d' xmlns:p='urn:p'><p:b p:c='1'/></a>",
         "<a xmlns=\"urn:d\" xmlns:p=\"urn:p\"><p:b p:c=\"1\"/></a>"},
        {"<a>\xC4\xE3&lt;&#x597D;</a>", "<a>\xC4\xE3&lt;\xBA\xC3</a>"},
        {"<a \xC4\xE3='\xBA\xC3'/>", "<a \xC4\xE3=\"\xBA\xC3\"/>"},
        {"<a>\r\n\t</a>", "<a>\n\t</a>"},
        {"<a xmlns:p='u?a=1&amp;b&lt;\"c\"&#9;'><p:b/></a>",
         "<a xmlns:p=\"u?a=1&amp;b&lt;&quot;c&quot;&#9;\"><p:b/></a>"},
        {"<!DOCTYPE a [<!ATTLIST a b CDATA \"x&amp;&lt;'&quot;y\">]><a/>",
         "<!DOCTYPE a [<!ATTLIST a b CDATA \"x&amp;&lt;'&quot;y\">]>\n<a/>"},
        {"<!DOCTYPE a PUBLIC 'p' 's\"' [\n<!ENTITY % q SYSTEM ''><!-- ] -->%q;<!ENTITY e SYSTEM 'f'>]  >"
         "<a>&e;&f;</a>",
         "<!DOCTYPE a PUBLIC \"p\" 's\"' [\n<!ENTITY % q SYSTEM ''><!-- ] -->%q;<!ENTITY e SYSTEM 'f'>]  >\n"
         "<a>&e;&f;</a>"},
        {"<!DOCTYPE a [<!ENTITY e SYSTEM 'f'><!ENTITY i 'x&e;<b>&e;</b>'>]><a>&i;&i;</a>",
         "<!DOCTYPE a [<!ENTITY e SYSTEM 'f'><!ENTITY i 'x&e;<b>&e;</b>'>]>\n"
         "<a>x&e;<b>&e;</b>x&e;<b>&e;</b></a>"},
        {"<!DOCTYPE a [<!ATTLIST a xmlns::t CDATA 'u' xmlns:p CDATA 'v' t:b CDATA '1'>]><a/>",
         "<!DOCTYPE a [<!ATTLIST a xmlns::t CDATA 'u' xmlns:p CDATA 'v' t:b CDATA '1'>]>\n<a "
         "xmlns:p=\"v\"/>"},
        {"<a><![CDATA[x]]]]><![CDATA[>]]></a>", "<a><![CDATA[x]]]]><![CDATA[>]]></a>"},
    };
    for (const auto& [pszXml, pszBack] : cases) {
        CKXXmlDomDocument doc;
        EXPECT_TRUE(doc.LoadXml(pszXml)) << pszXml;
        EXPECT_STREQ(doc.GetXml(), pszBack) << pszXml;
        EXPECT_STREQ(doc.GetText(), pszBack);
        CKXXmlDomDocument again;
        EXPECT_TRUE(again.LoadXml(pszBack)) << pszXml;
        EXPECT_TRUE(Load(again, Saved(doc))) << pszXml;
        EXPECT_STREQ(again.GetXml(), pszBack);
    }
}

TEST_F(KXXmlDomDocument, IsEmptyAfterWhatIsNotWellFormed)
{
    for (const char* pszXml :
         {"", " ", "text", "<a>", "<a></b>", "<a/><b/>", "<a b='1' b='2'/>", "<a b=1/>", "<a>&nbsp;</a>",
          "<a>&#1;</a>", "<a><!-- -- --></a>", static_cast<const char*>(nullptr),
          "<!DOCTYPE a PUBLIC 'p' 's\"' [\n<!ENTITY % q '%'><!-- ] --> %q; <!ENTITY e SYSTEM 'f'>]  "
          "><a>&e;</a>"}) {
        CKXXmlDomDocument doc;
        EXPECT_TRUE(doc.LoadXml("<before/>"));
        EXPECT_FALSE(doc.LoadXml(pszXml)) << pszXml;
        EXPECT_STREQ(doc.GetXml(), "") << pszXml;
        EXPECT_FALSE(doc.GetDocumentElement().IsValid());
    }
}

std::string Utf16(bool bBigEndian, std::u16string text)
{
    for (char16_t& ch : text)
        if (bBigEndian) ch = static_cast<char16_t>(ch << 8 | ch >> 8);
    return {reinterpret_cast<const char*>(text.data()), 2 * text.size()};
}

TEST_F(KXXmlDomDocument, ReadsFilesInTheirEncodings)
{
    const std::string gbk = "<w>" + kNiHao + "</w>";
    const std::string utf8 = "<w>" + kNiHaoUtf8 + "</w>";
    const std::pair<std::string, std::string> cases[] = {
        {utf8, kNiHao},
        {"\xEF\xBB\xBF" + utf8, kNiHao},
        {"<?xml version='1.0' encoding='utf-8'?>" + utf8, kNiHao},
        {"<?xml version='1.0' encoding=\"GBK\"?>" + gbk, kNiHao},
        {"<?xml version='1.0' encoding = 'gb2312' ?>" + gbk, kNiHao},
        // A character of GBK that GB2312 lacks, as files with that name hold it.
        {"<?xml version='1.0' encoding='gb2312'?><w>\x96\x7C</w>", "\x96\x7C"},
        {Utf16(false, u"\uFEFF<w>\u4F60</w>"), "\xC4\xE3"},
        {Utf16(true, u"\uFEFF<w>\u4F60</w>"), "\xC4\xE3"},
        {Utf16(false, u"\uFEFF<?xml version='1.0' encoding='utf-16'?><w>\u4F60</w>"), "\xC4\xE3"},
        {Utf16(true, u"<?xml version='1.0'?><w>\u4F60</w>"), "\xC4\xE3"},
        {"<?xml version='1.0' encoding='iso-8859-1'?><w>\xE9</w>", "\xA8\xA6"},
        {"<?xml version='1.0' encoding='gbk'?><w>\x80</w>", "\xA2\xE3"},       // the euro in many files
        {"\xEF\xBB\xBF<?xml version='1.0' encoding='utf-7'?>" + utf8, kNiHao}, // the mark counts
        {"<?xml version='1.0' encoding='utf-7'?><w>+T2BZfQ-</w>", kNiHao},
        {"<work encoding='gbk'>" + kNiHaoUtf8 + "</work>", kNiHao}, // no declaration
        {"<?xml-x encoding='gbk'?>" + utf8, kNiHao},
    };
    for (const auto& [bytes, text] : cases) {
        CKXXmlDomDocument doc;
        EXPECT_TRUE(Load(doc, bytes)) << bytes;
        EXPECT_STREQ(doc.GetDocumentElement().GetText(), text.c_str()) << bytes;
        // The saved document reads the same.
        EXPECT_TRUE(Load(doc, Saved(doc))) << bytes;
        EXPECT_STREQ(doc.GetDocumentElement().GetText(), text.c_str()) << bytes;
    }
    for (const char* refused : {"<?xml version='1.0' encoding='no-such'?><w/>", "<w>\xFF</w>",
                                "<w>\xC4\xE3</w>", "<?xml version='1.0' encoding='gbk'?><w>\x96\xFF</w>",
                                "<?xml version='1.0' encoding='utf-16'?><w/>", "\xFE\xFF<w/>", ""}) {
        CKXXmlDomDocument doc;
        EXPECT_FALSE(Load(doc, refused)) << refused;
    }
}

TEST_F(KXXmlDomDocument, SavesInItsEncoding)
{
    const std::string w = "<w>" + kNiHao + "\x96\x7C</w>"; // the last one is not in GB2312 itself
    const std::string utf8 = "<w>" + kNiHaoUtf8 + "\xE6\x9D\xB1</w>";
    const auto saved = [this](const std::string& xml) {
        CKXXmlDomDocument doc;
        EXPECT_TRUE(doc.LoadXml(xml.c_str())) << xml;
        return Saved(doc);
    };
    EXPECT_EQ(saved(w), utf8 + "\n");
    EXPECT_EQ(saved("<?xml version='1.0'?>" + w),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + utf8 + "\n");
    for (const std::string encoding : {"gbk", "GB2312"}) {
        const std::string declaration = "<?xml version=\"1.0\" encoding=\"" + encoding + "\"?>\n";
        EXPECT_EQ(saved(declaration + w), declaration + w + "\n");
    }
    m_dir.Write("plain", "");
    EXPECT_EQ(std::filesystem::status(m_dir.Path("out.xml")).permissions(),
              std::filesystem::status(m_dir.Path("plain")).permissions());
}

// A character that an encoding lacks becomes a reference in texts and attributes; where none can stand, the
// file is in UTF-8 instead.
TEST_F(KXXmlDomDocument, SavesWhatItsEncodingLacks)
{
    const std::string e = "\x81\x39\xEE\x39"; // of GB18030, in no smaller one
    // The encoding asked for, the document, and the encoding of the file.
    const std::tuple<const char*, std::string, const char*> cases[] = {
        {"gb2312", "<w a='\xA2\xE3'>\xA2\xE3" + e + "</w>", "gb2312"},
        {"gb2312", "<w><![CDATA[\x96\x7C]]><!--\x96\x7C--></w>", "gb2312"},
        {"gb2312", "<w><![CDATA[" + e + "]]></w>", "UTF-8"},
        {"gbk", "<w><!--\xA2\xE3--></w>", "gbk"},
        {"gbk", "<w><!--\x80--></w>", "gbk"},
        {"euc-jp", "<w a='\xA3\xA4'>\xA3\xA4</w>", "euc-jp"},
        {"windows-1258", "<w>a</w>", "UTF-8"},
        {"shift_jis", "<w>\\~</w>", "UTF-8"},
        {"nonsense", "<w>\xA2\xE3</w>", "UTF-8"},
        {"utf-7", "<w>+</w>", "UTF-8"},
        {"utf-32", "<w/>", "UTF-8"},
        {"iso-2022-kr", "<w/>", "UTF-8"},
        {"ebcdic-us", "<w/>", "UTF-8"},
        {"gb18030", "<w><![CDATA[" + e + "\xA2\xE3]]></w>", "gb18030"},
        {"iso-8859-1", "<w>\x94\x39\xFC\x36</w>", "iso-8859-1"}, // of four bytes in UTF-8
        {"iso-8859-1", "<w a='" + kNiHao + "'>" + kNiHao + "</w>", "iso-8859-1"},
        {"iso-8859-1", "<w><" + kNiHao + "/></w>", "UTF-8"},
        {"iso-8859-1", "<w " + kNiHao + "='1'/>", "UTF-8"},
        {"iso-8859-1", "<w xmlns:" + kNiHao + "='u'/>", "UTF-8"},
        {"iso-8859-1", "<w><?p " + kNiHao + "?></w>", "UTF-8"},
        {"iso-8859-1", "<!--" + kNiHao + "--><w/>", "UTF-8"},
        {"us-ascii", "<!DOCTYPE w [<!ENTITY " + kNiHao + " 'x'>]><w/>", "UTF-8"},
        {"utf-16", "<w><" + kNiHao + "/></w>", "utf-16"},
    };
    for (const auto& [pszEncoding, xml, pszIn] : cases) {
        CKXXmlDomDocument doc;
        const std::string declaration = std::string("<?xml version='1.0' encoding='") + pszEncoding + "'?>";
        ASSERT_TRUE(doc.LoadXml((declaration + xml).c_str())) << xml;
        const CString strXml = doc.GetXml();
        const std::string saved = Saved(doc);
        std::string ascii;
        std::copy_if(saved.begin(), saved.end(), std::back_inserter(ascii), [](char ch) { return ch > 0; });
        EXPECT_NE(ascii.find(std::string("encoding=\"") + pszIn + "\""), ascii.npos) << ascii;
        EXPECT_TRUE(doc.Load(m_dir.Win("out.xml"))) << xml;
        EXPECT_EQ(doc.GetXml(), strXml);
    }
}

TEST_F(KXXmlDomDocument, TextFollowsTheCodePage)
{
    CKXXmlDomDocument doc;
    {
        const test::CodePage page(65001);
        ASSERT_TRUE(doc.LoadXml(("<w a='" + kNiHaoUtf8 + "'>\xF0\x9F\x98\x80</w>").c_str()));
        CKXXmlDomElement w = doc.GetDocumentElement();
        EXPECT_EQ(w.GetAttributeString("a"), kNiHaoUtf8.c_str());
        EXPECT_EQ(w.GetText(), "\xF0\x9F\x98\x80");
        EXPECT_TRUE(doc.LoadXml("<w>\xFF</w>")); // bytes that are no text
        EXPECT_EQ(doc.GetDocumentElement().GetText(), "\xEF\xBF\xBD");
        w.SetText(kNiHaoUtf8.c_str());
        EXPECT_TRUE(doc.LoadXml(w.GetXml()));
    }
    EXPECT_STREQ(doc.GetDocumentElement().GetText(), kNiHao.c_str());
}

TEST_F(KXXmlDomDocument, SaveLeavesTheOldFileOrTheNew)
{
    CKXXmlDomDocument doc;
    ASSERT_TRUE(doc.LoadXml("<new/>"));
    m_dir.Write("a.xml", "old");
    std::filesystem::permissions(m_dir.Path("a.xml"), std::filesystem::perms(0640));
    std::filesystem::create_symlink("a.xml", m_dir.Path("link.xml"));
    doc.Save(m_dir.Win("link.xml"));
    EXPECT_EQ(m_dir.Read("a.xml"), "<new/>\n");
    EXPECT_TRUE(std::filesystem::is_symlink(m_dir.Path("link.xml")));
    EXPECT_EQ(std::filesystem::status(m_dir.Path("a.xml")).permissions(), std::filesystem::perms(0640));

    m_dir.MakeDir("d");
    for (const CString& strTo :
         {m_dir.Win("d"), m_dir.Win("none\\a.xml"), m_dir.Win("b.xml\\"), CString("?:\\x"), CString()})
        doc.Save(strTo);
    doc.Save(nullptr);
    const std::filesystem::recursive_directory_iterator entries(m_dir.Path());
    EXPECT_EQ(std::distance(begin(entries), end(entries)), 3); // nothing half-made is left

    EXPECT_FALSE(doc.Load(nullptr));
    EXPECT_EQ(doc.GetXml(), "");
    doc.Save(m_dir.Win("a.xml")); // an empty document is no file
    EXPECT_EQ(m_dir.Read("a.xml"), "<new/>\n");
    CKXXmlDomElement large = doc.CreateElement("large", nullptr); // as a file, beyond what is loaded
    for (int n = 0; n < 2; ++n)
        large.AppendChild(doc.CreateElement("e", CString('&', XML_MAX_FILE / 9)));
    doc.SetDocumentElement(large);
    doc.Save(m_dir.Win("a.xml"));
    EXPECT_EQ(m_dir.Read("a.xml"), "<new/>\n");
    EXPECT_TRUE(doc.LoadXml("<new/>"));
    for (const CString& strFrom : {m_dir.Win("d"), m_dir.Win("none.xml"), CString("http://127.0.0.1/a.xml")})
        EXPECT_FALSE(doc.Load(strFrom));
}

TEST_F(KXXmlDomDocument, BuildsADocument)
{
    CKXXmlDomDocument doc;
    EXPECT_EQ(doc.GetXml(), "");
    CKXXmlDomElement root = doc.CreateElement("root", nullptr);
    CKXXmlDomElement none;
    EXPECT_EQ(root.GetXml(), "<root/>");
    EXPECT_FALSE(doc.GetDocumentElement().IsValid());
    doc.SetDocumentElement(root);
    doc.SetDocumentElement(none);
    doc.SetText("lost");
    EXPECT_EQ(doc.GetXml(), "<root/>");
    root.AppendChild(doc.CreateElement("e", ""));
    root.AppendChild(doc.CreateElement("t", "a<b & \"c\"\r\n"));
    root.AppendChild(doc.CreateElement(kNiHao.c_str(), kNiHao.c_str()));
    root.AppendChild(doc.CreateElement("c", "\x01\x1F!"));
    root.AppendChild(none);
    EXPECT_STREQ(root.GetXml(), ("<root><e></e><t>a&lt;b &amp; \"c\"&#13;\n</t><" + kNiHao + ">" + kNiHao +
                                 "</" + kNiHao + "><c>?\?!</c></root>")
                                    .c_str());
    ASSERT_TRUE(doc.LoadXml(doc.GetXml()));
    EXPECT_EQ(doc.GetDocumentElement().GetChild("t").GetText(), "a<b & \"c\"\r\n");

    // Another root takes the place of the first, which goes on without it; a part of it too.
    CKXXmlDomElement old = doc.GetDocumentElement();
    CKXXmlDomElement part = old.GetChild("t");
    doc.SetDocumentElement(part);
    EXPECT_EQ(doc.GetDocumentElement().GetElementPtr(), part.GetElementPtr());
    EXPECT_FALSE(old.GetChild("t").IsValid());
    doc.SetDocumentElement(old);
    EXPECT_EQ(doc.GetDocumentElement().GetName(), "root");
    EXPECT_EQ(part.GetText(), "a<b & \"c\"\r\n");
}

TEST_F(KXXmlDomDocument, RefusesWhatIsNoName)
{
    CKXXmlDomDocument doc;
    for (const char* name : {"", "1a", "a b", " a", "a ", "<a>", "-a", "a:", ":a", "a:b:c", "a&b", "\x01"})
        EXPECT_FALSE(doc.CreateElement(name, "x").IsValid()) << name;
    EXPECT_FALSE(doc.CreateElement(nullptr, "x").IsValid());
    EXPECT_TRUE(doc.CreateElement(CString('a', 10000), nullptr).IsValid());
    EXPECT_FALSE(doc.CreateElement(CString('a', 10001), nullptr).IsValid());
    for (const char* name : {"a", "_a-1.b", "p:a", kNiHao.c_str()})
        EXPECT_EQ(doc.CreateElement(name, "x").GetName(), name);
}

} // namespace
