// The version in a PE image or an ELF file.
#include "fuzz/MemorySource.h"
#include "platform/module/FileVersion.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto version = kx::module::ReadVersion(MemorySource(data, size));
    if (version && version->dwSignature != kx::module::kFixedSignature) std::abort();
    return 0;
}
