#pragma once

#include "platform/gdi/Object.h"
#include "platform/gdi/Surface.h"

#include <utility>
#include <vector>

namespace kx::gdi {

// A bitmap: 32-bit pixels whatever its declared depth, which stays with it for GetObjectA and GetDIBits, as does
// its palette (depths of 8 bits and less; as many entries as the file declared, at most 2 to the depth).
class Bitmap : public Object
{
public:
    Bitmap(Surface pixels, WORD nDepth, std::vector<RGBQUAD> colors = {}, bool bFromFile = false)
        : surface(std::move(pixels)), depth(nDepth), palette(std::move(colors)), fromFile(bFromFile)
    {
    }

    Surface surface;
    const WORD depth;
    const std::vector<RGBQUAD> palette;
    const bool fromFile; // rows count as padded to 32 bits, not 16
};

} // namespace kx::gdi
