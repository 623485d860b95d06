#include "language/StringTable.h"

#include <cstring>
#include <utility>

void kx::language::StringTable::Insert(const HashedKey& key, CString&& text)
{
    HashedKey kept = key; // copied before it is known to be new: few keys occur twice
    if (!key.text.empty()) {
        auto* copy = static_cast<char*>(m_memory.allocate(key.text.size(), 1));
        std::memcpy(copy, key.text.data(), key.text.size());
        kept.text = {copy, key.text.size()};
    }
    m_texts.try_emplace(kept, std::move(text));
}
