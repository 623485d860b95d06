#include "platform/profile/FoldedName.h"

#include "platform/text/CharWalk.h"

#include <algorithm>
#include <cstring>

namespace kx::profile {

namespace {

using Word = std::uint64_t;

constexpr Word kOnes = 0x0101010101010101;
constexpr Word kHighBits = kOnes * 0x80;

template <class T>
T Load(const char* bytes) noexcept
{
    T value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

// Eight letters at a step. Adding to each byte what carries "A", or only what is behind "Z", into its high
// bit marks the capitals.
constexpr Word FoldAscii(Word bytes) noexcept
{
    const Word fromA = bytes + kOnes * (0x80 - 'A');
    const Word behindZ = bytes + kOnes * (0x7F - 'Z');
    return bytes | ((fromA ^ behindZ) & kHighBits) >> 2;
}

// Up to seven bytes as one number; with the length it tells them all.
Word LoadTail(const char* bytes, std::size_t length) noexcept
{
    if (length >= 4) return Word{Load<std::uint32_t>(bytes)} << 32 | Load<std::uint32_t>(bytes + length - 4);
    if (length == 0) return 0;
    const auto at = [bytes](std::size_t i) { return Word{static_cast<unsigned char>(bytes[i])}; };
    return at(0) << 16 | at(length / 2) << 8 | at(length - 1);
}

constexpr Word Mix(Word hash, Word value) noexcept
{
    hash = (hash ^ value) * 0x9E3779B97F4A7C15;
    return hash ^ hash >> 32;
}

void FoldEach(std::string_view name, char* folded) noexcept
{
    const bool bDoubleByte = text::IsDoubleByte();
    for (std::size_t i = 0; i < name.size(); ++i) {
        const bool bPair = text::CharLength(name, i, bDoubleByte) == 2;
        folded[i] = text::ToLower(name[i]);
        if (!bPair) continue;
        ++i;
        folded[i] = name[i];
    }
}

} // namespace

void Fold(std::string_view name, char* folded) noexcept
{
    std::size_t i = 0;
    while (i < name.size()) {
        const std::size_t length = std::min<std::size_t>(name.size() - i, sizeof(Word));
        Word bytes = 0;
        std::memcpy(&bytes, name.data() + i, length);
        if (bytes & kHighBits) break;
        bytes = FoldAscii(bytes);
        std::memcpy(folded + i, &bytes, length);
        i += length;
    }
    FoldEach(name.substr(i), folded + i);
}

std::uint32_t HashFolded(std::string_view folded) noexcept
{
    Word hash = folded.size();
    for (; folded.size() >= 8; folded.remove_prefix(8))
        hash = Mix(hash, Load<Word>(folded.data()));
    return static_cast<std::uint32_t>(Mix(hash, LoadTail(folded.data(), folded.size())));
}

FoldedName::FoldedName(std::string_view name)
{
    name = text::Trim(name);
    char* folded = m_short.data();
    if (name.size() > m_short.size()) {
        m_long.resize(name.size());
        folded = m_long.data();
    }
    Fold(name, folded);
    m_view = {folded, name.size()};
    m_hash = HashFolded(m_view);
}

} // namespace kx::profile
