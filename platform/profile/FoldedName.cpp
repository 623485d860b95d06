#include "platform/profile/FoldedName.h"

#include "platform/text/CharWalk.h"

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

// Calls with where each of the words begins that a name of eight bytes or more is made of. The last two may
// overlap.
template <class Step>
bool EachWord(std::size_t length, Step step)
{
    for (std::size_t i = 0; i + sizeof(Word) < length; i += sizeof(Word))
        if (!step(i)) return false;
    return step(length - sizeof(Word));
}

// Less than eight bytes as one number; with their count it tells them all.
Word LoadShort(std::string_view bytes) noexcept
{
    const std::size_t length = bytes.size();
    const char* end = bytes.data() + length;
    if (length >= 4) return Word{Load<std::uint32_t>(bytes.data())} << 32 | Load<std::uint32_t>(end - 4);
    if (length >= 2) return Word{Load<std::uint16_t>(bytes.data())} << 16 | Load<std::uint16_t>(end - 2);
    return length == 1 ? static_cast<unsigned char>(bytes[0]) : 0;
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
    const auto foldWord = [&](std::size_t i) {
        const Word bytes = Load<Word>(name.data() + i);
        if (bytes & kHighBits) return false;
        const Word lower = FoldAscii(bytes);
        std::memcpy(folded + i, &lower, sizeof lower);
        return true;
    };
    if (name.size() < sizeof(Word) || !EachWord(name.size(), foldWord)) FoldEach(name, folded);
}

std::uint32_t HashFolded(std::string_view folded) noexcept
{
    Word hash = folded.size();
    const auto mixWord = [&](std::size_t i) {
        hash = Mix(hash, Load<Word>(folded.data() + i));
        return true;
    };
    if (folded.size() < sizeof(Word))
        hash = Mix(hash, LoadShort(folded));
    else
        EachWord(folded.size(), mixWord);
    return static_cast<std::uint32_t>(hash);
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
