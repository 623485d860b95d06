#include "platform/xml/libxml/NodeMethods.h"

#include <algorithm>
#include <libxml/xpathInternals.h>
#include <span>
#include <sys/mman.h>
#include <unordered_set>
#include <utility>

namespace kx::xml::libxml {

namespace {

// libxml2 nests to a depth of 5,000; the rest is for the caller's stack.
constexpr int kDepthTaken = 4'000;

constexpr int kValues = 10; // the first size of libxml2's stack, which grows

// This much memory must be there before an evaluation begins, for libxml2 doesn't survive a lack of memory
// within one: it runs into null pointers. Enough for node sets of some hundred thousands.
constexpr std::size_t kMemoryNeeded = 16 << 20;

using Parser = std::unique_ptr<xmlXPathParserContext, FreeBy<xmlXPathFreeParserContext>>;
using Buffer = std::unique_ptr<xmlBuffer, FreeBy<xmlBufferFree>>;
using Result = std::unique_ptr<xmlXPathObject, FreeBy<xmlXPathFreeObject>>;

// libxml2's own asks a table of attributes, which is made for it while it is asked: else it would hold those
// that are gone or have another value.
void OnId(xmlXPathParserContext* parser, int nArguments)
{
    xmlDoc* const doc = parser->context->doc;
    if (!doc->ids) {
        doc->ids = xmlHashCreate(0);
        ForEachNode(TopOf(static_cast<xmlNode*>(parser->context->userData)), [&](xmlNode* node) {
            auto* const attribute = reinterpret_cast<xmlAttr*>(node);
            if (node->type == XML_ATTRIBUTE_NODE && attribute->atype == XML_ATTRIBUTE_ID && node->children)
                xmlAddID(nullptr, doc, node->children->content, attribute);
        });
    }
    if (nArguments == 1 && xmlXPathStackIsNodeSet(parser)) {
        const Result value(valuePop(parser));
        const auto nNodes = static_cast<std::size_t>(xmlXPathNodeSetGetLength(value->nodesetval));
        const Buffer all(xmlBufferCreate());
        for (xmlNode* const node : std::span(nNodes > 0 ? value->nodesetval->nodeTab : nullptr, nNodes)) {
            xmlNodeBufGetContent(all.get(), node);
            xmlBufferCCat(all.get(), " ");
        }
        valuePush(parser, xmlXPathNewString(xmlBufferContent(all.get())));
    }
    if (nArguments == 1) xmlXPathNormalizeFunction(parser, 1); // libxml2 takes blanks at the start for a part
    xmlXPathIdFunction(parser, nArguments);
}

// An element without a prefix is in no namespace for its name's sake, but it is in the default one.
void OnNamespaceUri(xmlXPathParserContext* parser, int nArguments)
{
    const xmlXPathObject* const value = nArguments == 1 ? parser->value : nullptr;
    xmlNode* node = nArguments == 0 ? parser->context->node : nullptr;
    if (value && value->type == XPATH_NODESET && !xmlXPathNodeSetIsEmpty(value->nodesetval))
        node = value->nodesetval->nodeTab[0];
    const bool bPlain = node && node->type == XML_ELEMENT_NODE && !node->ns && !xmlStrchr(node->name, ':');
    const xmlNs* const ns = bPlain ? xmlSearchNs(node->doc, node, nullptr) : nullptr;
    if (!ns) return xmlXPathNamespaceURIFunction(parser, nArguments);
    if (nArguments == 1) xmlXPathFreeObject(valuePop(parser));
    valuePush(parser, xmlXPathNewString(ns->href));
}

// Null for functions that are libxml2's own.
xmlXPathFunction OwnFunction(void*, const xmlChar* name, const xmlChar* uri) noexcept
{
    if (uri) return nullptr;
    return ViewOf(name) == "id" ? OnId : ViewOf(name) == "namespace-uri" ? OnNamespaceUri : nullptr;
}

// The tree's context made ready for one evaluation.
class Evaluation
{
public:
    Evaluation(xmlXPathContext* context, xmlNode* from) : m_context(context), m_from(from)
    {
        m_context->userData = from;
        xmlXPathRegisterFuncLookup(m_context, OwnFunction, nullptr);
        if (from->type == XML_ELEMENT_NODE) m_context->namespaces = xmlGetNsList(from->doc, from);
        m_context->nsNr = 0;
        for (xmlNs* const* next = m_context->namespaces; next && *next; ++next)
            ++m_context->nsNr;
    }
    Evaluation(const Evaluation&) = delete;
    Evaluation& operator=(const Evaluation&) = delete;
    ~Evaluation()
    {
        xmlFree(std::exchange(m_context->namespaces, nullptr));
        xmlXPathRegisteredNsCleanup(m_context);
        xmlResetError(&m_context->lastError);
        ForgetIds(m_context->doc);
    }

    // Null for a failure, which `Error` then tells.
    Result Run(const std::string& expression)
    {
        m_context->node = m_from;
        m_context->depth = kDepthTaken;
        const Parser parser(xmlXPathNewParserContext(ToXml(expression.c_str()), m_context));
        if (!parser) throw std::bad_alloc();
        // Without a stack there and memory for one, libxml2 frees the parser, and so would its owner here.
        parser->valueTab = static_cast<xmlXPathObject**>(xmlMalloc(kValues * sizeof(xmlXPathObject*)));
        if (!parser->valueTab) throw std::bad_alloc();
        parser->valueMax = kValues;
        xmlXPathEvalExpr(parser.get());
        m_error = static_cast<xmlXPathError>(parser->error);
        return Result(m_error == XPATH_EXPRESSION_OK ? valuePop(parser.get()) : nullptr);
    }
    xmlXPathError Error() const noexcept { return m_error; }

    // Each prefix that means nothing here as what it is first declared as in the document.
    void TakePrefixesFromAnywhere()
    {
        ForEachElement(TopOf(m_from), [&](const xmlNode* element) {
            for (const xmlNs* ns = element->nsDef; ns; ns = ns->next)
                if (ns->prefix && !xmlXPathNsLookup(m_context, ns->prefix))
                    xmlXPathRegisterNs(m_context, ns->prefix, ns->href);
        });
    }

private:
    xmlXPathContext* const m_context;
    xmlNode* const m_from;
    xmlXPathError m_error = XPATH_EXPRESSION_OK;
};

HRESULT Evaluate(Tree& tree, xmlNode* from, const std::string& expression, std::vector<xmlNode*>& found)
{
    void* const room =
        mmap(nullptr, kMemoryNeeded, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (room == MAP_FAILED) throw std::bad_alloc();
    munmap(room, kMemoryNeeded);
    const Complaints complaints;
    if (!tree.XPath()) tree.XPath().reset(xmlXPathNewContext(tree.Doc()));
    if (!tree.XPath()) throw std::bad_alloc();
    Evaluation evaluation(tree.XPath().get(), from);
    Result result = evaluation.Run(expression);
    if (evaluation.Error() == XPATH_UNDEF_PREFIX_ERROR) {
        evaluation.TakePrefixesFromAnywhere();
        result = evaluation.Run(expression);
    }
    complaints.ThrowIfNoMemory();
    if (evaluation.Error() == XPATH_MEMORY_ERROR) throw std::bad_alloc();
    const xmlXPathError error = evaluation.Error(); // no expression, names that nothing declares, or another
    const bool bMalformed = (error >= XPATH_NUMBER_ERROR && error <= XPATH_UNKNOWN_FUNC_ERROR) ||
                            error == XPATH_UNDEF_PREFIX_ERROR || error == XPATH_INVALID_CHAR_ERROR;
    if (!result) return bMalformed ? E_INVALIDARG : E_FAIL;
    if (result->type != XPATH_NODESET) return E_FAIL;
    if (xmlXPathNodeSetIsEmpty(result->nodesetval)) return S_FALSE;
    for (int i = 0; i < result->nodesetval->nodeNr; ++i) {
        xmlNode* const node = result->nodesetval->nodeTab[i];
        found.push_back(node->type == XML_NAMESPACE_DECL ? nullptr : node);
    }
    return S_OK;
}

// Puts the parents, each once, in the place of nodes that are in document order. False unless all of these
// are on one level: else their parents may be in another order.
bool ToParents(std::vector<xmlNode*>& nodes)
{
    std::unordered_set<const xmlNode*> seen;
    std::vector<xmlNode*> parents;
    int nDepth = 0;
    for (const xmlNode* node : nodes) {
        if (!node || !node->parent) return false;
        int nOwn = 0;
        for (const xmlNode* above = node->parent; above; above = above->parent)
            ++nOwn;
        if (nDepth && nOwn != nDepth) return false;
        nDepth = nOwn;
        if (seen.insert(node->parent).second) parents.push_back(node->parent);
    }
    nodes = std::move(parents);
    return true;
}

} // namespace

HRESULT EvaluateXPath(Tree& tree, xmlNode* from, const std::string& expression, std::vector<xmlNode*>& found)
{
    // libxml2 compares each parent with all that it has found. What stands before a last ".." is a path of
    // its own in one path of steps by name.
    constexpr std::string_view kUp = "/..";
    constexpr const char* kOfOthers = "[]()|'\"$=<>!+, \t\r\n";
    const std::string head =
        expression.substr(0, expression.size() - std::min(expression.size(), kUp.size()));
    const bool bPath = head.find_first_of(kOfOthers) == head.npos && !head.empty() && !head.ends_with('/');
    if (expression.ends_with(kUp) && bPath && EvaluateXPath(tree, from, head, found) == S_OK &&
        ToParents(found))
        return S_OK;
    found.clear();
    return Evaluate(tree, from, expression, found);
}

} // namespace kx::xml::libxml
