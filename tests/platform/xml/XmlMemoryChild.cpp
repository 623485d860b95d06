// XmlMemoryChild DIRECTORY: loads, walks, changes and saves a document while the n-th allocation fails, for
// every n. Afterwards the file is the old one or the new one, nothing was thrown but a memory exception, and
// nothing is left behind. Prints how many allocations failed; 1 if something else is so.
//
// XmlMemoryChild DIRECTORY limit: saves a large document, and asks it for a pattern, under limits of address
// space.

#include "include/KXXmlDomDocument.h"

#include "include/platform/Com.h"
#include "include/platform/Exception.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/resource.h>

namespace {

std::atomic<long> g_nLeft{-1}; // allocations until the one that fails; negative for none
std::atomic<long> g_nLive{0};
std::atomic<long> g_nFailed{0};

[[maybe_unused]] bool IsToFail()
{
    if (g_nLeft.load(std::memory_order_relaxed) < 0 || g_nLeft.fetch_sub(1) != 0) return false;
    ++g_nFailed;
    errno = ENOMEM;
    return true;
}

[[maybe_unused]] void* Counted(void* block)
{
    if (block) ++g_nLive;
    return block;
}

} // namespace

#if !defined(KX_SANITIZED) // a sanitizer has an allocator of its own
extern "C" {
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void __libc_free(void*);

void* malloc(std::size_t nBytes)
{
    return IsToFail() ? nullptr : Counted(__libc_malloc(nBytes));
}
void* calloc(std::size_t nCount, std::size_t nBytes)
{
    return IsToFail() ? nullptr : Counted(__libc_calloc(nCount, nBytes));
}
void* realloc(void* block, std::size_t nBytes)
{
    if (IsToFail()) return nullptr;
    return block ? __libc_realloc(block, nBytes) : Counted(__libc_realloc(block, nBytes));
}
void free(void* block)
{
    if (block) --g_nLive;
    __libc_free(block);
}
}
#endif

namespace {

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

CString WinOf(const std::string& path)
{
    CString win(("C:" + path).c_str());
    win.Replace('/', '\\');
    return win;
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

int FailEach(const std::string& path)
{
    const CString file = WinOf(path);
    const CString number = "5";
    WriteAll(path, kOld);
    Work(file, number); // what is kept for later is made
    const std::string fresh = ReadAll(path);
    int nWrong = 0;
    long nAll = 0;
    for (long n = 0;; ++n) {
        WriteAll(path, kOld);
        const long nLive = g_nLive;
        g_nFailed = 0;
        bool bSaved = false;
        g_nLeft = n;
        try {
            bSaved = Work(file, number);
        } catch (CMemoryException* e) {
            e->Delete();
        } catch (...) {
            g_nLeft = -1;
            std::printf("%ld: another exception\n", n);
            ++nWrong;
        }
        g_nLeft = -1;
        if (g_nLive > nLive) {
            std::printf("%ld: %ld blocks left\n", n, g_nLive - nLive);
            ++nWrong;
        }
        const std::string now = ReadAll(path);
        if (now != fresh && now != kOld) {
            std::printf("%ld: the file is neither the old nor the new one (%zu bytes)\n", n, now.size());
            ++nWrong;
        }
        if (g_nFailed == 0) { // beyond the last one
            if (!bSaved || now != fresh) ++nWrong;
            break;
        }
        ++nAll;
    }
    std::printf("%ld allocations failed, %d wrong\n", nAll, nWrong);
    return nWrong > 0;
}

rlim_t AddressSpace()
{
    std::ifstream status("/proc/self/statm");
    rlim_t nPages = 0;
    status >> nPages;
    return nPages * 4096;
}

int LimitEach(const std::string& path)
{
    const CString file = WinOf(path);
    CKXXmlDomDocument doc;
    CKXXmlDomElement root = doc.CreateElement("r", nullptr);
    doc.SetDocumentElement(root);
    for (int n = 0; n < 20'000; ++n)
        root.AppendChild(doc, "record", CString('x', 200), true);
    doc.Save(file);
    const std::string old = ReadAll(path);
    root.AppendChild(doc, "last", 1, true, 0);
    const rlim_t nNow = AddressSpace();
    int nThrown = 0;
    for (rlim_t nMore = 0; nMore < (64 << 20); nMore += 1 << 20) {
        const rlimit limit{nNow + nMore, RLIM_INFINITY};
        setrlimit(RLIMIT_AS, &limit);
        bool bThrown = false;
        try {
            doc.Save(file);
        } catch (CMemoryException* e) {
            e->Delete();
            bThrown = true;
        }
        const rlimit none{RLIM_INFINITY, RLIM_INFINITY};
        setrlimit(RLIMIT_AS, &none);
        nThrown += bThrown;
        if (bThrown != (ReadAll(path) == old)) return 1;
        if (!bThrown) WriteAll(path, old);
    }
    for (rlim_t nMore = 0; nMore < (64 << 20); nMore += 1 << 20) {
        const rlimit limit{nNow + nMore, RLIM_INFINITY};
        setrlimit(RLIMIT_AS, &limit);
        bool bThrown = false;
        std::size_t nFound = 0;
        try {
            nFound = root.GetChilds("record[contains(., 'x')]").size();
        } catch (CMemoryException* e) {
            e->Delete();
            bThrown = true;
        }
        const rlimit none{RLIM_INFINITY, RLIM_INFINITY};
        setrlimit(RLIMIT_AS, &none);
        nThrown += bThrown;
        if (bThrown == (nFound == 20'000)) return 1;
    }
    std::printf("%d limits hit\n", nThrown);
    return nThrown == 0;
}

} // namespace

int main(int nArguments, char** arguments)
{
    if (nArguments < 2) return 2;
    CoInitialize(nullptr);
    const std::string path = std::string(arguments[1]) + "/memory.xml";
    return nArguments > 2 ? LimitEach(path) : FailEach(path);
}
