#include "platform/gdi/Png.h"

#include "platform/module/Door.h"

#include <algorithm>
#include <array>
#include <iterator>

KX_DOOR(pictures, kx::gdi::PngFunctions);

namespace kx::gdi {

namespace {

constexpr std::array<std::uint8_t, 16> kStart = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n',
                                                 0,    0,   0,   13,  'I',  'H',  'D',  'R'};
constexpr std::size_t kHeaderEnd = kStart.size() + 13;

DWORD BigEndian(FileBytes file, std::size_t at) noexcept
{
    return DWORD{file[at]} << 24 | DWORD{file[at + 1]} << 16 | DWORD{file[at + 2]} << 8 | file[at + 3];
}

} // namespace

std::optional<PngHeader> ParsePngHeader(FileBytes file) noexcept
{
    if (file.size() < kHeaderEnd || !std::equal(kStart.begin(), kStart.end(), file.begin()))
        return std::nullopt;
    // By colour type: grey, none, RGB, palette, grey with alpha, none, RGB with alpha.
    constexpr int kChannels[] = {1, 0, 3, 1, 2, 0, 4};
    const std::uint8_t nBits = file[24], nType = file[25];
    const int nChannels = nType < std::size(kChannels) ? kChannels[nType] : 0;
    return PngHeader{BigEndian(file, 16), BigEndian(file, 20), nBits * nChannels};
}

std::optional<Surface> ReadPng(FileBytes file, int nMaxSide)
{
    const PngFunctions* const functions = g_door.Open();
    return functions ? functions->read(file, nMaxSide, nullptr) : std::nullopt;
}

} // namespace kx::gdi
