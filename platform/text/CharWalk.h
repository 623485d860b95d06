#pragma once

#include "include/KXExport.h"
#include "internal/Trim.h"

#include <cstddef>
#include <string_view>

// Walking 8-bit text by characters. In code page 936 a lead byte and a valid trail byte are one character,
// and so are four bytes of which the first and third are lead bytes and the others digits; anything else, a
// stray lead byte too, is a character of one byte.

namespace kx::text {

// Whether the process's code page has characters of two and four bytes.
bool IsDoubleByte() noexcept;

inline bool IsLead(char ch) noexcept
{
    const auto byte = static_cast<unsigned char>(ch);
    return byte >= 0x81 && byte <= 0xFE;
}

inline bool IsTrail(char ch) noexcept
{
    const auto byte = static_cast<unsigned char>(ch);
    return byte >= 0x40 && byte <= 0xFE && byte != 0x7F;
}

inline bool IsDigit(char ch) noexcept
{
    return ch >= '0' && ch <= '9';
}

// The length in bytes of the character at `text[pos]`, which is inside the text.
inline std::size_t CharLength(std::string_view text, std::size_t pos, bool bDoubleByte) noexcept
{
    if (!bDoubleByte || !IsLead(text[pos]) || pos + 1 >= text.size()) return 1;
    if (IsTrail(text[pos + 1])) return 2;
    const bool bFour =
        pos + 3 < text.size() && IsDigit(text[pos + 1]) && IsLead(text[pos + 2]) && IsDigit(text[pos + 3]);
    return bFour ? 4 : 1;
}

// The first position at or behind `pos` where a character begins; one begins at `known`, before it.
std::size_t CharStartFrom(std::string_view text, std::size_t pos, bool bDoubleByte,
                          std::size_t known = 0) noexcept;

constexpr char ToLower(char ch) noexcept
{
    return ch >= 'A' && ch <= 'Z' ? static_cast<char>(ch + ('a' - 'A')) : ch;
}

// Position of the first or last occurrence that begins a character, npos without one. A character begins at
// `start`.
std::size_t Find(std::string_view text, char ch, std::size_t start = 0) noexcept;
std::size_t Find(std::string_view text, std::string_view sub, std::size_t start = 0) noexcept;
std::size_t FindLast(std::string_view text, char ch) noexcept;

// ASCII letters folded, those in longer characters left alone: negative, 0 or positive in byte order.
KX_API int CompareNoCase(std::string_view a, std::string_view b) noexcept;

// Folds the ASCII letters of a text in its place, trail bytes left alone.
void LowerAscii(char* text, std::size_t length) noexcept;

// The longest head of the text that has at most `max` bytes and ends with a whole character.
KX_API std::string_view CutAtChar(std::string_view text, std::size_t max) noexcept;

// Copies a text into a buffer of `size` bytes, cut at a character and ended. Returns the bytes copied;
// nothing is written into a buffer of none.
std::size_t CopyCut(std::string_view text, char* buffer, std::size_t size) noexcept;

} // namespace kx::text
