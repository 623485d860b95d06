#include "platform/xml/Parse.h"

#include "include/platform/Xml.h"
#include "platform/xml/Encoding.h"
#include "platform/xml/EntityBudget.h"
#include "platform/xml/Shape.h"

#include <algorithm>
#include <libxml/SAX2.h>
#include <libxml/parserInternals.h>
#include <libxml/valid.h>

namespace kx::xml {

namespace {

constexpr int kPerAttribute = 5; // places in libxml2's tables, which grow to twice of what they need
constexpr int kPerNamespace = 2;
constexpr std::size_t kCostOfDefault = 32;
constexpr std::size_t kLongestSubset = 64 << 10; // each list of values in it is read in quadratic time

// One document on its way through libxml2, which reads it piece by piece and tells what it finds.
class Parsing
{
public:
    explicit Parsing(std::string_view bytes) : m_rest(bytes) {}
    Parsing(const Parsing&) = delete;
    Parsing& operator=(const Parsing&) = delete;

    // With an encoding, that of the document's own declaration doesn't count.
    DocPtr Run(const char* pszEncoding, bool bIgnoreDeclared);

private:
    using Context = std::unique_ptr<xmlParserCtxt, FreeBy<xmlFreeParserCtxt>>;

    static Parsing& Of(void* context) noexcept
    {
        return *static_cast<Parsing*>(static_cast<xmlParserCtxt*>(context)->_private);
    }
    // What is called meanwhile may be in C: nothing is thrown through it.
    template <class Allow>
    static bool Allowed(void* context, Allow allow) noexcept;

    static int OnRead(void* self, char* target, int nSize) noexcept;
    static void OnDocType(void* context, const xmlChar* name, const xmlChar* external, const xmlChar* system);
    static void OnEntity(void* context, const xmlChar* name, int nType, const xmlChar* publicId,
                         const xmlChar* systemId, xmlChar* content);
    static void OnAttributeDeclaration(void* context, const xmlChar* element, const xmlChar* name, int nType,
                                       int nDefault, const xmlChar* value, xmlEnumeration* values);
    static xmlEntity* OnReference(void* context, const xmlChar* name);
    static xmlEntity* OnParameter(void* context, const xmlChar* name);
    static void OnUnparsed(void* context, const xmlChar*, const xmlChar*, const xmlChar*, const xmlChar*)
    {
        Allowed(context, [](Parsing&) { return false; });
    }
    static void OnUndeclared(void* context, const xmlChar*)
    {
        Allowed(context, [](Parsing&) { return false; });
    }
    static void OnInstruction(void* context, const xmlChar* target, const xmlChar* data);
    static xmlParserInput* OnExternal(void*, const xmlChar*, const xmlChar*) { return nullptr; }
    static void OnElement(void* context, const xmlChar* local, const xmlChar* prefix, const xmlChar* uri,
                          int nNamespaces, const xmlChar** namespaces, int nAttributes, int nDefaulted,
                          const xmlChar** attributes);

    bool MakeContext();

    std::string_view m_rest;
    std::size_t m_nSubset = 0; // read of the document's own declarations
    Context m_context;
    EntityBudget m_budget;
    bool m_bRefused = false;
};

template <class Allow>
bool Parsing::Allowed(void* context, Allow allow) noexcept
{
    Parsing& self = Of(context);
    try {
        if (!self.m_bRefused && allow(self)) return true;
    } catch (const std::bad_alloc&) {
    }
    self.m_bRefused = true;
    xmlStopParser(static_cast<xmlParserCtxt*>(context));
    xmlStopParser(self.m_context.get());
    return false;
}

// Also where a start tag is seen before libxml2 compares all its attributes with each other.
int Parsing::OnRead(void* self, char* target, int nSize) noexcept
{
    auto& parsing = *static_cast<Parsing*>(self);
    const xmlParserCtxt* const context = parsing.m_context.get();
    const std::size_t nBytes = std::min(static_cast<std::size_t>(nSize), parsing.m_rest.size());
    if (context && context->inSubset != 0) parsing.m_nSubset += nBytes;
    if (context &&
        (context->maxatts > 2 * kPerAttribute * (XML_MAX_ATTRIBUTES + 1) ||
         context->nsMax > 2 * kPerNamespace * XML_MAX_NAMESPACES || parsing.m_nSubset > kLongestSubset)) {
        parsing.m_bRefused = true;
        return -1;
    }
    parsing.m_rest.copy(target, nBytes);
    parsing.m_rest.remove_prefix(nBytes);
    return static_cast<int>(nBytes);
}

void Parsing::OnDocType(void* context, const xmlChar* name, const xmlChar* external, const xmlChar* system)
{
    if (Allowed(context, [&](Parsing&) { return !external && !system; }))
        xmlSAX2InternalSubset(context, name, external, system);
}

void Parsing::OnEntity(void* context, const xmlChar* name, int nType, const xmlChar* publicId,
                       const xmlChar* systemId, xmlChar* content)
{
    const bool bAllowed = Allowed(context, [&](Parsing& self) {
        if (publicId || systemId) return false;
        return nType == XML_INTERNAL_PARAMETER_ENTITY
                   ? self.m_budget.DeclareParameter(ViewOf(content))
                   : self.m_budget.DeclareEntity(ViewOf(name), ViewOf(content));
    });
    if (bAllowed) xmlSAX2EntityDecl(context, name, nType, publicId, systemId, content);
}

void Parsing::OnAttributeDeclaration(void* context, const xmlChar* element, const xmlChar* name, int nType,
                                     int nDefault, const xmlChar* value, xmlEnumeration* values)
{
    if (Allowed(context, [](Parsing& self) { return self.m_budget.Declare(); }))
        xmlSAX2AttributeDecl(context, element, name, nType, nDefault, value, values);
    else
        xmlFreeEnumeration(values);
}

xmlEntity* Parsing::OnReference(void* context, const xmlChar* name)
{
    const xmlNode* const parent = static_cast<xmlParserCtxt*>(context)->node;
    const xmlNode* const last = parent ? parent->last : nullptr;
    const std::size_t nText = last && last->type == XML_TEXT_NODE ? ViewOf(last->content).size() : 0;
    const bool bAllowed = Allowed(context, [&](Parsing& self) {
        return self.m_budget.SpendEntity(ViewOf(name)) && self.m_budget.SpendText(nText);
    });
    return bAllowed ? xmlSAX2GetEntity(context, name) : nullptr;
}

xmlEntity* Parsing::OnParameter(void* context, const xmlChar* name)
{
    xmlEntity* const entity = xmlSAX2GetParameterEntity(context, name);
    const auto nLength = entity ? static_cast<std::size_t>(entity->length) : 0;
    const bool bAllowed = Allowed(context, [&](Parsing& self) { return self.m_budget.Spend(nLength); });
    return bAllowed ? entity : nullptr;
}

// libxml2 keeps the catalogs that a document names, in a list that it walks to its end for each.
void Parsing::OnInstruction(void* context, const xmlChar* target, const xmlChar* data)
{
    xmlCatalogFreeLocal(std::exchange(static_cast<xmlParserCtxt*>(context)->catalogs, nullptr));
    xmlSAX2ProcessingInstruction(context, target, data);
}

// A name without a prefix is in no namespace here, whatever is the default one. It is declared nevertheless.
void Parsing::OnElement(void* context, const xmlChar* local, const xmlChar* prefix, const xmlChar* uri,
                        int nNamespaces, const xmlChar** namespaces, int nAttributes, int nDefaulted,
                        const xmlChar** attributes)
{
    const bool bAllowed = Allowed(context, [&](Parsing& self) {
        if (nAttributes > XML_MAX_ATTRIBUTES) return false;
        const xmlParserCtxt* const at = static_cast<xmlParserCtxt*>(context);
        if (at->nodeNr >= XML_MAX_DEPTH || at->nsNr > kPerNamespace * XML_MAX_NAMESPACES) return false;
        for (int i = 0; i < nAttributes; ++i) {
            const xmlChar* const* const attribute = attributes + kPerAttribute * i;
            const auto nLength = static_cast<std::size_t>(attribute[4] - attribute[3]);
            const bool bDefaulted = i >= nAttributes - nDefaulted;
            if (nLength > XML_MAX_ATTRIBUTE || (bDefaulted && !self.m_budget.Spend(nLength + kCostOfDefault)))
                return false;
        }
        return true;
    });
    if (bAllowed)
        xmlSAX2StartElementNs(context, local, prefix, prefix ? uri : nullptr, nNamespaces, namespaces,
                              nAttributes, nDefaulted, attributes);
}

bool Parsing::MakeContext()
{
    StartLibxml();
    m_context.reset(xmlCreateIOParserCtxt(nullptr, nullptr, OnRead, nullptr, this, XML_CHAR_ENCODING_NONE));
    if (!m_context) return false;
    m_context->_private = this;
    xmlSAXHandler& handler = *m_context->sax;
    handler.internalSubset = OnDocType;
    handler.entityDecl = OnEntity;
    handler.unparsedEntityDecl = OnUnparsed;
    handler.attributeDecl = OnAttributeDeclaration;
    handler.getEntity = OnReference;
    handler.getParameterEntity = OnParameter;
    handler.reference = OnUndeclared;
    handler.processingInstruction = OnInstruction;
    handler.resolveEntity = OnExternal;
    handler.externalSubset = nullptr;
    handler.startElementNs = OnElement;
    return true;
}

// Nothing is looked up by its identity: attributes can then come and go without leaving themselves there.
void ForgetIds(xmlDoc* doc)
{
    const auto forget = [](void* id, void*, const xmlChar*) {
        if (xmlAttr* const attribute = static_cast<xmlID*>(id)->attr) attribute->atype = XML_ATTRIBUTE_CDATA;
    };
    xmlHashScan(static_cast<xmlHashTable*>(doc->ids), forget, nullptr);
    xmlFreeIDTable(static_cast<xmlIDTable*>(std::exchange(doc->ids, nullptr)));
    xmlFreeRefTable(static_cast<xmlRefTable*>(std::exchange(doc->refs, nullptr)));
}

// The parser counts anew in each entity.
bool HasRoom(xmlDoc* doc) noexcept
{
    xmlNode* const root = xmlDocGetRootElement(doc);
    if (!Shape::Below(root).Fits()) return false;
    for (xmlNode* node = root; node; node = NextBelow(root, node))
        if (node->type == XML_TEXT_NODE && ViewOf(node->content).size() > XML_MAX_TEXT) return false;
    return true;
}

DocPtr Parsing::Run(const char* pszEncoding, bool bIgnoreDeclared)
{
    const Hush hush;
    if (!MakeContext()) return nullptr;
    const int nIgnore = bIgnoreDeclared ? XML_PARSE_IGNORE_ENC : 0;
    xmlCtxtUseOptions(m_context.get(), XML_PARSE_NOENT | XML_PARSE_COMPACT | XML_PARSE_NONET |
                                           XML_PARSE_NOERROR | XML_PARSE_NOWARNING | nIgnore);
    if (pszEncoding) xmlSwitchToEncoding(m_context.get(), xmlFindCharEncodingHandler(pszEncoding));
    xmlParseDocument(m_context.get());
    DocPtr doc(std::exchange(m_context->myDoc, nullptr));
    const bool bWhole = m_context->wellFormed && !m_context->disableSAX && !m_bRefused;
    if (!doc || !bWhole) return nullptr;
    if (doc->intSubset && !HasRoom(doc.get())) return nullptr;
    ForgetIds(doc.get());
    if (doc->dict) xmlDictSetLimit(doc->dict, 0); // a full one gives null to what changes the tree
    return doc;
}

void SetEncoding(xmlDoc* doc, const std::string& name)
{
    xmlFree(const_cast<xmlChar*>(doc->encoding));
    doc->encoding = IsEncoding(name) ? xmlStrdup(ToXml(name.c_str())) : nullptr;
}

} // namespace

DocPtr ParseFile(std::string_view bytes)
{
    const std::string declared = DeclaredEncoding(bytes);
    const bool bMarked = !bytes.empty() && bytes[0] != '<'; // a byte order mark
    if (bMarked || !IsChinese(declared)) return Parsing(bytes).Run(nullptr, false);
    DocPtr doc = Parsing(bytes).Run("GB18030", true);
    if (doc) SetEncoding(doc.get(), declared);
    return doc;
}

DocPtr ParseText(std::string_view utf8)
{
    if (utf8.size() > XML_MAX_FILE) return nullptr;
    DocPtr doc = Parsing(utf8).Run(nullptr, true);
    if (doc) SetEncoding(doc.get(), DeclaredEncoding(utf8));
    return doc;
}

} // namespace kx::xml
