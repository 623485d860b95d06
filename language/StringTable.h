#pragma once

#include "platform/String.h"

#include <cstddef>
#include <functional>
#include <memory_resource>
#include <string_view>
#include <unordered_map>

namespace kx::language {

// A key with its hash, which is worked out before a lock is taken.
struct HashedKey
{
    explicit HashedKey(std::string_view key) : text(key), hash(std::hash<std::string_view>()(key)) {}

    std::string_view text;
    std::size_t hash;
};

// The texts of one language by their keys, which are compared to the letter. Keys and nodes lie in blocks
// that are given back all at once, so that filling the table costs one allocation for each text.
class StringTable
{
public:
    // Null without such a key.
    const CString* Find(const HashedKey& key) const
    {
        const auto found = m_texts.find(key);
        return found != m_texts.end() ? &found->second : nullptr;
    }

    // Adds a text unless the key is there already.
    void Insert(const HashedKey& key, CString&& text);

private:
    struct Hash
    {
        using is_transparent = void;
        std::size_t operator()(const HashedKey& key) const { return key.hash; }
    };
    struct Equal
    {
        using is_transparent = void;
        bool operator()(const HashedKey& a, const HashedKey& b) const { return a.text == b.text; }
    };

    std::pmr::monotonic_buffer_resource m_memory{4096};
    std::pmr::unordered_map<HashedKey, CString, Hash, Equal> m_texts{&m_memory};
};

} // namespace kx::language
