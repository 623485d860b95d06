#pragma once

#include <string>
#include <string_view>

// Changes of an INI text. Each gives the text after the change; what it doesn't speak of stays to the byte.
// Sections and keys are found as in reading: ignoring the case of ASCII letters, without white space around.
// No other letter folds, so that one file means the same to processes of all code pages.

namespace kx::profile {

// Whether a name or text, once stored, is found again as what it was.
bool IsSection(std::string_view section);
bool IsKey(std::string_view key);
bool IsValue(std::string_view value) noexcept;

// The names and texts below are such.

// Sets a key in its place, or behind its section's last key. A section that lacks is added at the end.
std::string SetKey(std::string_view text, std::string_view section, std::string_view key,
                   std::string_view value);

// Removes a key, every time it stands in a section of that name.
std::string RemoveKey(std::string_view text, std::string_view section, std::string_view key);

// Removes every section of that name: from its header to its last key. Remarks and blank lines behind that
// stay, as they mostly belong to the next section.
std::string RemoveSection(std::string_view text, std::string_view section);

// Adds an empty section at the end if it lacks.
std::string AddSection(std::string_view text, std::string_view section);

} // namespace kx::profile
