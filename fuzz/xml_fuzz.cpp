// Any text as a document, which is walked through, and any bytes as a file. What was loaded is loaded again
// from its own markup and from the file that it is saved as, and says the same.

#include "fuzz/XmlWalk.h"

#include "include/platform/CodePage.h"
#include "platform/xml/libxml/Markup.h"

#include <cstdint>
#include <libxml/c14n.h>
#include <string>
#include <string_view>

namespace {

void TestText(const std::string& text)
{
    CKXXmlDomDocument doc;
    if (!doc.LoadXml(text.c_str())) {
        fuzz::Expect(!doc.GetDocumentElement().IsValid() && doc.GetXml().IsEmpty());
        return;
    }
    int nLeft = 2000;
    fuzz::Walk(doc.GetDocumentElement(), nLeft);
    const CString strXml = doc.GetXml();
    CKXXmlDomDocument again;
    fuzz::Expect(again.LoadXml(strXml));
    fuzz::Expect(again.GetXml() == strXml);
    fuzz::Expect(again.GetDocumentElement().GetText() == doc.GetDocumentElement().GetText());
}

// Canonical XML has no form for references.
void MarkReferences(xmlNode* top)
{
    for (xmlNode* node = top; node;) {
        xmlNode* const next = kx::xml::libxml::NextBelow(top, node);
        if (node->type == XML_ENTITY_REF_NODE)
            xmlFreeNode(xmlReplaceNode(node, xmlNewDocPI(node->doc, BAD_CAST "reference", node->name)));
        node = next;
    }
}

std::string CanonicalOf(const kx::xml::libxml::Tree& tree)
{
    const kx::xml::libxml::Complaints quiet;
    MarkReferences(tree.Root());
    xmlChar* text = nullptr;
    const int nLength = xmlC14NDocDumpMemory(tree.Doc(), nullptr, XML_C14N_1_0, nullptr, 1, &text);
    std::string form = nLength < 0
                           ? MarkupOf(tree, tree.DocNode())
                           : std::string(reinterpret_cast<char*>(text), static_cast<unsigned>(nLength));
    xmlFree(text);
    return form;
}

void TestFile(std::string_view bytes)
{
    const auto tree = kx::xml::libxml::ParseFile(std::string(bytes));
    if (!tree) return;
    const std::string content = FileContentOf(*tree);
    const auto again = kx::xml::libxml::ParseFile(content);
    fuzz::Expect(bool(again));
    fuzz::Expect(FileContentOf(*again) == content);
    fuzz::Expect(CanonicalOf(*again) == CanonicalOf(*tree));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const fuzz::Round round;
    KXHost::SetCodePage(size % 2 == 0 ? CP_GBK : CP_UTF8);
    const std::string text(reinterpret_cast<const char*>(data), size);
    TestText(text);
    TestFile(text);
    return 0;
}
