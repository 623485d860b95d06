#pragma once

#include "platform/String.h"

#include <algorithm>
#include <cstddef>
#include <memory_resource>
#include <string_view>
#include <unordered_map>

namespace kx::language {

// The texts of one language by their keys, which are compared to the letter. Keys and texts lie in blocks
// that are given back all at once; a text becomes a string when it is first asked for, as most of a
// language's never are.
class StringTable
{
public:
    // Null without such a key. Valid until the next insertion.
    const CString* Find(std::string_view key)
    {
        const auto found = m_texts.find(key);
        if (found == m_texts.end()) return nullptr;
        Text& text = found->second;
        if (text.made.IsEmpty()) text.made = CString(text.stored);
        return &text.made;
    }

    // Makes room for so many texts: to grow by doubling costs more than all else in a large table.
    void Reserve(std::size_t nTexts) { m_texts.reserve(nTexts); }

    // Adds a text; false, with nothing changed, if the key is there already.
    bool Insert(std::string_view key, std::string_view text)
    {
        return !m_texts.contains(key) && m_texts.emplace(Keep(key), Text{Keep(text), {}}).second;
    }

private:
    struct Text
    {
        std::string_view stored;
        CString made; // empty before it is asked for
    };

    std::string_view Keep(std::string_view text)
    {
        auto* const pKept = static_cast<char*>(m_memory.allocate(text.size(), 1));
        std::copy(text.begin(), text.end(), pKept);
        return {pKept, text.size()};
    }

    std::pmr::monotonic_buffer_resource m_memory{4096};
    std::pmr::unordered_map<std::string_view, Text> m_texts{&m_memory};
};

} // namespace kx::language
