#pragma once

#include <string>
#include <string_view>

namespace kx::path {

// A name with `*` (any characters, also none) and `?` (one character), compared ignoring case. A closing `.*`
// also stands for no extension at all, so that `*.*` matches every name.
class Wildcard
{
public:
    explicit Wildcard(std::string_view utf8Pattern);

    // By a name in UTF-8 that is folded already.
    bool Matches(std::string_view folded) const noexcept;

private:
    std::string m_pattern;
};

} // namespace kx::path
