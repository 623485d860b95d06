#include "platform/module/BundleCheck.h"

#include <cstring>
#include <string_view>

// The bundle's format: a header of 24 bytes that names the table; the table's two counts, its filter words
// and buckets, and entries of 24 bytes to its end. An entry of kind 'v' names a value of type (uuay): size,
// flags and content, then the type's text. All integers are little-endian.

namespace kx::module {

namespace {

using Span = std::span<const std::uint8_t>;

constexpr std::string_view kSignature = "GVariant";
constexpr std::string_view kValueType("\0(uuay)", 7);
constexpr std::size_t kHeaderSize = 24;
constexpr std::size_t kEntrySize = 24;
constexpr std::uint32_t kNoParent = 0xFFFFFFFF;
constexpr std::uint32_t kCompressed = 1;
constexpr std::uint64_t kBestCompression = 1032; // what one byte of a deflate stream can become

std::uint32_t U32(Span bytes, std::size_t at) noexcept
{
    std::uint32_t value = 0;
    for (std::size_t i = 4; i-- > 0;)
        value = value << 8 | bytes[at + i];
    return value;
}

bool EndsWith(Span bytes, std::string_view tail) noexcept
{
    return bytes.size() >= tail.size() &&
           std::memcmp(bytes.data() + bytes.size() - tail.size(), tail.data(), tail.size()) == 0;
}

// The part of the bundle from `bytes[at]` (its start) to `bytes[at + 4]` (its end).
bool Slice(Span bundle, Span bytes, std::size_t at, std::uint32_t alignment, Span& slice) noexcept
{
    const std::uint32_t start = U32(bytes, at), end = U32(bytes, at + 4);
    if (start > end || end > bundle.size() || start % alignment != 0) return false;
    slice = bundle.subspan(start, end - start);
    return true;
}

bool IsSoundValue(Span value) noexcept
{
    if (value.size() < 8 + kValueType.size() || !EndsWith(value, kValueType)) return false;
    const std::uint64_t content = value.size() - 8 - kValueType.size();
    const std::uint64_t size = U32(value, 0);
    if ((U32(value, 4) & kCompressed) == 0) return size + 1 == content; // one zero byte follows
    return size <= kMaxBundle && size <= content * kBestCompression;
}

bool IsSoundEntry(Span bundle, Span entry, std::size_t nEntries) noexcept
{
    const std::uint32_t parent = U32(entry, 4);
    const std::uint64_t keyStart = U32(entry, 8), keySize = U32(entry, 12) & 0xFFFF;
    if (parent != kNoParent && parent >= nEntries) return false;
    if (keyStart + keySize > bundle.size()) return false;
    Span value;
    switch (entry[14]) {
    case 'v':
        return Slice(bundle, entry, 16, 8, value) && IsSoundValue(value);
    case 'L':
        return Slice(bundle, entry, 16, 4, value);
    default:
        return false;
    }
}

} // namespace

bool IsSoundBundle(Span bundle) noexcept
{
    if (bundle.size() < kHeaderSize || bundle.size() > kMaxBundle) return false;
    if (std::memcmp(bundle.data(), kSignature.data(), kSignature.size()) != 0 || U32(bundle, 8) != 0)
        return false;

    Span table;
    if (!Slice(bundle, bundle, 16, 4, table) || table.size() < 8) return false;
    const std::uint64_t filter = U32(table, 0) & 0x07FFFFFF, buckets = U32(table, 4);
    const std::uint64_t before = 8 + 4 * (filter + buckets);
    if (before > table.size() || (table.size() - before) % kEntrySize != 0) return false;

    table = table.subspan(before);
    const std::size_t nEntries = table.size() / kEntrySize;
    for (std::size_t i = 0; i < nEntries; ++i)
        if (!IsSoundEntry(bundle, table.subspan(i * kEntrySize, kEntrySize), nEntries)) return false;
    return true;
}

} // namespace kx::module
