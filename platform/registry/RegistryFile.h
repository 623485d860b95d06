#pragma once

#include "include/platform/Types.h"

#include <optional>
#include <string>
#include <string_view>

// The file of the per-user values: an INI file with a section for each key, by its path, and a line for each
// value, `name=type:data`, both escaped. The value without a name is "@". Any thread. Results are ERROR_...
// codes.

namespace kx::registry {

struct Value
{
    DWORD type = 0;
    std::string data;
};

// A key's path below HKEY_CURRENT_USER in its escaped form, names divided by backslashes; the root's is
// empty.
using KeyPath = std::string;

// The path with a further one joined on; empty names in it count for nothing. Nothing for a name or a path
// that is too long.
std::optional<KeyPath> Join(const KeyPath& parent, std::string_view subKey);

bool HasKey(const KeyPath& key);
// Makes a key and those above it; `bNew` tells whether it lacked.
DWORD MakeKey(const KeyPath& key, bool& bNew);
// Nothing without the key or the value, and for a line that isn't of the form.
std::optional<Value> FindValue(const KeyPath& key, std::string_view name);
DWORD SetValue(const KeyPath& key, std::string_view name, const Value& value);
// Whether the file could be changed.
DWORD CheckWritable();

} // namespace kx::registry
