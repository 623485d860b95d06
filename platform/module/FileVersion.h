#pragma once

#include "include/platform/Version.h"
#include "platform/module/ByteSource.h"

#include <optional>

// The version that a file carries. A header may say anything: what lies outside the file is not read, and how
// much is looked at is bounded.

namespace kx::module {

// The fixed record of the version resource of a PE image, of 32 or 64 bits.
std::optional<VS_FIXEDFILEINFO> ReadPeVersion(const ByteSource& source);

// The note of name "KXVersion" that a program header of an ELF file names, of 64 bits and little-endian as
// those of the machines that the library runs on are.
std::optional<VS_FIXEDFILEINFO> ReadElfVersion(const ByteSource& source);

// By what the file begins with.
std::optional<VS_FIXEDFILEINFO> ReadVersion(const ByteSource& source);

// The version resource's head as it lies in a PE image: the record's offset in it, and both as a whole.
inline constexpr std::uint32_t kFixedRecordAt = 40;
inline constexpr std::uint32_t kVersionHeadSize = kFixedRecordAt + sizeof(VS_FIXEDFILEINFO);
inline constexpr char16_t kVersionKey[] = u"VS_VERSION_INFO"; // at offset 6
inline constexpr std::uint32_t kFixedSignature = 0xFEEF04BD;

} // namespace kx::module
