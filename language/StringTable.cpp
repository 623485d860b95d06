#include "language/StringTable.h"

#include <algorithm>
#include <utility>

namespace kx::language {

std::size_t StringTable::SlotOf(const HashedKey& key) const
{
    const std::size_t mask = m_slots.size() - 1;
    std::size_t slot = key.hash & mask;
    for (std::uint32_t number; (number = m_slots[slot]) != 0; slot = (slot + 1) & mask) {
        const HashedKey& held = m_entries[number - 1].key;
        if (held.hash == key.hash && held.text == key.text) break;
    }
    return slot;
}

const CString* StringTable::Find(const HashedKey& key)
{
    if (m_slots.empty()) return nullptr;
    const std::uint32_t number = m_slots[SlotOf(key)];
    if (number == 0) return nullptr;
    Entry& entry = m_entries[number - 1];
    if (entry.made.IsEmpty()) entry.made = CString(entry.stored);
    return &entry.made;
}

void StringTable::Insert(const HashedKey& key, std::string_view text)
{
    if (2 * m_entries.size() >= m_slots.size()) Grow();
    const std::size_t slot = SlotOf(key);
    if (m_slots[slot] != 0) return;
    auto* const pKey = static_cast<char*>(m_memory.allocate(key.text.size() + text.size() + 1, 1));
    char* const pText = std::copy(key.text.begin(), key.text.end(), pKey);
    std::copy(text.begin(), text.end(), pText);
    HashedKey kept = key;
    kept.text = {pKey, key.text.size()};
    m_entries.push_back({kept, {pText, text.size()}, {}});
    m_slots[slot] = static_cast<std::uint32_t>(m_entries.size());
}

void StringTable::Grow()
{
    std::vector<std::uint32_t> slots(std::max<std::size_t>(64, 4 * m_slots.size()));
    m_slots.swap(slots);
    for (const std::uint32_t number : slots)
        if (number != 0) m_slots[SlotOf(m_entries[number - 1].key)] = number;
}

} // namespace kx::language
