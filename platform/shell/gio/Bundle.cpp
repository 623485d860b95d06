#include "platform/shell/gio/Gio.h"

#include <cstdint>
#include <cstring>
#include <gio/gio.h>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace kx::shell::gio {

namespace {

using module::Content;

constexpr auto kPlain = G_RESOURCE_LOOKUP_FLAGS_NONE;

struct Unref
{
    void operator()(GInputStream* stream) const noexcept { g_object_unref(stream); }
    void operator()(GResource* resource) const noexcept { g_resource_unref(resource); }
    void operator()(GBytes* bytes) const noexcept { g_bytes_unref(bytes); }
};

Content Adopt(GBytes* bytes)
{
    if (!bytes) return {};
    gsize size = 0;
    const auto* const data = static_cast<const char*>(g_bytes_get_data(bytes, &size));
    return {std::shared_ptr<const void>(bytes, [](GBytes* p) { g_bytes_unref(p); }), {data, data ? size : 0}};
}

// The bundle's format: a header of 24 bytes that names the table; the table's two counts, its filter words
// and buckets, and entries of 24 bytes to its end. An entry of kind 'v' names a value of type (uuay): size,
// flags and content, then the type's text. All integers are little-endian.
using Bytes = std::span<const std::uint8_t>;

constexpr std::string_view kSignature = "GVariant";
constexpr std::string_view kValueType("\0(uuay)", 7);
constexpr std::size_t kHeaderSize = 24;
constexpr std::size_t kEntrySize = 24;
constexpr std::uint32_t kNoParent = 0xFFFFFFFF;
constexpr std::uint32_t kCompressed = 1;
constexpr std::uint64_t kBestCompression = 1032; // what one byte of a deflate stream can become

std::uint32_t U32(Bytes bytes, std::size_t at) noexcept
{
    std::uint32_t value = 0;
    for (std::size_t i = 4; i-- > 0;)
        value = value << 8 | bytes[at + i];
    return value;
}

bool EndsWith(Bytes bytes, std::string_view tail) noexcept
{
    return bytes.size() >= tail.size() &&
           std::memcmp(bytes.data() + bytes.size() - tail.size(), tail.data(), tail.size()) == 0;
}

// The part of the bundle from `bytes[at]` (its start) to `bytes[at + 4]` (its end).
bool Slice(Bytes bundle, Bytes bytes, std::size_t at, std::uint32_t alignment, Bytes& slice) noexcept
{
    const std::uint32_t start = U32(bytes, at), end = U32(bytes, at + 4);
    if (start > end || end > bundle.size() || start % alignment != 0) return false;
    slice = bundle.subspan(start, end - start);
    return true;
}

bool IsSoundValue(Bytes value) noexcept
{
    if (value.size() < 8 + kValueType.size() || !EndsWith(value, kValueType)) return false;
    const std::uint64_t content = value.size() - 8 - kValueType.size();
    const std::uint64_t size = U32(value, 0);
    if ((U32(value, 4) & kCompressed) == 0) return size + 1 == content; // one zero byte follows
    return size <= module::MAX_BUNDLE && size <= content * kBestCompression;
}

bool IsSoundEntry(Bytes bundle, Bytes entry, std::size_t nEntries) noexcept
{
    const std::uint32_t parent = U32(entry, 4);
    const std::uint64_t keyStart = U32(entry, 8), keySize = U32(entry, 12) & 0xFFFF;
    if (parent != kNoParent && parent >= nEntries) return false;
    if (keyStart + keySize > bundle.size()) return false;
    Bytes value;
    switch (entry[14]) {
    case 'v':
        return Slice(bundle, entry, 16, 8, value) && IsSoundValue(value);
    case 'L':
        return Slice(bundle, entry, 16, 4, value);
    default:
        return false;
    }
}

bool IsSoundBundle(Bytes bundle) noexcept
{
    if (bundle.size() < kHeaderSize || bundle.size() > module::MAX_BUNDLE) return false;
    if (std::memcmp(bundle.data(), kSignature.data(), kSignature.size()) != 0 || U32(bundle, 8) != 0)
        return false;

    Bytes table;
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

// The bundles that are linked into the process.
class ProcessBundle : public module::Bundle
{
public:
    bool Holds(const std::string& path) const override
    {
        return g_resources_get_info(path.c_str(), kPlain, nullptr, nullptr, nullptr);
    }
    Content Read(const std::string& path) const override
    {
        return Adopt(g_resources_lookup_data(path.c_str(), kPlain, nullptr));
    }
};

class LoadedBundle : public module::Bundle
{
public:
    explicit LoadedBundle(GResource* resource) : m_resource(resource) {}
    bool Holds(const std::string& path) const override
    {
        return g_resource_get_info(m_resource.get(), path.c_str(), kPlain, nullptr, nullptr, nullptr);
    }
    Content Read(const std::string& path) const override;

private:
    Content Decompress(const std::string& path, std::size_t nSize) const;

    std::unique_ptr<GResource, Unref> m_resource;
};

Content LoadedBundle::Read(const std::string& path) const
{
    gsize size = 0;
    guint32 flags = 0;
    if (!g_resource_get_info(m_resource.get(), path.c_str(), kPlain, &size, &flags, nullptr)) return {};
    if ((flags & G_RESOURCE_FLAGS_COMPRESSED) != 0) return Decompress(path, size);
    return Adopt(g_resource_lookup_data(m_resource.get(), path.c_str(), kPlain, nullptr));
}

// The whole look-up would run past the end of a stream that holds more than it says. Read as a stream, it
// gives exactly its size or nothing.
Content LoadedBundle::Decompress(const std::string& path, std::size_t nSize) const
{
    const std::unique_ptr<GInputStream, Unref> stream(
        g_resource_open_stream(m_resource.get(), path.c_str(), kPlain, nullptr));
    if (!stream) return {};
    const auto data = std::make_shared<std::vector<char>>(nSize + 1);
    gsize got = 0;
    if (!g_input_stream_read_all(stream.get(), data->data(), data->size(), &got, nullptr, nullptr)) return {};
    if (got != nSize) return {};
    return {data, {data->data(), nSize}};
}

} // namespace

// GLib reads bytes that this side allocated: its own allocation ends the process when it fails.
std::unique_ptr<module::Bundle> LoadBundle(std::string bytes)
{
    auto owner = std::make_unique<std::string>(std::move(bytes));
    const Bytes all(reinterpret_cast<const std::uint8_t*>(owner->data()), owner->size());
    if (!IsSoundBundle(all)) return nullptr;
    const auto free = [](gpointer p) { delete static_cast<std::string*>(p); };
    const std::unique_ptr<GBytes, Unref> content(
        g_bytes_new_with_free_func(all.data(), all.size(), free, owner.release()));
    GResource* const resource = g_resource_new_from_data(content.get(), nullptr);
    return resource ? std::make_unique<LoadedBundle>(resource) : nullptr;
}

std::unique_ptr<module::Bundle> BundleOfProcess()
{
    return std::make_unique<ProcessBundle>();
}

} // namespace kx::shell::gio
