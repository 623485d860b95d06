// XmlMemoryChild FILE SAME: loads, walks, changes and saves a document while the n-th allocation fails, for
// every n. Afterwards the file is the old one or the new one, nothing was thrown but a memory exception, and
// nothing is left behind. Prints how many allocations failed; 1 if something else is so.
//
// XmlMemoryChild FILE SAME limit: saves a large document, and asks it for a pattern, under limits of address
// space.

#include "include/KXXmlDomDocument.h"

#include "include/platform/Com.h"
#include "include/platform/Exception.h"
#include "tests/support/ShortMemory.h"

namespace {

using shortage::g_nFailed;
using shortage::g_nLeft;
using shortage::g_nLive;

constexpr const char* kOld = "<?xml version=\"1.0\" encoding=\"gbk\"?>\n"
                             "<!DOCTYPE r [<!ENTITY e \"t<b/>\"><!ATTLIST w k ID #IMPLIED>]>\n"
                             "<r xmlns:p=\"u\"><w k=\"k1\"><t>\xC4\xE3</t><p:c/>&amp;</w><!--c--></r>\n";

std::string ReadAll(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void WriteAll(const std::string& path, const std::string& content)
{
    std::ofstream(path, std::ios::binary) << content;
}

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

int FailEach(const std::string& path, const CString& file)
{
    const CString number = "5";
    WriteAll(path, kOld);
    Work(file, number); // what is kept for later is made
    const std::string fresh = ReadAll(path);
    int nWrong = 0;
    for (long n = 0;; ++n) {
        const auto check = [&](bool bRight, const char* pszWrong) {
            if (!bRight) std::printf("%ld: %s\n", n, pszWrong);
            nWrong += !bRight;
        };
        WriteAll(path, kOld);
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
        const std::string now = ReadAll(path);
        check(now == fresh || now == kOld, "the file is neither the old nor the new one");
        if (g_nFailed > 0) continue;
        check(bSaved && now == fresh, "the new file isn't saved"); // beyond the last one
        std::printf("%ld allocations failed, %d wrong\n", n, nWrong);
        return nWrong > 0;
    }
}

// Does something under limits that leave ever more address space. Gives how often it threw, or -1 once it is
// not as it must be, which is asked with whether it threw.
int UnderLimits(const std::function<void()>& act, const std::function<bool(bool)>& isRight,
                rlim_t nStep = 1 << 20)
{
    rlim_t nPages = 0;
    std::ifstream("/proc/self/statm") >> nPages;
    int nThrown = 0;
    for (rlim_t nMore = 0; nMore < 64 << 20; nMore += nStep) {
        const rlimit limit{nPages * 4096 + nMore, RLIM_INFINITY}, none{RLIM_INFINITY, RLIM_INFINITY};
        bool bThrown = false;
        setrlimit(RLIMIT_AS, &limit);
        try {
            act();
        } catch (CMemoryException* e) {
            e->Delete();
            bThrown = true;
        }
        setrlimit(RLIMIT_AS, &none);
        nThrown += bThrown;
        if (!isRight(bThrown)) return -1;
    }
    return nThrown;
}

int LimitEach(const std::string& path, const CString& file)
{
    constexpr std::size_t kRecords = 20'000;
    CKXXmlDomDocument doc;
    CKXXmlDomElement root = doc.CreateElement("r", nullptr);
    doc.SetDocumentElement(root);
    for (std::size_t n = 0; n < kRecords; ++n)
        root.AppendChild(doc, "record", CString('x', 200), true);
    doc.Save(file);
    const std::string old = ReadAll(path);
    root.AppendChild(doc, "last", 1, true, 0);
    const int nUnsaved = UnderLimits([&] { doc.Save(file); },
                                     [&](bool bThrown) {
                                         const bool bOld = ReadAll(path) == old;
                                         if (!bOld) WriteAll(path, old);
                                         return bOld == bThrown;
                                     });
    std::size_t nFound = 0;
    const int nUnfound = UnderLimits(
        [&] {
            nFound = 0;
            nFound = root.GetChilds("record[contains(., 'x')]").size();
        },
        [&](bool bThrown) { return bThrown != (nFound == kRecords); });
    // Loaded, walked, added to and spelled: all of it, or the exception.
    CString strAll;
    const int nUnread = UnderLimits(
        [&] {
            strAll.Empty();
            CKXXmlDomDocument again;
            if (!again.Load(file)) return;
            CKXXmlDomElement all = again.GetDocumentElement();
            for (const CKXXmlDomElement& record : all.GetChilds("record"))
                if (record.GetText().GetLength() != 200) return;
            all.AppendChild(again, "last", 1, true, 0);
            strAll = again.GetXml();
        },
        [&](bool bThrown) { return bThrown != (strAll.Right(18) == "<last>1</last></r>"); }, 5 << 20);
    std::printf("%d limits hit by a save, %d by a pattern, %d by the rest\n", nUnsaved, nUnfound, nUnread);
    return nUnsaved < 0 || nUnfound < 0 || nUnread < 0 || nUnsaved + nUnfound + nUnread == 0;
}

} // namespace

int main(int nArguments, char** arguments)
{
    if (nArguments < 3) return 2;
    CoInitialize(nullptr);
    return nArguments > 3 ? LimitEach(arguments[1], arguments[2]) : FailEach(arguments[1], arguments[2]);
}
