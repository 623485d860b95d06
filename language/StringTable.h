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

// The texts of one language by their keys, which are compared to the letter. Keys, texts and nodes lie in
// blocks that are given back all at once; a text becomes a string when it is first asked for, as most of a
// language's never are.
class StringTable
{
public:
    // Null without such a key.
    const CString* Find(const HashedKey& key);

    // Adds a text unless the key is there already.
    void Insert(const HashedKey& key, std::string_view text);

private:
    struct Text
    {
        std::string_view stored;
        CString made; // empty before it is asked for
    };
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
    std::pmr::unordered_map<HashedKey, Text, Hash, Equal> m_texts{&m_memory};
};

} // namespace kx::language
