#pragma once

#include <string>
#include <string_view>

namespace kx::xml {

// The encoding that a document's first line declares, if that can be read as ASCII; empty without one.
std::string DeclaredEncoding(std::string_view document);

// Whether texts can be read and written in it.
bool IsEncoding(const std::string& name);

// Names that stand for code page 936, whichever of its subsets they belong to.
bool IsChinese(std::string_view name);

} // namespace kx::xml
