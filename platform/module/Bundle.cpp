#include "platform/module/Bundle.h"

#include "platform/module/BundleCheck.h"

#include <utility>
#include <vector>

namespace kx::module {

namespace {

constexpr auto kPlain = G_RESOURCE_LOOKUP_FLAGS_NONE;

struct UnrefObject
{
    void operator()(gpointer object) const noexcept { g_object_unref(object); }
};

// Bytes that GLib reads and this side allocated: GLib's own allocation ends the process when it fails.
GBytes* WrapBytes(std::vector<std::uint8_t> data)
{
    auto owner = std::make_unique<std::vector<std::uint8_t>>(std::move(data));
    const auto free = [](gpointer p) { delete static_cast<std::vector<std::uint8_t>*>(p); };
    const void* start = owner->data();
    const std::size_t size = owner->size();
    return g_bytes_new_with_free_func(start, size, free, owner.release());
}

Content Own(GBytes* bytes)
{
    return bytes ? Content(bytes, g_bytes_unref) : nullptr;
}

} // namespace

std::optional<Bundle> Bundle::Load(const ByteSource& source)
{
    if (source.Size() > kMaxBundle) return std::nullopt;
    auto bytes = source.Read(0, source.Size());
    if (!bytes || !IsSoundBundle(bytes->All())) return std::nullopt;
    const Content content = Own(WrapBytes(std::move(*bytes).Take()));
    GResource* resource = g_resource_new_from_data(content.get(), nullptr);
    if (!resource) return std::nullopt;
    return Bundle(resource);
}

bool Bundle::Holds(const std::string& path) const
{
    return m_resource ? g_resource_get_info(m_resource.get(), path.c_str(), kPlain, nullptr, nullptr, nullptr)
                      : g_resources_get_info(path.c_str(), kPlain, nullptr, nullptr, nullptr);
}

Content Bundle::Read(const std::string& path) const
{
    if (!m_resource) return Own(g_resources_lookup_data(path.c_str(), kPlain, nullptr));
    gsize size = 0;
    guint32 flags = 0;
    if (!g_resource_get_info(m_resource.get(), path.c_str(), kPlain, &size, &flags, nullptr)) return nullptr;
    if ((flags & G_RESOURCE_FLAGS_COMPRESSED) != 0) return Decompress(path, size);
    return Own(g_resource_lookup_data(m_resource.get(), path.c_str(), kPlain, nullptr));
}

// The whole look-up would run past the end of a stream that holds more than it says. Read as a stream, it
// gives exactly its size or nothing.
Content Bundle::Decompress(const std::string& path, std::size_t nSize) const
{
    const std::unique_ptr<GInputStream, UnrefObject> stream(
        g_resource_open_stream(m_resource.get(), path.c_str(), kPlain, nullptr));
    if (!stream) return nullptr;
    std::vector<std::uint8_t> data(nSize + 1);
    gsize got = 0;
    if (!g_input_stream_read_all(stream.get(), data.data(), data.size(), &got, nullptr, nullptr))
        return nullptr;
    if (got != nSize) return nullptr;
    data.pop_back();
    return Own(WrapBytes(std::move(data)));
}

} // namespace kx::module
