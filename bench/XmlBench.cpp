#include "bench/BenchDir.h"
#include "bench/Loop.h"

#include <KXXmlDomDocument.h>
#include <array>
#include <benchmark/benchmark.h>
#include <cstring>
#include <libxml/parser.h>
#include <libxml/xmlsave.h>
#include <libxml/xpath.h>
#include <malloc.h>
#include <memory>
#include <optional>
#include <platform/Com.h>
#include <string>

// A word list of 20,000 records with ten children each: loading it, reading all children by their names, and
// writing it, against the same with libxml2's own calls; and reading a tenth of it, against the whole.

namespace {

constexpr int kRecords = 20'000;
constexpr int kFields = 10;
constexpr std::array<const char*, kFields> kNames{"id",    "word",  "meaning", "score", "tries",
                                                  "right", "wrong", "level",   "rate",  "note"};

std::string Value(int nRecord, std::size_t nField)
{
    const std::string number = std::to_string(nRecord * 7 + static_cast<int>(nField));
    return nField == 1 || nField == 2 || nField == 9 ? "text " + number : number;
}

std::string Content(int nRecords)
{
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<words>\n";
    for (int n = 0; n < nRecords; ++n) {
        text += "<record>\n";
        for (std::size_t i = 0; i < kFields; ++i)
            text.append("<")
                .append(kNames[i])
                .append(">")
                .append(Value(n, i))
                .append("</")
                .append(kNames[i]) += ">\n";
        text += "</record>\n";
    }
    return text + "</words>\n";
}

const std::string& File(int nRecords)
{
    static const std::string whole = bench::Dir().Write("words.xml", Content(kRecords));
    static const std::string part = bench::Dir().Write("part.xml", Content(kRecords / 10));
    return nRecords == kRecords ? whole : part;
}

CString Win(int nRecords)
{
    File(nRecords);
    return bench::Dir().Win(nRecords == kRecords ? "words.xml" : "part.xml");
}

const xmlChar* X(const char* text)
{
    return reinterpret_cast<const xmlChar*>(text);
}

using Doc = std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)>;

// Short texts in their nodes, as ours has them.
Doc LoadLibxml(const std::string& file = File(kRecords))
{
    return {xmlReadFile(file.c_str(), nullptr, XML_PARSE_NOENT | XML_PARSE_NONET | XML_PARSE_COMPACT),
            xmlFreeDoc};
}

// Whether a file has all records with all their children, of which the last one's last is looked at.
bool IsWhole(const std::string& file)
{
    const Doc doc = LoadLibxml(file);
    unsigned long nChildren = 0;
    xmlNode* last = nullptr;
    for (xmlNode* record = xmlFirstElementChild(xmlDocGetRootElement(doc.get())); record;
         record = xmlNextElementSibling(record)) {
        nChildren += xmlChildElementCount(record);
        last = xmlLastElementChild(record);
    }
    return nChildren == kRecords * kFields && last->children &&
           Value(kRecords - 1, kFields - 1) == reinterpret_cast<char*>(last->children->content);
}

class Com
{
public:
    Com() { CoInitialize(nullptr); }
    Com(const Com&) = delete;
    Com& operator=(const Com&) = delete;
    ~Com() { CoUninitialize(); }
};

// The load is measured. The document's end is not: the heap puts its blocks together then or later,
// as they happen to lie.
template <class Document>
void End(benchmark::State& state, Document& document)
{
    state.PauseTiming();
    document.reset();
    malloc_trim(0);
    state.ResumeTiming();
}

void LoadOurs(benchmark::State& state)
{
    const Com com;
    const CString file = Win(kRecords);
    for (auto _ : bench::Loop(state)) {
        auto doc = std::make_unique<CKXXmlDomDocument>();
        if (!doc->Load(file)) state.SkipWithError("not loaded");
        End(state, doc);
    }
}

void LoadPeer(benchmark::State& state)
{
    File(kRecords);
    for (auto _ : bench::Loop(state)) {
        Doc doc = LoadLibxml();
        if (!doc) state.SkipWithError("not loaded");
        End(state, doc);
    }
}

int ReadField(const CKXXmlDomElement& record, std::size_t i)
{
    CString str;
    int n = 0;
    long l = 0;
    double d = 0;
    switch (i) {
    case 1:
    case 2:
    case 9:
        return record.GetChild(kNames[i], str, true);
    case 3:
    case 4:
        return record.GetChild(kNames[i], l, true, 0L);
    case 8:
        return record.GetChild(kNames[i], d, true, 0.0);
    default:
        return record.GetChild(kNames[i], n, true, 0);
    }
}

// One of ours, with what has to be there around it.
struct Loaded
{
    explicit Loaded(int nRecords)
    {
        doc.Load(Win(nRecords));
        root = doc.GetDocumentElement();
    }
    const Com com;
    CKXXmlDomDocument doc;
    CKXXmlDomElement root;
};

// The documents that are read. All is loaded once and in the same order, as how nodes lie in the heap isn't
// left to what was measured before; but where memory is measured, what the side reads alone.
class Documents
{
public:
    enum class Which
    {
        Whole,
        Part,
        Peer
    };

    static const Documents& Get(Which which)
    {
        static const Documents documents(which);
        return documents;
    }

    std::optional<Loaded> whole;
    std::optional<Loaded> part;
    Doc peer{nullptr, xmlFreeDoc};

private:
    explicit Documents(Which which)
    {
        const auto isWanted = [which](Which other) { return which == other || !bench::IsMemoryMeasured(); };
        if (isWanted(Which::Whole)) whole.emplace(kRecords);
        if (isWanted(Which::Part)) part.emplace(kRecords / 10);
        if (isWanted(Which::Peer)) peer = LoadLibxml();
    }
};

void ReadAll(benchmark::State& state, const Loaded& loaded, int nTimes)
{
    for (auto _ : bench::Loop(state))
        for (int nTime = 0; nTime < nTimes; ++nTime) {
            int nFound = 0;
            for (const CKXXmlDomElement& record : loaded.root.GetChilds("record"))
                for (std::size_t i = 0; i < kFields; ++i)
                    nFound += ReadField(record, i);
            if (nFound != kRecords / nTimes * kFields) state.SkipWithError("not all found");
        }
}

void ReadOurs(benchmark::State& state)
{
    ReadAll(state, *Documents::Get(Documents::Which::Whole).whole, 1);
}

void ReadXPath(benchmark::State& state)
{
    const Doc& doc = Documents::Get(Documents::Which::Peer).peer;
    xmlXPathContext* const context = xmlXPathNewContext(doc.get());
    for (auto _ : bench::Loop(state)) {
        int nFound = 0;
        for (xmlNode* record = xmlDocGetRootElement(doc.get())->children; record; record = record->next) {
            if (record->type != XML_ELEMENT_NODE) continue;
            for (const char* name : kNames) {
                context->node = record;
                xmlXPathObject* const found = xmlXPathEvalExpression(X(name), context);
                xmlChar* const text = xmlNodeGetContent(found->nodesetval->nodeTab[0]);
                nFound += xmlStrlen(text) > 0;
                xmlFree(text);
                xmlXPathFreeObject(found);
            }
        }
        if (nFound != kRecords * kFields) state.SkipWithError("not all found");
    }
    xmlXPathFreeContext(context);
}

// Ten times a tenth: as long as the whole if the time is linear in the document.
void ReadTenths(benchmark::State& state)
{
    ReadAll(state, *Documents::Get(Documents::Which::Part).part, 10);
}

// The texts are the same on both sides and made before.
const std::vector<CString>& Texts()
{
    static const std::vector<CString> texts = [] {
        std::vector<CString> made;
        for (int n = 0; n < kRecords; ++n)
            for (std::size_t i = 0; i < kFields; ++i)
                made.emplace_back(Value(n, i).c_str());
        return made;
    }();
    return texts;
}

void Fill(CKXXmlDomDocument& doc, const std::vector<CString>& texts)
{
    CKXXmlDomElement root = doc.CreateElement("words", nullptr);
    doc.SetDocumentElement(root);
    for (std::size_t n = 0; n < texts.size(); n += kFields) {
        CKXXmlDomElement record = doc.CreateElement("record", nullptr);
        for (std::size_t i = 0; i < kFields; ++i)
            record.AppendChild(doc, kNames[i], texts[n + i], true);
        root.AppendChild(record);
    }
}

void WriteOurs(benchmark::State& state)
{
    const Com com;
    const auto& texts = Texts();
    const CString file = bench::Dir().Win("ours.xml");
    for (auto _ : bench::Loop(state)) {
        auto doc = std::make_unique<CKXXmlDomDocument>();
        Fill(*doc, texts);
        doc->Save(file);
        End(state, doc);
    }
    if (!IsWhole(bench::Dir().Path("ours.xml"))) state.SkipWithError("not all written");
}

void WritePeer(benchmark::State& state)
{
    const auto& texts = Texts();
    const std::string file = bench::Dir().Path("peer.xml");
    for (auto _ : bench::Loop(state)) {
        Doc doc(xmlNewDoc(X("1.0")), xmlFreeDoc);
        xmlNode* const root = xmlNewDocNode(doc.get(), nullptr, X("words"), nullptr);
        xmlDocSetRootElement(doc.get(), root);
        for (std::size_t n = 0; n < texts.size(); n += kFields) {
            xmlNode* const record = xmlNewChild(root, nullptr, X("record"), nullptr);
            for (std::size_t i = 0; i < kFields; ++i)
                xmlNewTextChild(record, nullptr, X(kNames[i]), X(texts[n + i]));
        }
        xmlSaveFormatFileEnc(file.c_str(), doc.get(), "UTF-8", 0);
        End(state, doc);
    }
    if (!IsWhole(file)) state.SkipWithError("not all written");
}

const int registered = [] {
    const auto add = [](const char* name, void (*run)(benchmark::State&)) {
        benchmark::RegisterBenchmark(name, run)->UseRealTime();
    };
    add("xml_load_5mb/ours", LoadOurs);
    add("xml_load_5mb/libxml2", LoadPeer);
    add("xml_read_childs/ours", ReadOurs);
    add("xml_read_childs/libxml2_xpath", ReadXPath);
    add("xml_read_childs/ten_tenths", ReadTenths);
    add("xml_write/ours", WriteOurs);
    add("xml_write/libxml2", WritePeer);
    return 0;
}();

} // namespace
