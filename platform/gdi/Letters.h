#pragma once

#include "platform/sync/Mutex.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace kx::gdi {

// Held while text is measured or drawn: FreeType's faces and the glyph caches belong to one thread at a time.
extern sync::Mutex textLock;

// The properties by which a typeface is looked for.
struct FaceRequest
{
    std::string family; // UTF-8; empty: the system's default
    int weight = 400;
    bool italic = false;

    friend auto operator<=>(const FaceRequest&, const FaceRequest&) = default;
};

// One letter at one size: how far it moves on, and how much of each pixel it covers, placed from the pen's
// position on the base line.
struct Glyph
{
    int advance = 0;
    int left = 0; // of the first column
    int top = 0;  // of the first row, upwards
    int width = 0;
    int rows = 0;
    std::vector<std::uint8_t> coverage; // 0 to 255, the top row first
};

// In pixels, from the base line.
struct FontMetrics
{
    int ascent = 0;
    int descent = 0;
    int Height() const noexcept { return ascent + descent; }
};

// A typeface at one size, which draws its letters. Characters that it lacks come from whatever face has them.
// Made and ended on any thread.
class Letters
{
public:
    virtual ~Letters() = default;
    virtual FontMetrics Metrics() const noexcept KX_REQUIRES(textLock) = 0;
    // Throws std::bad_alloc.
    virtual Glyph Draw(char32_t ch) KX_REQUIRES(textLock) = 0;
};

// The module for letters gives this.
struct LetterFunctions
{
    // The face that suits best at a height as LOGFONTA::lfHeight counts it, but not 0; null where the system
    // has no face at all. Throws std::bad_alloc.
    std::unique_ptr<Letters> (*open)(const FaceRequest& request, int nHeight);
};

} // namespace kx::gdi
