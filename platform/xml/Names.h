#pragma once

#include "platform/xml/Libxml.h"

#include <string>
#include <string_view>

namespace kx::xml {

// Whether it may be the name, with or without a prefix, of an element or attribute.
bool IsName(const std::string& name) noexcept;

// Whether an element or attribute has this name, prefix and all.
bool IsCalled(const xmlNs* ns, const xmlChar* local, std::string_view name) noexcept;

// A node's name as it stands, or what stands for it.
std::string NameOf(const xmlNode* node);

} // namespace kx::xml
