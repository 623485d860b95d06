#pragma once

#include <optional>
#include <string>
#include <string_view>

// A document's bytes in a file, and the UTF-8 that it is here.

namespace kx::xml {

// The encoding that a document's first line declares, if that can be read as ASCII; empty without one.
std::string DeclaredEncoding(std::string_view document);

// A file as UTF-8 without a mark, by its byte order mark, its first bytes or the encoding that it declares.
// Nothing where it isn't in that encoding, or that is an unknown one.
std::optional<std::string> Decode(std::string bytes);

// UTF-8 in an encoding of that name, with numeric references for the characters that it lacks. Nothing unless
// it is one of those that are kept: UTF-16, GBK, GB2312, GB18030, Big5, EUC-JP, EUC-KR, ISO-8859-x and
// windows-125x. What such a file reads as is still to be checked: a reference may stand where none can.
std::optional<std::string> Encode(std::string_view utf8, const std::string& encoding);

} // namespace kx::xml
