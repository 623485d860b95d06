#pragma once

#include "platform/xml/Functions.h"
#include "platform/xml/libxml/Tree.h"

#include <optional>
#include <string>
#include <string_view>

// Documents as files have them: encodings, reading, writing.

namespace kx::xml::libxml {

// The encoding that a document's first line declares, if that can be read as ASCII; empty without one.
std::string DeclaredEncoding(std::string_view document);

// A file as UTF-8 without a mark, by its byte order mark, its first bytes or the encoding that it declares.
// Nothing where it isn't in that encoding, or that is an unknown one.
std::optional<std::string> Decode(std::string bytes);

// UTF-8 in an encoding of that name, with numeric references for the characters that it lacks. Nothing unless
// it is one of those that are kept: UTF-16, GBK, GB2312, GB18030, Big5, EUC-JP, EUC-KR, ISO-8859-x and
// windows-125x but 1255 and 1258. What it reads as is still to be checked: not every reference may stand.
std::optional<std::string> Encode(std::string_view utf8, const std::string& encoding);

// Documents from what anybody may have written: null for what is refused, in time and memory that follow the
// length of the input. Nothing outside of it is ever looked for. The name is for the diagnostic of a refusal.
// Throw std::bad_alloc.

// A file's bytes, in the encoding that they declare.
Ref<Tree> ParseFile(std::string bytes, const char* pszName = "a file");
// UTF-8, whatever encoding is declared; that becomes the document's.
Ref<Tree> ParseText(std::string_view utf8, const char* pszName = "a text");

// A node's or a document's markup in UTF-8, a document's declaration without an encoding. Throw
// std::bad_alloc.
std::string MarkupOf(const Tree& tree, const xmlNode* node);

// A document as it lies in a file: in the encoding that it declares, if that is kept and reads as it, or
// UTF-8.
std::string FileContentOf(const Tree& tree);

} // namespace kx::xml::libxml
