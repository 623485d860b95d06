#pragma once

#include "platform/xml/Libxml.h"

#include <optional>
#include <string>
#include <string_view>

namespace kx::xml {

// Whether it may be the name, with or without a prefix, of an element or attribute.
bool IsName(const std::string& name) noexcept;

// Whether an element or attribute has this name, prefix and all.
bool IsCalled(const xmlNs* ns, const xmlChar* local, std::string_view name) noexcept;

// A node's name as it stands, or what stands for it.
std::string NameOf(const xmlNode* node);

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
