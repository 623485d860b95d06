#pragma once

#include "platform/String.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory_resource>
#include <string_view>
#include <vector>

namespace kx::language {

// A key with its hash, which is worked out before a lock is taken.
struct HashedKey
{
    explicit HashedKey(std::string_view key) : text(key), hash(std::hash<std::string_view>()(key)) {}

    std::string_view text;
    std::size_t hash;
};

// The texts of one language by their keys, which are compared to the letter. Keys and texts lie in blocks
// that are given back all at once; a text becomes a string when it is first asked for, as most of a
// language's never are.
class StringTable
{
public:
    // Null without such a key. Valid until the next insertion.
    const CString* Find(const HashedKey& key);

    // Adds a text unless the key is there already.
    void Insert(const HashedKey& key, std::string_view text);

private:
    struct Entry
    {
        HashedKey key;
        std::string_view stored;
        CString made; // empty before it is asked for
    };

    // The slot that names the key's entry, or the free one at which the search for it ends.
    std::size_t SlotOf(const HashedKey& key) const;
    void Grow();

    std::pmr::monotonic_buffer_resource m_memory{4096};
    std::vector<Entry> m_entries;
    std::vector<std::uint32_t>
        m_slots; // an entry's number from 1 on, or 0: a power of two, at most half in use
};

} // namespace kx::language
