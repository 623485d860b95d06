#pragma once

#include "include/platform/Stream.h"

#include <memory>

namespace kx::gdiplus {

struct ReleaseStream
{
    void operator()(IStream* pStream) const { pStream->Release(); }
};
// A reference to a stream.
using StreamRef = std::unique_ptr<IStream, ReleaseStream>;

inline StreamRef Refer(IStream* pStream)
{
    pStream->AddRef();
    return StreamRef(pStream);
}

} // namespace kx::gdiplus
