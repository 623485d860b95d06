#pragma once

#include "platform/xml/Libxml.h"

#include <optional>
#include <string>

namespace kx::xml {

// How a document's markup becomes a file: in the encoding that it declares, if that can spell all that no
// reference can stand for, and in UTF-8 otherwise.
class FileEncoding
{
public:
    explicit FileEncoding(xmlDoc* doc);

    // For the declaration.
    const std::string& Name() const noexcept { return m_name; }
    // UTF-8 in it, with references for what it lacks; nothing for a lack of memory.
    std::optional<std::string> Encode(std::string markup) const;

private:
    bool CanSpell(const std::string& text) const;

    std::string m_name;
    std::string m_used; // the one of that name and all that is written as it; empty for UTF-8
};

} // namespace kx::xml
