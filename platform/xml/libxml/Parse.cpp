#include "internal/Debug.h"
#include "platform/xml/libxml/Markup.h"

#include <algorithm>
#include <libxml/SAX2.h>
#include <libxml/catalog.h>
#include <libxml/parserInternals.h>
#include <libxml/valid.h>

namespace kx::xml::libxml {

namespace {

constexpr int kPerAttribute = 5; // places in libxml2's tables, which grow to twice of what they need
constexpr int kPerNamespace = 2;
constexpr std::size_t kCostOfNode = 32;        // of the cap on expansion, as its text's bytes are
constexpr std::size_t kWalkedPerByte = 400;    // bytes passed over in the time that a byte of it is worth
constexpr std::size_t kCostOfParameter = 1000; // of one reference: libxml2 takes long to set out for it
constexpr int kDeepestParameter = 32;          // libxml2 gives up at 40, but doesn't come back

// The part of the cap that a copy of these nodes, which are an entity's, takes.
std::size_t CostOf(xmlNode* nodes) noexcept
{
    std::size_t nCost = 0;
    for (; nodes; nodes = nodes->next)
        ForEachNode(nodes, [&](const xmlNode* node) {
            const bool bText = node->type != XML_ELEMENT_NODE && node->type != XML_ATTRIBUTE_NODE &&
                               node->type != XML_ENTITY_REF_NODE;
            nCost += kCostOfNode + (bText ? ViewOf(node->content).size() : 0);
        });
    return nCost;
}

// The parser counts anew in each entity.
bool HasRoom(xmlDoc* doc) noexcept
{
    xmlNode* const root = xmlDocGetRootElement(doc);
    if (!FitsAt(nullptr, root, nullptr)) return false;
    for (xmlNode* node = root; node; node = NextBelow(root, node))
        if (node->type == XML_TEXT_NODE && ViewOf(node->content).size() > XML_MAX_TEXT) return false;
    return true;
}

// One document on its way through libxml2, which reads it piece by piece and tells what it finds.
class Parsing
{
public:
    Parsing(std::string_view text, const char* pszName) : m_text(text), m_rest(text), m_pszName(pszName) {}
    Parsing(const Parsing&) = delete;
    Parsing& operator=(const Parsing&) = delete;

    Ref<Tree> Run()
    {
        const Complaints complaints;
        MakeContext();
        xmlParseDocument(m_context.get());
        DocPtr doc(std::exchange(m_context->myDoc, nullptr));
        const bool bFull =
            xmlDictGetUsage(m_context->dict) > XML_MAX_DICTIONARY_LIMIT; // which it tells like that too
        if (complaints.NoMemory() && !bFull) throw std::bad_alloc();
        if (complaints.NoMemory() || m_bRefused || IsTooMuch()) return Refused();
        if (!doc || m_context->disableSAX) return Refused(&complaints); // set by each fault
        if (doc->intSubset && !HasRoom(doc.get())) return Refused();
        ForgetIds(doc.get());
        if (doc->dict) xmlDictSetLimit(doc->dict, 0); // a full one gives null to what changes the tree
        xmlFree(const_cast<xmlChar*>(doc->encoding));
        const std::string encoding = DeclaredEncoding(m_text);
        doc->encoding = encoding.empty() ? nullptr : xmlStrdup(ToXml(encoding.c_str()));
        if (!encoding.empty() && !doc->encoding) throw std::bad_alloc();
        return Tree::Make(std::move(doc), std::string(m_text.substr(m_subsetAt, m_subsetEnd - m_subsetAt)));
    }
    // Whether prefixes stood where they may, after Run.
    bool HasRightPrefixes() const noexcept { return m_context->nsWellFormed != 0; }

private:
    // Gives the null of a refused document and tells the reason: without complaints it goes beyond a limit.
    Ref<Tree> Refused(const Complaints* complaints = nullptr) const noexcept
    {
        if (complaints && *complaints->Fault())
            debug::Tell("xml", "%s is refused at line %d: %s; the document stays empty", m_pszName,
                        complaints->FaultLine(), complaints->Fault());
        else
            debug::Tell("xml", "%s is refused: %s; the document stays empty", m_pszName,
                        complaints ? "it isn't well-formed" : "it goes beyond a limit");
        return {};
    }
    static Parsing& Of(void* context) noexcept
    {
        return *static_cast<Parsing*>(static_cast<xmlParserCtxt*>(context)->_private);
    }

    static std::size_t Position(void* context) noexcept
    {
        return static_cast<std::size_t>(xmlByteConsumed(static_cast<xmlParserCtxt*>(context)));
    }
    // Also where a start tag is seen before libxml2 compares all its attributes with each other.
    static int OnRead(void* self, char* target, int nSize) noexcept
    {
        auto& parsing = *static_cast<Parsing*>(self);
        const std::size_t nBytes = std::min(static_cast<std::size_t>(nSize), parsing.m_rest.size());
        if (parsing.m_context) {
            if (parsing.m_context->inSubset != 0) parsing.m_nSubset += nBytes;
            if (parsing.IsTooMuch()) {
                parsing.m_bRefused = true;
                return -1;
            }
        }
        parsing.m_rest.copy(target, nBytes);
        parsing.m_rest.remove_prefix(nBytes);
        return static_cast<int>(nBytes);
    }
    static void OnDocType(void* context, const xmlChar* name, const xmlChar* external, const xmlChar* system)
    {
        Of(context).m_subsetAt = Position(context);
        xmlSAX2InternalSubset(context, name, external, system);
    }
    static void OnDocTypeEnd(void* context, const xmlChar*, const xmlChar*, const xmlChar*)
    {
        Of(context).m_subsetEnd = Position(context);
    }
    // The first reference parses the entity's text; each further one copies what came of it. Behind a text,
    // its own is appended in time that follows the whole. An entity that lies elsewhere isn't read, as
    // libxml2's own way to find it would: the reference stays.
    static xmlEntity* OnReference(void* context, const xmlChar* name)
    {
        Parsing& self = Of(context);
        auto* const at = static_cast<xmlParserCtxt*>(context);
        xmlEntity* const entity = xmlGetDocEntity(at->myDoc, name);
        const xmlNode* const parent = at->node;
        const xmlNode* const last = parent ? parent->last : nullptr;
        std::size_t nCost = kCostOfNode;
        if (entity) nCost += ViewOf(entity->content).size() + CostOf(entity->children);
        if (last && last->type == XML_TEXT_NODE) nCost += ViewOf(last->content).size() / kWalkedPerByte;
        if (!self.Spend(nCost, context)) return nullptr;
        if (!entity) { // within an entity, what isn't read may declare it just as well
            at->hasExternalSubset |= self.m_context->hasExternalSubset;
            at->hasPErefs |= self.m_context->hasPErefs;
        } else if (entity->etype == XML_EXTERNAL_GENERAL_PARSED_ENTITY && at->instate == XML_PARSER_CONTENT) {
            xmlSAX2Reference(context, name);
            return &self.m_unread;
        }
        return entity;
    }
    static xmlEntity* OnParameter(void* context, const xmlChar* name)
    {
        Parsing& self = Of(context);
        xmlEntity* const entity = xmlSAX2GetParameterEntity(context, name);
        const std::size_t nLength = entity ? ViewOf(entity->content).size() : 0;
        if (self.m_context->inputNr > kDeepestParameter) self.Refuse(context);
        if (!self.Spend(nLength + kCostOfParameter, context)) return nullptr;
        return entity && entity->etype == XML_EXTERNAL_PARAMETER_ENTITY ? &self.m_unreadParameter : entity;
    }
    // libxml2 keeps the catalogs that a document names, in a list that it walks to its end for each.
    static void OnInstruction(void* context, const xmlChar* target, const xmlChar* data)
    {
        xmlCatalogFreeLocal(std::exchange(static_cast<xmlParserCtxt*>(context)->catalogs, nullptr));
        xmlSAX2ProcessingInstruction(context, target, data);
    }
    // A name without a prefix is in no namespace here, whatever is the default one. It is declared
    // nevertheless. Default attributes aren't added, and a default that declares a prefix of two colons,
    // which no start tag can, is passed over.
    static void OnElement(void* context, const xmlChar* local, const xmlChar* prefix, const xmlChar* uri,
                          int nNamespaces, const xmlChar** namespaces, int nAttributes, int nDefaulted,
                          const xmlChar** attributes)
    {
        Parsing& self = Of(context);
        const xmlParserCtxt* const at = static_cast<xmlParserCtxt*>(context);
        bool bAllowed = nAttributes <= XML_MAX_ATTRIBUTES && at->nodeNr < XML_MAX_DEPTH &&
                        at->nsNr <= kPerNamespace * XML_MAX_NAMESPACES;
        for (int i = 0; bAllowed && i < nAttributes; ++i) {
            const xmlChar* const* const attribute = attributes + kPerAttribute * i;
            const auto nLength = static_cast<std::size_t>(attribute[4] - attribute[3]);
            const bool bDefaulted = i >= nAttributes - nDefaulted;
            bAllowed =
                nLength <= XML_MAX_ATTRIBUTE && (!bDefaulted || self.Spend(nLength + kCostOfNode, context));
        }
        if (!bAllowed) return self.Refuse(context);
        int nDeclared = 0;
        for (int i = 0; i < nNamespaces; ++i)
            if (const xmlChar** const one = namespaces + kPerNamespace * i; !one[0] || *one[0] != ':')
                std::copy_n(one, kPerNamespace, namespaces + kPerNamespace * nDeclared++);
        xmlSAX2StartElementNs(context, local, prefix, prefix ? uri : nullptr, nDeclared, namespaces,
                              nAttributes - nDefaulted, 0, attributes);
    }

    // Counts against the cap on expansion. False once the document is refused.
    bool Spend(std::size_t nBytes, void* context) noexcept
    {
        m_nExpanded += nBytes;
        if (m_nExpanded > XML_MAX_EXPANSION) Refuse(context);
        return !m_bRefused;
    }
    // Ends the parse in this context, which may be one of an entity.
    void Refuse(void* context) noexcept
    {
        m_bRefused = true;
        xmlStopParser(static_cast<xmlParserCtxt*>(context));
        xmlStopParser(m_context.get());
    }
    // The caps on what libxml2 would treat in quadratic time.
    bool IsTooMuch() const noexcept
    {
        const xmlParserCtxt& context = *m_context;
        return context.maxatts > 2 * kPerAttribute * XML_MAX_ATTRIBUTES ||
               context.nsMax > 2 * kPerNamespace * XML_MAX_NAMESPACES || m_nSubset > XML_MAX_DECLARATIONS ||
               xmlDictSize(context.dict) > XML_MAX_NAMES;
    }
    void MakeContext()
    {
        m_context.reset(xmlNewParserCtxt()); // libxml2 was started for the document's empty tree
        if (!m_context) throw std::bad_alloc();
        using Buffer = std::unique_ptr<xmlParserInputBuffer, FreeBy<xmlFreeParserInputBuffer>>;
        Buffer buffer(xmlParserInputBufferCreateIO(OnRead, nullptr, this, XML_CHAR_ENCODING_UTF8));
        xmlParserInput* const input =
            buffer ? xmlNewIOInputStream(m_context.get(), buffer.get(), XML_CHAR_ENCODING_UTF8) : nullptr;
        if (!input) throw std::bad_alloc();
        static_cast<void>(buffer.release());
        if (inputPush(m_context.get(), input) < 0) {
            xmlFreeInputStream(input);
            throw std::bad_alloc();
        }
        m_context->_private = this;
        m_context->encoding = xmlStrdup(ToXml("UTF-8")); // or it would be guessed once more
        xmlCtxtUseOptions(m_context.get(), XML_PARSE_NOENT | XML_PARSE_COMPACT | XML_PARSE_NONET |
                                               XML_PARSE_NOERROR | XML_PARSE_NOWARNING |
                                               XML_PARSE_IGNORE_ENC);
        m_unreadParameter.content = m_nothing;
        xmlSAXHandler& handler = *m_context->sax;
        handler.internalSubset = OnDocType;
        handler.externalSubset = OnDocTypeEnd;
        handler.getEntity = OnReference;
        handler.getParameterEntity = OnParameter;
        handler.processingInstruction = OnInstruction;
        handler.startElementNs = OnElement;
    }

    const std::string_view m_text;
    std::string_view m_rest;
    const char* const m_pszName;
    std::size_t m_subsetAt = 0; // where the part of the declaration behind its names begins and ends
    std::size_t m_subsetEnd = 0;
    std::size_t m_nSubset = 0; // read of it
    std::size_t m_nExpanded = 0;
    std::unique_ptr<xmlParserCtxt, FreeBy<xmlFreeParserCtxt>> m_context;
    xmlEntity m_unread{}; // nameless and empty, stand for entities that lie elsewhere
    xmlEntity m_unreadParameter{};
    xmlChar m_nothing[1] = {};
    bool m_bRefused = false;
};

} // namespace

Ref<Tree> ParseFile(std::string bytes, const char* pszName)
{
    const auto text = Decode(std::move(bytes));
    if (text) return ParseText(*text, pszName);
    debug::Tell("xml", "%s is refused: it isn't in the encoding that it declares; the document stays empty",
                pszName);
    return {};
}

Ref<Tree> ParseText(std::string_view utf8, const char* pszName)
{
    constexpr std::string_view kMark = "\xEF\xBB\xBF";
    if (utf8.starts_with(kMark)) utf8.remove_prefix(kMark.size());
    Parsing parsing(utf8, pszName);
    Ref<Tree> tree = parsing.Run();
    if (!tree || parsing.HasRightPrefixes()) return tree;
    // For want of memory libxml2 may take half a name. It does so once.
    const Ref<Tree> again = Parsing(utf8, pszName).Run();
    if (!again || MarkupOf(*again, again->DocNode()) != MarkupOf(*tree, tree->DocNode()))
        throw std::bad_alloc();
    return tree;
}

} // namespace kx::xml::libxml
