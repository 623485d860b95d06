#include "tests/platform/xml/Nodes.h"

#include <malloc.h>

namespace {

using namespace test;

HRESULT Make(const GUID& iid, void** pp)
{
    return CoCreateInstance(CLSID_DOMDocument, nullptr, CLSCTX_ALL, iid, pp);
}

TEST(Com, IsReadyPerThreadAndCounted)
{
    void* p = &p;
    EXPECT_EQ(Make(IID_IXMLDOMDocument, &p), CO_E_NOTINITIALIZED);
    EXPECT_EQ(p, nullptr);
    CoUninitialize();
    EXPECT_EQ(CoInitialize(nullptr), S_OK);
    EXPECT_EQ(CoInitialize(nullptr), S_FALSE);
    CoUninitialize();
    std::thread([&] { EXPECT_EQ(Make(IID_IXMLDOMDocument, &p), CO_E_NOTINITIALIZED); }).join();
    Out<IXMLDOMDocument> doc;
    EXPECT_EQ(Make(IID_IXMLDOMDocument, reinterpret_cast<void**>(&doc)), S_OK);
    CoUninitialize();
    EXPECT_EQ(Make(IID_IXMLDOMDocument, &p), CO_E_NOTINITIALIZED);
    VARIANT_BOOL bDone = VARIANT_FALSE;
    EXPECT_EQ(doc->loadXML(Arg(u"<a/>"), &bDone), S_OK);
    EXPECT_EQ(bDone, VARIANT_TRUE);

    const Com com;
    EXPECT_EQ(Make(IID_IXMLDOMElement, &p), E_NOINTERFACE);
    EXPECT_EQ(CoCreateInstance(IID_IUnknown, nullptr, CLSCTX_ALL, IID_IUnknown, &p), REGDB_E_CLASSNOTREG);
    EXPECT_EQ(CoCreateInstance(CLSID_DOMDocument, nullptr, CLSCTX_ALL - 1, IID_IUnknown, &p),
              REGDB_E_CLASSNOTREG);
    EXPECT_EQ(CoCreateInstance(CLSID_DOMDocument, doc, CLSCTX_ALL, IID_IUnknown, &p), CLASS_E_NOAGGREGATION);
    EXPECT_EQ(Make(IID_IXMLDOMDocument, nullptr), E_POINTER);
}

struct Dom : testing::Test
{
    Dom()
    {
        Make(IID_IXMLDOMDocument, reinterpret_cast<void**>(&m_doc));
        VARIANT_BOOL bDone = VARIANT_FALSE;
        m_doc->loadXML(Arg(u"<?p i?><!--c--><a k='v'>t<b/><![CDATA[d]]></a>"), &bDone);
        m_doc->get_documentElement(&m_root);
    }

    // The first node that a pattern finds, from the document.
    HRESULT Find(const char16_t* pattern, Out<IXMLDOMNode>& node)
    {
        return m_doc->selectSingleNode(Arg(pattern), &node);
    }

    Com m_com;
    Out<IXMLDOMDocument> m_doc;
    Out<IXMLDOMElement> m_root;
};

TEST_F(Dom, TellsWhatANodeIs)
{
    const std::tuple<const char16_t*, const char16_t*, const char16_t*, const char16_t*, bool> cases[] = {
        {u"a", u"a", u"td", u"<a k=\"v\">t<b/><![CDATA[d]]></a>", true},
        {u"a/@k", u"k", u"v", u"k=\"v\"", false},
        {u"a/text()[1]", u"#text", u"t", u"t", false},
        {u"a/text()[2]", u"#cdata-section", u"d", u"<![CDATA[d]]>", false},
        {u"comment()", u"#comment", u"c", u"<!--c-->", false},
        {u"processing-instruction()", u"p", u"i", u"<?p i?>", false},
        {u"a/..", u"#document", u"td", u"<?p i?>\n<!--c-->\n<a k=\"v\">t<b/><![CDATA[d]]></a>", false},
        {u"a/namespace::xml", u"<failed>", u"<failed>", u"<failed>", false},
    };
    for (const auto& [pattern, name, text, xml, bElement] : cases) {
        Out<IXMLDOMNode> node, again, child;
        Out<IXMLDOMElement> element;
        ASSERT_EQ(Find(pattern, node), S_OK);
        EXPECT_EQ(Get(node, &IXMLDOMNode::get_nodeName), name);
        EXPECT_EQ(Get(node, &IXMLDOMNode::get_text), text);
        EXPECT_EQ(Get(node, &IXMLDOMNode::get_xml), xml);
        EXPECT_EQ(node->QueryInterface(IID_IXMLDOMElement, reinterpret_cast<void**>(&element)),
                  bElement ? S_OK : E_NOINTERFACE);
        EXPECT_EQ(node->QueryInterface(IID_IXMLDOMNode, nullptr), E_POINTER);
        EXPECT_EQ(m_root->appendChild(node, &child), E_INVALIDARG); // the root itself, or no element
        if (!bElement) {
            EXPECT_EQ(node->appendChild(m_root, nullptr), E_FAIL);
        }
        EXPECT_FALSE(child);
    }
    EXPECT_EQ(m_doc->put_text(Arg(u"x")), E_FAIL);
    Out<IXMLDOMNode> attribute;
    ASSERT_EQ(Find(u"a/@k", attribute), S_OK);
    EXPECT_EQ(attribute->put_text(Arg(u"new\x01\xFFFE")), S_OK);
    Out<IXMLDOMNode> none; // nothing is below it, and a search keeps nothing of what its text was
    EXPECT_EQ(attribute->selectSingleNode(Arg(u"x"), &none), S_FALSE);
    EXPECT_EQ(attribute->put_text(Arg(u"new \xFFFD\x01\xFFFE")), S_OK);
    EXPECT_EQ(attribute->selectSingleNode(Arg(u"yy"), &none), S_FALSE);
    EXPECT_EQ(Get(m_root, &IXMLDOMNode::get_xml), u"<a k=\"new \xFFFD??\">t<b/><![CDATA[d]]></a>");
    const std::u16string text(3'000'000, u'\xFFFF'); // much that is no character is replaced in one pass
    EXPECT_EQ(m_root->put_text(Arg(text.c_str())), S_OK);
    EXPECT_EQ(Get(m_root, &IXMLDOMNode::get_text), std::u16string(text.size(), u'?'));
}

TEST_F(Dom, TellsNothingFoundFromFailure)
{
    Out<IXMLDOMNode> node;
    Out<IXMLDOMNodeList> list;
    VARIANT value{};
    EXPECT_EQ(Find(u"none", node), S_FALSE);
    EXPECT_EQ(Find(u"//none", node), S_FALSE);
    for (const char16_t* pattern : {u"a[", u"@", u"u:a/b", u"f()"})
        EXPECT_EQ(Find(pattern, node), E_INVALIDARG);
    for (const char16_t* pattern : {u"1+1", u"count('x')", u"namespace-uri('x')", u"id()"})
        EXPECT_EQ(Find(pattern, node), E_FAIL);
    EXPECT_EQ(m_root->selectSingleNode(Arg(u"b"), nullptr), E_POINTER);
    EXPECT_EQ(m_root->selectNodes(Arg(u"none"), &list), S_OK);
    long nLength = -1;
    EXPECT_EQ(list->get_length(&nLength), S_OK);
    EXPECT_EQ(nLength, 0);
    EXPECT_EQ(m_root->selectNodes(Arg(u"node()"), &list), S_OK);
    EXPECT_EQ(list->get_length(&nLength), S_OK);
    EXPECT_EQ(nLength, 3);
    for (const long n : {-1L, 3L, 1L << 40}) {
        EXPECT_EQ(list->item(n, &node), S_FALSE);
        EXPECT_FALSE(node);
    }
    EXPECT_EQ(m_root->put_text(nullptr), S_OK); // the list's nodes are no longer in the document
    EXPECT_EQ(list->item(2, &node), S_OK);
    EXPECT_EQ(Get(node, &IXMLDOMNode::get_text), u"d");
    EXPECT_EQ(m_root->getAttribute(Arg(u"none"), &value), S_FALSE);
    EXPECT_EQ(value.vt, VT_NULL);
    EXPECT_EQ(m_root->setAttribute(Arg(u"k"), value), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(m_root->getAttribute(Arg(u"k"), nullptr), E_POINTER);
    VARIANT_BOOL bDone = VARIANT_TRUE;
    EXPECT_EQ(m_doc->load(value, &bDone), S_FALSE); // no path
    EXPECT_EQ(bDone, VARIANT_FALSE);
    EXPECT_EQ(m_doc->save(value), E_INVALIDARG);
    EXPECT_EQ(m_doc->loadXML(Arg(u"<a>"), &bDone), S_FALSE);
    EXPECT_EQ(bDone, VARIANT_FALSE);
    Out<IXMLDOMElement> none;
    EXPECT_EQ(m_doc->get_documentElement(&none), S_FALSE);
    EXPECT_EQ(m_doc->createElement(Arg(u"1"), &none), E_INVALIDARG);
}

// Objects that are made in one document and end in another.
TEST_F(Dom, WanderersLeaveNoMemoryBehind)
{
    Out<IXMLDOMDocument> from;
    ASSERT_EQ(Make(IID_IXMLDOMDocument, reinterpret_cast<void**>(&from)), S_OK);
    const Arg name(u"e");
    const auto round = [&] {
        Out<IXMLDOMElement> element;
        ASSERT_EQ(from->createElement(name, &element), S_OK);
        ASSERT_EQ(m_root->appendChild(element, nullptr), S_OK);
        ASSERT_EQ(m_root->put_text(nullptr), S_OK);
    };
    round();
    const auto nBefore = mallinfo2().uordblks;
    for (int nRound = 0; nRound < 100'000; ++nRound)
        round();
    EXPECT_LT(mallinfo2().uordblks, nBefore + (1 << 20));
}

// A document's node keeps what is replaced alive, and each thread has documents of its own.
TEST(DomThreads, WorkOnTheirOwnDocuments)
{
    const int nBefore = KXHost::LiveHandles();
    RunThreads(4, [](int) {
        const Com com;
        for (int nRound = 0; nRound < 100; ++nRound) {
            Out<IXMLDOMDocument> doc;
            Out<IXMLDOMElement> root;
            Out<IXMLDOMNode> found;
            VARIANT_BOOL bDone = VARIANT_FALSE;
            ASSERT_EQ(Make(IID_IXMLDOMDocument, reinterpret_cast<void**>(&doc)), S_OK);
            ASSERT_EQ(doc->loadXML(Arg(u"<a><b>\u4F60</b></a>"), &bDone), S_OK);
            ASSERT_EQ(doc->get_documentElement(&root), S_OK);
            ASSERT_EQ(root->selectSingleNode(Arg(u"./b"), &found), S_OK);
            EXPECT_EQ(Get(found, &IXMLDOMNode::get_text), u"\u4F60");
        }
    });
    EXPECT_EQ(KXHost::LiveHandles(), nBefore);
}

} // namespace
