#include "KXXmlDomDocument.h"
#include "tests/soak/Soak.h"
#include "tests/support/Com.h"

#include <string>

namespace {

std::string Text(soak::Turn& turn)
{
    const char* const pieces[] = {"a",        "B7",       " ",   "<",  "&", "\"",
                                  "\xC4\xE3", "\xBA\xC3", "]]>", "\t", "'", "-"};
    std::string text = "x"; // white space alone would be none
    for (int n = turn.Below(12); n > 0; --n)
        text += pieces[turn.Below(12)];
    return text + "x";
}

std::string Name(soak::Turn& turn)
{
    std::string name(1, static_cast<char>('a' + turn.Below(26)));
    for (int n = turn.Below(5); n > 0; --n)
        name += "bcd-._9"[turn.Below(7)];
    return name;
}

CKXXmlDomElement Element(CKXXmlDomDocument& doc, soak::Turn& turn, int nDepth)
{
    CKXXmlDomElement element = doc.CreateElement(Name(turn).c_str(), Text(turn).c_str());
    for (int n = turn.Below(3); n > 0; --n)
        element.SetAttributeString(Name(turn).c_str(), Text(turn).c_str());
    for (int n = nDepth > 0 ? turn.Below(5) : 0; n > 0; --n)
        element.AppendChild(Element(doc, turn, nDepth - 1));
    return element;
}

} // namespace

soak::Figures soak::RunXml(Turn turn, const test::TempDir& dir)
{
    const test::Com com;
    const CString strFile = dir.Win("soak.xml");
    Figures figures;
    for (; turn.Goes(); ++figures.operations) {
        CKXXmlDomDocument doc;
        CKXXmlDomElement root = Element(doc, turn, 5);
        doc.SetDocumentElement(root);
        doc.Save(strFile);
        CKXXmlDomDocument again;
        figures.Need(again.Load(strFile) && again.GetXml() == doc.GetXml(), "a document's round");

        std::string bytes = dir.Read("soak.xml");
        while (!bytes.empty() && (bytes.back() == '\n' || bytes.back() == '\r'))
            bytes.pop_back();
        dir.Write("cut.xml",
                  bytes.substr(0, static_cast<std::size_t>(turn.Below(static_cast<int>(bytes.size())))));
        CKXXmlDomDocument cut;
        figures.Need(!cut.Load(dir.Win("cut.xml")), "a cut document's refusal");
        ++figures.faults;
    }
    return figures;
}
