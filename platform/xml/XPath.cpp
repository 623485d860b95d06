#include "platform/xml/XPath.h"

#include "include/platform/Unknown.h"

#include <algorithm>
#include <libxml/xpathInternals.h>

namespace kx::xml {

namespace {

// A step may take time that follows the nodes found so far, so a small document gets by with few; those that
// pass through all of a large one a few times need more.
constexpr unsigned long kSteps = 3'000'000;
constexpr unsigned long kStepsPerNode = 8;
constexpr unsigned long kMostSteps = 30'000'000;
// libxml2 nests to a depth of 5,000; the rest is for the caller's stack.
constexpr int kDepthTaken = 4'000;

using Expression = std::unique_ptr<xmlXPathCompExpr, FreeBy<xmlXPathFreeCompExpr>>;
using Result = std::unique_ptr<xmlXPathObject, FreeBy<xmlXPathFreeObject>>;

// The tree's context made ready for one evaluation.
class Evaluation
{
public:
    Evaluation(xmlXPathContext* context, xmlNode* from) : m_context(context), m_from(from)
    {
        if (from->type == XML_ELEMENT_NODE) m_inScope.reset(xmlGetNsList(from->doc, from));
        m_context->namespaces = m_inScope.get();
        m_context->nsNr = 0;
        while (m_inScope && m_inScope.get()[m_context->nsNr])
            ++m_context->nsNr;
    }
    Evaluation(const Evaluation&) = delete;
    Evaluation& operator=(const Evaluation&) = delete;
    ~Evaluation()
    {
        m_context->namespaces = nullptr;
        m_context->nsNr = 0;
        xmlXPathRegisteredNsCleanup(m_context);
        xmlResetError(&m_context->lastError);
    }

    Result Run(const Expression& expression)
    {
        Prepare();
        Result result(xmlXPathCompiledEval(expression.get(), m_context));
        if (result || m_context->opCount < m_nSteps || !AllowMore()) return result;
        Prepare();
        return Result(xmlXPathCompiledEval(expression.get(), m_context));
    }
    Expression Compile(const std::string& text)
    {
        Prepare();
        return Expression(xmlXPathCtxtCompile(m_context, ToXml(text.c_str())));
    }
    bool LacksPrefix() const noexcept { return m_context->lastError.code == XML_XPATH_UNDEF_PREFIX_ERROR; }
    // Each prefix that means nothing here as what it is first declared as in the document.
    void TakePrefixesFromAnywhere();

private:
    void Prepare()
    {
        xmlResetError(&m_context->lastError);
        m_context->node = m_from;
        m_context->opLimit = m_nSteps;
        m_context->opCount = 0;
        m_context->depth = kDepthTaken;
    }

    xmlNode* Top() const noexcept;
    // As many steps as the document's size allows; false if that is no more.
    bool AllowMore() noexcept;

    struct FreeList
    {
        void operator()(xmlNs** list) const noexcept { xmlFree(list); }
    };

    xmlXPathContext* m_context;
    xmlNode* m_from;
    unsigned long m_nSteps = kSteps;
    std::unique_ptr<xmlNs*, FreeList> m_inScope;
};

// The document's element, or that of the branch.
xmlNode* Evaluation::Top() const noexcept
{
    xmlNode* top = m_from;
    while (top->parent && top->parent->type != XML_DOCUMENT_NODE)
        top = top->parent;
    return top->type == XML_DOCUMENT_NODE ? xmlDocGetRootElement(top->doc) : top;
}

bool Evaluation::AllowMore() noexcept
{
    xmlNode* const top = Top();
    unsigned long nSteps = 0;
    for (xmlNode* node = top; node && nSteps < kMostSteps; node = NextBelow(top, node))
        nSteps += kStepsPerNode;
    return nSteps > std::exchange(m_nSteps, std::clamp(nSteps, kSteps, kMostSteps));
}

void Evaluation::TakePrefixesFromAnywhere()
{
    xmlNode* const top = Top();
    for (xmlNode* node = top; node; node = NextBelow(top, node)) {
        if (node->type != XML_ELEMENT_NODE) continue;
        for (const xmlNs* ns = node->nsDef; ns; ns = ns->next)
            if (ns->prefix && !xmlXPathNsLookup(m_context, ns->prefix))
                xmlXPathRegisterNs(m_context, ns->prefix, ns->href);
    }
}

} // namespace

HRESULT EvaluateXPath(Tree& tree, xmlNode* from, const std::string& expression, std::vector<xmlNode*>& found)
{
    const Hush hush;
    xmlXPathContext* const context = tree.XPath();
    if (!context) return E_OUTOFMEMORY;
    Evaluation evaluation(context, from);
    const Expression compiled = evaluation.Compile(expression);
    if (!compiled) return E_INVALIDARG;
    Result result = evaluation.Run(compiled);
    if (!result && evaluation.LacksPrefix()) {
        evaluation.TakePrefixesFromAnywhere();
        result = evaluation.Run(compiled);
    }
    if (!result) return evaluation.LacksPrefix() ? E_INVALIDARG : E_FAIL;
    if (result->type != XPATH_NODESET) return E_FAIL;
    if (xmlXPathNodeSetIsEmpty(result->nodesetval)) return S_FALSE;
    xmlXPathNodeSetSort(result->nodesetval);
    for (int i = 0; i < result->nodesetval->nodeNr; ++i) {
        xmlNode* const node = result->nodesetval->nodeTab[i];
        found.push_back(node->type == XML_NAMESPACE_DECL ? nullptr : node);
    }
    return S_OK;
}

} // namespace kx::xml
