#pragma once

#include <cstdint>
#include <span>

namespace kx::module {

// The most that a bundle file, or one resource of it, may hold.
inline constexpr std::uint64_t kMaxBundle = std::uint64_t{256} << 20;

// Whether the bytes are a resource bundle that GLib can be given. It takes what a bundle says of itself on
// trust, types and sizes included, so what comes from outside is looked through first: every entry lies
// inside the bytes, is a resource, and says its true size or, compressed, one that it can come to.
bool IsSoundBundle(std::span<const std::uint8_t> bundle) noexcept;

} // namespace kx::module
