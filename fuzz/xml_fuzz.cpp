// Any text as a document, which is walked through, and any bytes as a file. What was loaded is loaded again
// from its own markup and from the file that it is saved as, and says the same.

#include "fuzz/XmlWalk.h"

#include "include/platform/CodePage.h"
#include "platform/xml/Parse.h"
#include "platform/xml/Serialize.h"

#include <cstdint>
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
    // The declarations' own entities are spelled out in the text, which may then be too much of it.
    if (strXml.Find("<!DOCTYPE") >= 0) {
        again.LoadXml(strXml);
        return;
    }
    fuzz::Expect(again.LoadXml(strXml));
    fuzz::Expect(again.GetXml() == strXml);
    fuzz::Expect(again.GetDocumentElement().GetText() == doc.GetDocumentElement().GetText());
}

std::string MarkupOf(const kx::xml::DocPtr& doc)
{
    return kx::xml::MarkupOf(reinterpret_cast<xmlNode*>(doc.get()));
}

void TestFile(std::string_view bytes)
{
    const kx::xml::DocPtr doc = kx::xml::ParseFile(bytes);
    if (!doc) return;
    const auto content = kx::xml::FileContentOf(doc.get());
    fuzz::Expect(content.has_value());
    if (doc->intSubset) return;
    const kx::xml::DocPtr again = kx::xml::ParseFile(*content);
    fuzz::Expect(again && MarkupOf(again) == MarkupOf(doc));
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
