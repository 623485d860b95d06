#pragma once

#include "platform/xml/Libxml.h"

#include <string_view>
#include <unordered_map>

namespace kx::xml {

// Finds a node's children by names without a prefix. Those of a parent with many are indexed, and the index
// is kept until another large parent is asked: all children of a record, read in any order, take time in
// proportion to their number.
class ChildIndex
{
public:
    // The first such child; null without one.
    xmlNode* Find(const xmlNode* parent, std::string_view name);
    // To be called when an element has become the last child of `parent`.
    void Added(const xmlNode* parent, xmlNode* child);
    // To be called before an element leaves its place, with others in it, or gets another name.
    void Forget() noexcept;

private:
    void Build(const xmlNode* parent);

    const xmlNode* m_parent = nullptr; // the one whose children are in the index
    std::unordered_map<std::string_view, xmlNode*> m_first;
};

// Whether a node is an element of this name, which has no prefix.
bool IsNamed(const xmlNode* node, std::string_view name) noexcept;

} // namespace kx::xml
