#include "platform/xml/NodeMethods.h"

#include "include/platform/Unknown.h"
#include "platform/xml/Names.h"

#include <algorithm>
#include <libxml/xpathInternals.h>
#include <optional>
#include <unordered_map>
#include <unordered_set>

namespace kx::xml {

namespace {

// libxml2 nests to a depth of 5,000; the rest is for the caller's stack.
constexpr int kDepthTaken = 4'000;

// What must be there before an evaluation begins, for libxml2's doesn't survive a lack of memory.
constexpr std::size_t kMemoryNeeded = 64 << 10;

using Parser = std::unique_ptr<xmlXPathParserContext, FreeBy<xmlXPathFreeParserContext>>;
using Result = std::unique_ptr<xmlXPathObject, FreeBy<xmlXPathFreeObject>>;

// The document's element, or that of the branch.
xmlNode* TopOf(xmlNode* node) noexcept
{
    while (node->parent && node->parent->type != XML_DOCUMENT_NODE)
        node = node->parent;
    return node->type == XML_DOCUMENT_NODE ? xmlDocGetRootElement(node->doc) : node;
}

// The tree's context made ready for one evaluation.
class Evaluation
{
public:
    Evaluation(xmlXPathContext* context, xmlNode* from);
    Evaluation(const Evaluation&) = delete;
    Evaluation& operator=(const Evaluation&) = delete;
    ~Evaluation();

    // Null for a failure, which `Error` then tells.
    Result Run(const std::string& expression);
    xmlXPathError Error() const noexcept { return m_error; }
    // Each prefix that means nothing here as what it is first declared as in the document.
    void TakePrefixesFromAnywhere();

private:
    using Ids = std::unordered_map<std::string, xmlNode*>;

    static void OnId(xmlXPathParserContext* parser, int nArguments);
    static void OnNamespaceUri(xmlXPathParserContext* parser, int nArguments);
    void Replace(const char* pszName, xmlXPathFunction function);
    const Ids& AllIds();
    void AddIds(std::string_view text, xmlNodeSet* found);

    struct FreeList
    {
        void operator()(xmlNs** list) const noexcept { xmlFree(list); }
    };

    xmlXPathContext* const m_context;
    xmlNode* const m_from;
    std::unique_ptr<xmlNs*, FreeList> m_inScope;
    std::optional<Ids> m_ids;
    xmlXPathError m_error = XPATH_EXPRESSION_OK;
};

Evaluation::Evaluation(xmlXPathContext* context, xmlNode* from) : m_context(context), m_from(from)
{
    m_context->userData = this;
    Replace("id", OnId);
    Replace("namespace-uri", OnNamespaceUri);
    if (from->type == XML_ELEMENT_NODE) m_inScope.reset(xmlGetNsList(from->doc, from));
    m_context->namespaces = m_inScope.get();
    m_context->nsNr = 0;
    while (m_inScope && m_inScope.get()[m_context->nsNr])
        ++m_context->nsNr;
}

Evaluation::~Evaluation()
{
    m_context->namespaces = nullptr;
    m_context->nsNr = 0;
    xmlXPathRegisteredNsCleanup(m_context);
    xmlResetError(&m_context->lastError);
}

void Evaluation::Replace(const char* pszName, xmlXPathFunction function)
{
    if (xmlXPathFunctionLookup(m_context, ToXml(pszName)) == function) return;
    xmlXPathRegisterFunc(m_context, ToXml(pszName), nullptr); // it doesn't overwrite
    if (xmlXPathRegisterFunc(m_context, ToXml(pszName), function) != 0) throw std::bad_alloc();
}

// The way that survives a lack of memory: xmlXPathCompiledEval runs into a null pointer.
Result Evaluation::Run(const std::string& expression)
{
    xmlResetError(&m_context->lastError);
    m_context->node = m_from;
    m_context->depth = kDepthTaken;
    const Parser parser(xmlXPathNewParserContext(ToXml(expression.c_str()), m_context));
    if (!parser) throw std::bad_alloc();
    xmlXPathEvalExpr(parser.get());
    m_error = static_cast<xmlXPathError>(parser->error);
    return Result(m_error == XPATH_EXPRESSION_OK ? valuePop(parser.get()) : nullptr);
}

void Evaluation::TakePrefixesFromAnywhere()
{
    xmlNode* const top = TopOf(m_from);
    for (xmlNode* node = top; node; node = NextBelow(top, node)) {
        if (node->type != XML_ELEMENT_NODE) continue;
        for (const xmlNs* ns = node->nsDef; ns; ns = ns->next)
            if (ns->prefix && !xmlXPathNsLookup(m_context, ns->prefix))
                xmlXPathRegisterNs(m_context, ns->prefix, ns->href);
    }
}

const Evaluation::Ids& Evaluation::AllIds()
{
    if (m_ids) return *m_ids;
    m_ids.emplace();
    xmlNode* const top = TopOf(m_from);
    for (xmlNode* node = top; node; node = NextBelow(top, node)) {
        if (node->type != XML_ELEMENT_NODE) continue;
        for (const xmlAttr* attribute = node->properties; attribute; attribute = attribute->next)
            if (attribute->atype == XML_ATTRIBUTE_ID && attribute->children)
                m_ids->try_emplace(std::string(ViewOf(attribute->children->content)), node);
    }
    return *m_ids;
}

void Evaluation::AddIds(std::string_view text, xmlNodeSet* found)
{
    constexpr std::string_view kBlanks = " \t\r\n";
    while (true) {
        text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
        if (text.empty()) return;
        const std::string_view id = text.substr(0, text.find_first_of(kBlanks));
        const auto node = AllIds().find(std::string(id));
        if (node != AllIds().end() && xmlXPathNodeSetAdd(found, node->second) < 0) throw std::bad_alloc();
        text.remove_prefix(id.size());
    }
}

// libxml2's own asks a table of attributes, which would hold those that are gone or have another value.
void Evaluation::OnId(xmlXPathParserContext* parser, int nArguments)
{
    if (nArguments != 1) return xmlXPathErr(parser, XPATH_INVALID_ARITY);
    const Result argument(valuePop(parser));
    if (!argument) return xmlXPathErr(parser, XPATH_INVALID_OPERAND);
    xmlNodeSet* const found = xmlXPathNodeSetCreate(nullptr);
    try {
        auto& self = *static_cast<Evaluation*>(parser->context->userData);
        const auto add = [&](xmlChar* owned) {
            const XmlText text(owned);
            if (!found || !text) throw std::bad_alloc();
            self.AddIds(ViewOf(text.get()), found);
        };
        const bool bNodes = argument->type == XPATH_NODESET || argument->type == XPATH_XSLT_TREE;
        if (!bNodes) add(xmlXPathCastToString(argument.get()));
        for (int n = 0; bNodes && argument->nodesetval && n < argument->nodesetval->nodeNr; ++n)
            add(xmlXPathCastNodeToString(argument->nodesetval->nodeTab[n]));
    } catch (const std::bad_alloc&) {
        xmlXPathErr(parser, XPATH_MEMORY_ERROR);
    }
    valuePush(parser, xmlXPathWrapNodeSet(found));
}

// An element without a prefix is in no namespace for its name's sake, but it is in the default one.
void Evaluation::OnNamespaceUri(xmlXPathParserContext* parser, int nArguments)
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

// Whether it is no expression, or names what nothing declares, rather than one that can't be evaluated.
bool IsMalformed(xmlXPathError error) noexcept
{
    return (error >= XPATH_NUMBER_ERROR && error <= XPATH_UNKNOWN_FUNC_ERROR) ||
           error == XPATH_UNDEF_PREFIX_ERROR || error == XPATH_INVALID_CHAR_ERROR;
}

HRESULT Evaluate(Tree& tree, xmlNode* from, const std::string& expression, std::vector<xmlNode*>& found)
{
    ::operator delete(::operator new(kMemoryNeeded));
    const Complaints complaints;
    Evaluation evaluation(tree.XPath(), from);
    Result result = evaluation.Run(expression);
    if (evaluation.Error() == XPATH_UNDEF_PREFIX_ERROR) {
        evaluation.TakePrefixesFromAnywhere();
        result = evaluation.Run(expression);
    }
    complaints.ThrowIfNoMemory();
    if (evaluation.Error() == XPATH_MEMORY_ERROR) throw std::bad_alloc();
    if (!result) return IsMalformed(evaluation.Error()) ? E_INVALIDARG : E_FAIL;
    if (result->type != XPATH_NODESET) return E_FAIL;
    if (xmlXPathNodeSetIsEmpty(result->nodesetval)) return S_FALSE;
    for (int i = 0; i < result->nodesetval->nodeNr; ++i) {
        xmlNode* const node = result->nodesetval->nodeTab[i];
        found.push_back(node->type == XML_NAMESPACE_DECL ? nullptr : node);
    }
    return S_OK;
}

// Whether it is one path of steps by name and no predicates: what stands before a last ".." is then a path
// of its own.
bool IsPlainPath(std::string_view expression) noexcept
{
    return std::all_of(expression.begin(), expression.end(), [](char ch) {
        return static_cast<signed char>(ch) < 0 || (ch >= '0' && ch <= '9') || (ch >= 'a' && ch <= 'z') ||
               (ch >= 'A' && ch <= 'Z') || std::string_view("/.*@_-:").find(ch) != std::string_view::npos;
    });
}

// Puts the parents, each once, in the place of nodes that are in document order. False unless all of these
// are on one level: else their parents may be in another order.
bool ToParents(std::vector<xmlNode*>& nodes)
{
    std::unordered_set<const xmlNode*> seen;
    std::vector<xmlNode*> parents;
    int nDepth = -1;
    for (const xmlNode* node : nodes) {
        if (!node || !node->parent) return false;
        int nOwn = 0;
        for (const xmlNode* above = node->parent; above; above = above->parent)
            ++nOwn;
        if (nDepth >= 0 && nOwn != nDepth) return false;
        nDepth = nOwn;
        if (seen.insert(node->parent).second) parents.push_back(node->parent);
    }
    nodes = std::move(parents);
    return true;
}

} // namespace

HRESULT EvaluateXPath(Tree& tree, xmlNode* from, const std::string& expression, std::vector<xmlNode*>& found)
{
    // libxml2 compares each parent with all that it has found.
    constexpr std::string_view kUp = "/..";
    const std::string head =
        expression.substr(0, expression.size() - std::min(expression.size(), kUp.size()));
    if (expression.ends_with(kUp) && IsPlainPath(head) && !head.empty() && !head.ends_with('/')) {
        std::vector<xmlNode*> nodes;
        if (EvaluateXPath(tree, from, head, nodes) == S_OK && ToParents(nodes)) {
            found = std::move(nodes);
            return S_OK;
        }
    }
    return Evaluate(tree, from, expression, found);
}

} // namespace kx::xml
