#pragma once

#include "platform/xml/Libxml.h"
#include "platform/xml/Namespaces.h"

#include <string>

namespace kx::xml {

// Finds children by a name of any kind, with a prefix or without, and no XPath.
class ChildName
{
public:
    // The children of `parent`, where a prefix has its meaning.
    ChildName(const xmlNode* parent, const std::string& name);

    // That node or the first one behind it that has the name; null without one.
    xmlNode* FirstFrom(xmlNode* node) const noexcept;

private:
    bool Matches(const xmlNode* element) const noexcept;

    const std::string& m_name;
    std::string m_local;
    const xmlNs* m_ns = nullptr; // what the prefix stands for
};

} // namespace kx::xml
