// Any text as a pattern on a small document, and changes of what it finds: the lines of the input are
// patterns; each result's elements are moved, renamed by attributes, emptied, kept or dropped, in an order
// that the input chooses.

#include "fuzz/XmlWalk.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr const char* kXml =
    "<r xmlns='urn:d' xmlns:p='urn:p' i='1'><a><b k='v'>one</b>two<p:c p:x='y'/></a>"
    "<q:d xmlns:q='urn:q'><q:e q:z='1'><b/></q:e></q:d><!--c--><?p i?><f><![CDATA[g]]></f></r>";

// Each name with a prefix is declared where it stands, however it came there.
void ExpectWhole(CKXXmlDomElement element)
{
    CKXXmlDomDocument doc;
    fuzz::Expect(doc.LoadXml(element.GetXml()));
    fuzz::Expect(doc.GetDocumentElement().GetText() == element.GetText());
}

void Change(CKXXmlDomElement& one, CKXXmlDomElement& other, CKXXmlDomDocument& doc, unsigned char how)
{
    switch (how % 8) {
    case 0:
        one.AppendChild(other);
        break;
    case 1:
        other.AppendChild(one);
        break;
    case 2:
        one.SetText("t");
        break;
    case 3:
        doc.SetDocumentElement(one);
        break;
    case 4:
        one.SetAttributeString("p:x", "n");
        break;
    case 5:
        one.SetAttributeString("xmlns:p", "urn:n");
        break;
    case 6:
        one.AppendChild(doc.CreateElement("p:new", "x"));
        break;
    default:
        one = CKXXmlDomElement();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const fuzz::Round round;
    std::string_view input(reinterpret_cast<const char*>(data), size);
    CKXXmlDomDocument docs[2];
    for (auto& doc : docs)
        fuzz::Expect(doc.LoadXml(kXml));
    CKXXmlDomElement from = docs[0].GetDocumentElement();
    std::vector<CKXXmlDomElement> held{from, docs[1].GetDocumentElement()};
    for (int nLines = 0; nLines < 20 && !input.empty(); ++nLines) {
        const auto how = static_cast<unsigned char>(input[0]);
        const std::size_t end = std::min(input.find('\n', 1), input.size());
        const std::string pattern(input.substr(1, end - 1));
        input.remove_prefix(std::min(end + 1, input.size()));

        const auto found = from.GetChilds(pattern.c_str());
        const CKXXmlDomElement first = from.GetChild(pattern.c_str());
        fuzz::Expect(first.GetElementPtr() == (found.empty() ? nullptr : found[0].GetElementPtr()));
        held.insert(held.end(), found.begin(),
                    found.begin() + static_cast<long>(std::min<std::size_t>(found.size(), 4)));
        CKXXmlDomElement& one = held[how / 8 % held.size()];
        Change(one, held.back(), docs[how & 1], how);
        if (one.IsValid()) from = one;
    }
    for (auto& element : held) {
        int nLeft = 200;
        if (element.IsValid()) ExpectWhole(element);
        fuzz::Walk(element, nLeft);
    }
    return 0;
}
