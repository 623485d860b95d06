#include "platform/gdi/BlackRest.h"

#include <algorithm>
#include <new>

namespace kx::gdi {

namespace {

// Beyond, what is spared is no longer worth the care for it.
constexpr std::size_t kMostBoxes = 64;
constexpr int kMostWrites = 1024;

} // namespace

void BlackRest::Fill(Surface& surface) noexcept
{
    for (const auto& box : m_rest->Boxes())
        for (int y = box.y1; y < box.y2; ++y)
            std::fill(surface.Row(y) + box.x1, surface.Row(y) + box.x2, 0u);
    m_rest.reset();
    m_bAny.store(false, std::memory_order_release);
}

void BlackRest::LayNow(Surface& surface) noexcept
{
    const std::lock_guard guard(m_lock);
    if (m_rest) Fill(surface);
}

void BlackRest::LeaveNow(Surface& surface, const RECT& written) noexcept
{
    const std::lock_guard guard(m_lock);
    if (!m_rest || IsEmpty(written)) return;
    try {
        PixelRegion rest = *m_rest;
        rest.Subtract(PixelRegion(written));
        const std::size_t nBoxes = rest.Boxes().size();
        m_rest = std::move(rest);
        if (nBoxes == 0 || nBoxes > kMostBoxes || ++m_nWrites > kMostWrites) Fill(surface);
    } catch (const std::bad_alloc&) {
        Fill(surface);
    }
}

} // namespace kx::gdi
