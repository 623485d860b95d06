// A resource bundle and what it holds. Its check must leave nothing that GLib complains about.
#include "platform/shell/gio/Gio.h"

#include <cstdlib>
#include <gio/gio.h>
#include <string>

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    g_log_set_always_fatal(
        static_cast<GLogLevelFlags>(G_LOG_LEVEL_CRITICAL | G_LOG_LEVEL_WARNING | G_LOG_FATAL_MASK));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto bundle = kx::shell::gio::LoadBundle(std::string(reinterpret_cast<const char*>(data), size));
    if (!bundle) return 0;
    for (const char* path : {"/T/A", "/T/B", "/STRING/1"}) {
        const auto content = bundle->Read(path);
        if (!content.owner) continue;
        if (!bundle->Holds(path)) std::abort();
        const volatile char* const bytes = content.bytes.data();
        for (std::size_t n = 0; n < content.bytes.size(); ++n)
            (void)bytes[n];
    }
    return 0;
}
