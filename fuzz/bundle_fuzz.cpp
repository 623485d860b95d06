// A resource bundle and what it holds. Its check must leave nothing that GLib complains about.
#include "fuzz/MemorySource.h"
#include "platform/module/Bundle.h"

#include <cstdlib>

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    g_log_set_always_fatal(
        static_cast<GLogLevelFlags>(G_LOG_LEVEL_CRITICAL | G_LOG_LEVEL_WARNING | G_LOG_FATAL_MASK));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto bundle = kx::module::Bundle::Load(MemorySource(data, size));
    if (!bundle) return 0;
    for (const char* path : {"/T/A", "/T/B", "/STRING/1"}) {
        const auto content = bundle->Read(path);
        if (!content) continue;
        if (!bundle->Holds(path)) std::abort();
        gsize length = 0;
        const auto* bytes =
            static_cast<const volatile unsigned char*>(g_bytes_get_data(content.get(), &length));
        for (gsize i = 0; i < length; ++i)
            (void)bytes[i];
    }
    return 0;
}
