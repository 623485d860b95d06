#include "platform/xml/Select.h"

#include "platform/xml/Ahead.h"
#include "platform/xml/ChildName.h"
#include "platform/xml/Names.h"
#include "platform/xml/SimpleName.h"
#include "platform/xml/XPath.h"

#include <utility>

namespace kx::xml {

namespace {

constexpr std::ptrdiff_t kAhead = 8;                // elements
constexpr std::ptrdiff_t kBefore = sizeof(xmlNode); // the white space before each

template <class Name>
HRESULT FindAll(const Name& name, xmlNode* node, std::vector<xmlNode*>& found)
{
    const xmlNode* last = nullptr;
    while ((node = name.FirstFrom(node))) {
        const std::ptrdiff_t nStep = last ? Distance(last, node) : 0;
        AskFor(node, kAhead * nStep - kBefore, kBefore + sizeof(xmlNode));
        found.push_back(node);
        last = std::exchange(node, node->next);
    }
    return found.empty() ? S_FALSE : S_OK;
}

} // namespace

HRESULT SelectFirst(Place place, BSTR bstrPattern, xmlNode*& found)
{
    if (place.node->type != XML_ATTRIBUTE_NODE) { // whose text comes and goes
        Passed& passed = place.tree->LastSearch();
        if ((found = SimpleName::NextIn(bstrPattern, place.node, passed))) return S_OK;
        if (const SimpleName name(bstrPattern); name) {
            found = name.FirstIn(place.node, passed);
            return found ? S_OK : S_FALSE;
        }
    }
    const std::string pattern = ToUtf8(bstrPattern);
    if (IsName(pattern)) {
        found = ChildName(place.node, pattern).FirstFrom(place.node->children);
        return found ? S_OK : S_FALSE;
    }
    std::vector<xmlNode*> all;
    const HRESULT hr = EvaluateXPath(*place.tree, place.node, pattern, all);
    if (hr == S_OK) found = all.front();
    return hr;
}

HRESULT SelectAll(Place place, BSTR bstrPattern, std::vector<xmlNode*>& found)
{
    if (const SimpleName name(bstrPattern); name) return FindAll(name, place.node->children, found);
    const std::string pattern = ToUtf8(bstrPattern);
    if (IsName(pattern)) return FindAll(ChildName(place.node, pattern), place.node->children, found);
    return EvaluateXPath(*place.tree, place.node, pattern, found);
}

} // namespace kx::xml
