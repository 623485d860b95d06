#pragma once

#include "platform/xml/Libxml.h"

#include <optional>
#include <string>

namespace kx::xml {

// Declares on a branch the namespaces that its nodes use and that were declared above them where it was
// before; what declares them there must still be alive.
void KeepNamespaces(xmlNode* branch) noexcept;

// Gives the nodes with a prefix, null for none, what it stands for now that the branch's top declares it.
void RenewPrefix(xmlNode* branch, const xmlChar* prefix) noexcept;

// Gives the elements that were named with a prefix before there was a declaration of it their namespace.
void ResolvePrefixes(xmlNode* branch) noexcept;

// Both parts of a name; the prefix is empty without one.
struct QualifiedName
{
    explicit QualifiedName(const std::string& name);

    std::string prefix;
    std::string local;
};

// The prefix, maybe empty, that an attribute of this name declares; nothing for other attributes.
std::optional<std::string> DeclaredPrefix(const std::string& attribute);
// The element's own declaration of it, or null.
xmlNs* FindDeclaration(const xmlNode* element, const std::string& prefix) noexcept;

} // namespace kx::xml
