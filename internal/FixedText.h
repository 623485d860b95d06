#pragma once

#include <array>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <string_view>

namespace kx {

// A text that grows in a buffer of its own, for code that may not use the heap. What doesn't fit whole is
// left off, and so is everything behind it: Fits tells.
template <std::size_t N>
class FixedText
{
public:
    FixedText& operator<<(std::string_view text) noexcept
    {
        m_bFits = m_bFits && text.size() < N - m_length;
        if (!m_bFits) return *this;
        std::memcpy(m_text.data() + m_length, text.data(), text.size());
        m_length += text.size();
        m_text[m_length] = '\0';
        return *this;
    }
    // In decimal, with leading zeros up to that many digits.
    FixedText& Number(long long nValue, std::size_t nDigits = 1) noexcept
    {
        std::array<char, 24> digits;
        const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), nValue).ptr;
        const auto count = static_cast<std::size_t>(end - digits.data());
        for (std::size_t n = count; n < nDigits; ++n)
            *this << "0";
        return *this << std::string_view(digits.data(), count);
    }

    bool Fits() const noexcept { return m_bFits; }
    std::string_view View() const noexcept { return {m_text.data(), m_length}; }
    // Ends in a NUL; may be written to within its length.
    char* Data() noexcept { return m_text.data(); }
    const char* Data() const noexcept { return m_text.data(); }
    std::size_t Length() const noexcept { return m_length; }
    // Cuts it behind that many characters.
    void Truncate(std::size_t nLength) noexcept
    {
        if (nLength >= m_length) return;
        m_length = nLength;
        m_text[m_length] = '\0';
    }
    void Clear() noexcept
    {
        Truncate(0);
        m_bFits = true;
    }

private:
    std::array<char, N> m_text{};
    std::size_t m_length = 0;
    bool m_bFits = true;
};

} // namespace kx
