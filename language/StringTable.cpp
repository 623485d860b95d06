#include "language/StringTable.h"

#include <algorithm>

namespace kx::language {

const CString* StringTable::Find(const HashedKey& key)
{
    const auto found = m_texts.find(key);
    if (found == m_texts.end()) return nullptr;
    Text& text = found->second;
    if (text.made.IsEmpty()) text.made = CString(text.stored);
    return &text.made;
}

void StringTable::Insert(const HashedKey& key, std::string_view text)
{
    if (m_texts.find(key) != m_texts.end()) return;
    auto* const pKey = static_cast<char*>(m_memory.allocate(key.text.size() + text.size() + 1, 1));
    char* const pText = std::copy(key.text.begin(), key.text.end(), pKey);
    std::copy(text.begin(), text.end(), pText);
    HashedKey kept = key;
    kept.text = {pKey, key.text.size()};
    m_texts.emplace(kept, Text{{pText, text.size()}, {}});
}

} // namespace kx::language
