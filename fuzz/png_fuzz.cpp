// A PNG file, as it came and with the checksums of its chunks set right, so that what lies behind them is
// read too.
#include "fuzz/PictureFuzz.h"

#include <array>
#include <cstddef>
#include <vector>
#include <zlib.h>

namespace {

using Number = std::array<std::uint8_t, 4>; // the most significant byte first

std::size_t ToSize(const std::uint8_t* number)
{
    return std::size_t{number[0]} << 24 | std::size_t{number[1]} << 16 | std::size_t{number[2]} << 8 |
           number[3];
}

void SetChecksums(std::vector<std::uint8_t>& file)
{
    constexpr std::size_t kSignature = 8, kName = 4;
    for (std::size_t at = kSignature; file.size() - at >= sizeof(Number) + kName;) {
        const std::size_t nContent = ToSize(&file[at]);
        at += sizeof(Number);
        if (nContent + kName + sizeof(Number) > file.size() - at) return;
        const auto sum = crc32(0, &file[at], static_cast<uInt>(nContent + kName));
        at += nContent + kName;
        for (int nShift = 24; nShift >= 0; nShift -= 8)
            file[at++] = static_cast<std::uint8_t>(sum >> nShift);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    PictureFuzz::Run(data, size);
    std::vector<std::uint8_t> file(data, data + size);
    if (size >= 8) SetChecksums(file);
    return PictureFuzz::Run(file.data(), file.size());
}
