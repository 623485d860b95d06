#pragma once

#include "platform/gdi/text/Letters.h"

#include <memory>

typedef struct FT_FaceRec_* FT_Face;

namespace kx::gdi::letters {

// Whether a call of FreeType failed; throws std::bad_alloc where that was for lack of memory: a face or a
// letter that is kept must not be an empty one for that.
bool ThrowIfNoMemory(int nError);

// On any thread.
struct FaceDeleter
{
    void operator()(FT_Face face) const noexcept;
};
using FacePtr = std::unique_ptr<FT_FaceRec_, FaceDeleter>;

// The system's scalable faces for a request, best match first, opened one at a time as they are needed. Not
// locked: used under the text lock.
class FontFiles
{
public:
    explicit FontFiles(const FaceRequest& request);
    FontFiles(const FontFiles&) = delete;
    FontFiles& operator=(const FontFiles&) = delete;
    ~FontFiles();

    // The best match, or null where the system has no face at all.
    FacePtr OpenBest();
    // The best face that has this character; null without one.
    FacePtr OpenFor(char32_t ch);

private:
    struct Set;
    std::unique_ptr<Set> m_set;
};

} // namespace kx::gdi::letters
