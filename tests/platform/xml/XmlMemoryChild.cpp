// Loads, walks, changes and saves a document while the n-th allocation fails, for every n. Afterwards the
// file is the old one or the new one, nothing was thrown but a memory exception, and
// nothing is left behind. Prints how many allocations failed; 1 if something else is so.

#include "include/KXXmlDomDocument.h"

#include "include/platform/Com.h"
#include "include/platform/Exception.h"
#include "tests/support/ShortMemory.h"
#include "tests/support/TempDir.h"

namespace {

using shortage::g_nFailed;
using shortage::g_nLeft;
using shortage::g_nLive;

constexpr const char* kOld = "<?xml version=\"1.0\" encoding=\"gbk\"?>\n"
                             "<!DOCTYPE r [<!ENTITY e \"t<b/>\"><!ATTLIST w k ID #IMPLIED>]>\n"
                             "<r xmlns:p=\"u\"><w k=\"k1\"><t>\xC4\xE3</t><p:c/>&amp;</w><!--c--></r>\n";

constexpr const char* kOther = "<o xmlns:q='u2'><x a='1' q:b='2' xml:id='i'>t<q:y/>u</x></o>";

// Elements with prefixes go to another document and back, and out of their places; parts of them are held.
void Wander(CKXXmlDomDocument& doc, CKXXmlDomElement& root, CKXXmlDomDocument& other, CKXXmlDomElement o,
            const CString& number)
{
    CKXXmlDomElement c = doc.CreateElement("p:c", "x");
    c.AppendChild(doc, "p:d", number, true);
    root.GetChild("w").AppendChild(c);
    CKXXmlDomElement y = other.CreateElement("q:y", "x");
    y.SetAttributeString("q:z", "v");
    o.GetChild("x").AppendChild(y);
    o.AppendChild(c);
    root.AppendChild(o.GetChild("x"));
    root.AppendChild(y);
    root.AppendChild(c);
    o.AppendChild(y);
    y.GetXml();
    root.GetChild("w").AppendChild(y);
    const CKXXmlDomElement held = root.GetChild("w");
    root.SetText("");
    held.GetXml();
    root.AppendChild(held);
    y.AppendChild(c);
    c.GetXml();
}

// The whole of what is tried; false when the file wasn't loaded.
bool Work(const CString& file, const CString& number)
{
    CKXXmlDomDocument doc;
    if (!doc.Load(file)) return false;
    CKXXmlDomElement root = doc.GetDocumentElement();
    for (CKXXmlDomElement w : root.GetChilds("w"))
        w.GetChild("t").GetText();
    CString strText;
    root.GetChild("w").GetChild("t", strText, true);
    root.GetChild("w").SetAttributeString("p:new", "x");
    root.AppendChild(doc, "number", number, true);
    root.AppendChild(doc, "real", 1e300, true, 0.0);
    COleDateTime when;
    root.GetChild("w").GetChild("t", when, false, when);
    root.GetChild("w").GetAttributeDateTime("k", when);
    root.GetChild("w").SetText("a text that is too long for a short one and so takes memory");
    {
        CKXXmlDomDocument other;
        if (!other.LoadXml(kOther)) return false;
        Wander(doc, root, other, other.GetDocumentElement(), number);
    }
    doc.GetXml();
    doc.Save(file);
    return true;
}

int FailEach()
{
    const test::TempDir dir;
    const CString file = dir.Win("x"), number = "5";
    dir.Write("x", kOld);
    Work(file, number); // what is kept for later is made
    const std::string fresh = dir.Read("x");
    int nWrong = 0;
    for (long n = 0;; ++n) {
        const auto check = [&](bool bRight, const char* pszWrong) {
            if (!bRight) std::printf("%ld: %s\n", n, pszWrong);
            nWrong += !bRight;
        };
        dir.Write("x", kOld);
        const long nLive = g_nLive;
        g_nFailed = 0;
        bool bSaved = false, bOther = false;
        g_nLeft = n;
        try {
            bSaved = Work(file, number);
        } catch (CMemoryException* e) {
            e->Delete();
        } catch (...) {
            bOther = true;
        }
        g_nLeft = -1;
        check(!bOther, "another exception");
        check(g_nLive <= nLive, "blocks are left");
        const std::string now = dir.Read("x");
        check(now == fresh || now == kOld, "the file is neither the old nor the new one");
        if (g_nFailed > 0) continue;
        check(bSaved && now == fresh, "the new file isn't saved"); // beyond the last one
        std::printf("%ld allocations failed, %d wrong\n", n, nWrong);
        return nWrong > 0;
    }
}

} // namespace

int main()
{
    CoInitialize(nullptr);
    return FailEach();
}
