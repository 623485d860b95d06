#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kx::profile {

// Folds the ASCII letters of a name, the second byte of a double-byte character left alone; `folded` has the
// name's length and may be the name itself.
void Fold(std::string_view name, char* folded) noexcept;

std::uint32_t HashFolded(std::string_view folded) noexcept;

// A name that is looked for: trimmed and folded, without memory of its own while it is of usual length.
class FoldedName
{
public:
    explicit FoldedName(std::string_view name);
    FoldedName(const FoldedName&) = delete;
    FoldedName& operator=(const FoldedName&) = delete;

    std::string_view View() const noexcept { return m_view; }
    std::uint32_t Hash() const noexcept { return m_hash; }

private:
    std::array<char, 64> m_short; // set as far as it is used
    std::string m_long;
    std::string_view m_view;
    std::uint32_t m_hash;
};

} // namespace kx::profile
