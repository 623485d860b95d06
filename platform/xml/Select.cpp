#include "platform/xml/Select.h"

#include "platform/xml/ChildName.h"
#include "platform/xml/Names.h"
#include "platform/xml/XPath.h"

namespace kx::xml {

HRESULT SelectFirst(Place place, const std::string& pattern, xmlNode*& found)
{
    if (IsName(pattern)) {
        found = ChildName(place.node, pattern).FirstFrom(place.node->children);
        return found ? S_OK : S_FALSE;
    }
    std::vector<xmlNode*> all;
    const HRESULT hr = EvaluateXPath(*place.tree, place.node, pattern, all);
    if (hr == S_OK) found = all.front();
    return hr;
}

HRESULT SelectAll(Place place, const std::string& pattern, std::vector<xmlNode*>& found)
{
    if (!IsName(pattern)) return EvaluateXPath(*place.tree, place.node, pattern, found);
    const ChildName name(place.node, pattern);
    for (xmlNode* node = name.FirstFrom(place.node->children); node; node = name.FirstFrom(node->next))
        found.push_back(node);
    return found.empty() ? S_FALSE : S_OK;
}

} // namespace kx::xml
