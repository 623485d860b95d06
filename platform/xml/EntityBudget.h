#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

namespace kx::xml {

// What a document may make of its own declarations: each entity's text with those in it, and all references
// together, stay within limits that don't depend on the document.
class EntityBudget
{
public:
    // False for one declaration too many.
    bool Declare() noexcept { return ++m_nDeclarations <= kMostDeclarations; }
    // A parameter entity. False also where its text is too long or names another: libxml2's own guard against
    // too many of those within each other never comes back.
    bool DeclareParameter(std::string_view text) noexcept
    {
        return Declare() && text.size() <= kLongestEntity && text.find('%') == text.npos;
    }
    // A general entity. False also where its text is too long or names one that was not declared before.
    bool DeclareEntity(std::string_view name, std::string_view text);
    // A reference to it, and bytes made in another way; false when they have become too much.
    bool SpendEntity(std::string_view name);
    bool Spend(std::size_t nBytes) noexcept
    {
        m_nSpent += nBytes + 1;
        return m_nSpent <= kMost;
    }
    // A reference behind so long a text, to which its own is appended in time that follows the whole.
    bool SpendText(std::size_t nBytes) noexcept
    {
        m_nWalked += nBytes;
        return m_nWalked <= kMostWalked;
    }

private:
    static constexpr int kMostDeclarations = 1000;
    static constexpr std::size_t kLongestEntity = 4096;    // parsed in quadratic time
    static constexpr std::size_t kLongestExpanded = 65536; // with all that is in it
    static constexpr std::size_t kMost = std::size_t{1} << 20;
    static constexpr std::uint64_t kMostWalked = std::uint64_t{2} << 30; // about half a second

    int m_nDeclarations = 0;
    std::size_t m_nSpent = 0;
    std::uint64_t m_nWalked = 0;
    std::unordered_map<std::string, std::size_t> m_lengths; // expanded
};

} // namespace kx::xml
