#include "platform/xml/EntityBudget.h"

#include <algorithm>

namespace kx::xml {

namespace {

bool IsPredefined(std::string_view name) noexcept
{
    constexpr std::string_view kNames[] = {"lt", "gt", "amp", "quot", "apos"};
    return name.starts_with('#') || std::find(std::begin(kNames), std::end(kNames), name) != std::end(kNames);
}

} // namespace

bool EntityBudget::DeclareEntity(std::string_view name, std::string_view text)
{
    if (!Declare() || text.size() > kLongestEntity) return false;
    std::size_t nLength = text.size() + 1;
    for (std::size_t at = 0; (at = text.find('&', at)) != text.npos; ++at) {
        const std::string_view other = text.substr(at + 1, text.find(';', at) - at - 1);
        if (IsPredefined(other)) continue;
        const auto found = m_lengths.find(std::string(other));
        if (found == m_lengths.end()) return false;
        nLength += found->second;
    }
    m_lengths.emplace(name, nLength); // the first declaration counts
    return nLength <= kLongestExpanded;
}

bool EntityBudget::SpendEntity(std::string_view name)
{
    const auto found = m_lengths.find(std::string(name));
    return Spend(found == m_lengths.end() ? 0 : found->second);
}

} // namespace kx::xml
