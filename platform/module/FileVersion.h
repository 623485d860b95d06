#pragma once

#include "include/platform/Version.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace kx::module {

// A few bytes of a file, from which little-endian integers are read by offset. An offset out of range reads
// 0.
class Bytes
{
public:
    explicit Bytes(std::vector<std::uint8_t> data) : m_data(std::move(data)) {}

    std::size_t Size() const noexcept { return m_data.size(); }
    std::span<const std::uint8_t> All() const noexcept { return m_data; }
    std::uint16_t U16(std::uint64_t at) const noexcept { return static_cast<std::uint16_t>(Integer(at, 2)); }
    std::uint32_t U32(std::uint64_t at) const noexcept { return static_cast<std::uint32_t>(Integer(at, 4)); }
    std::uint64_t U64(std::uint64_t at) const noexcept { return Integer(at, 8); }

private:
    std::uint64_t Integer(std::uint64_t at, std::size_t width) const noexcept
    {
        std::uint64_t value = 0;
        if (at > m_data.size() || width > m_data.size() - at) return 0;
        for (std::size_t i = 0; i < width; ++i)
            value = value << 8 | m_data[at + width - 1 - i];
        return value;
    }

    std::vector<std::uint8_t> m_data;
};

// A parser's source: a file, or a block of memory.
class ByteSource
{
public:
    virtual ~ByteSource() = default;
    virtual std::uint64_t Size() const noexcept = 0;

    // Nothing unless all `nCount` bytes at the offset are there.
    std::optional<Bytes> Read(std::uint64_t offset, std::uint64_t nCount) const
    {
        if (offset > Size() || nCount > Size() - offset) return std::nullopt;
        std::vector<std::uint8_t> data(nCount);
        if (!ReadAt(offset, data)) return std::nullopt;
        return Bytes(std::move(data));
    }

protected:
    // Fills the target, which lies inside the source; false if that can't be done.
    virtual bool ReadAt(std::uint64_t offset, std::span<std::uint8_t> target) const = 0;
};

// ---- The version that a file carries
//
// A header may say anything: what lies outside the file is not read, and how much is looked at is bounded.

// The fixed record of the version resource of a PE image, of 32 or 64 bits.
std::optional<VS_FIXEDFILEINFO> ReadPeVersion(const ByteSource& source);

// The same, or of an ELF file of 64 bits and little-endian, as those of the machines that the library runs on
// are, the note of name "KXVersion" that a program header names.
std::optional<VS_FIXEDFILEINFO> ReadVersion(const ByteSource& source);

// The version resource's head as it lies in a PE image: the record's offset in it, and both as a whole.
inline constexpr std::uint32_t kFixedRecordAt = 40;
inline constexpr std::uint32_t kVersionHeadSize = kFixedRecordAt + sizeof(VS_FIXEDFILEINFO);
inline constexpr char16_t kVersionKey[] = u"VS_VERSION_INFO"; // at offset 6
inline constexpr std::uint32_t kFixedSignature = 0xFEEF04BD;

} // namespace kx::module
