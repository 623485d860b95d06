#include "platform/window/x11/PixelPort.h"

#include "platform/gdi/Rect.h"
#include "platform/window/x11/Connection.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace kx::window::x11 {

namespace {

// What goes in one piece at most: a strip that is shared, and a part that is sent.
constexpr std::size_t kSharedPixels = std::size_t{1} << 20;
constexpr std::size_t kSentPixels = std::size_t{1} << 15;
// The widest and highest window that there is.
constexpr LONG kMostSide = 0x7FFF;

std::size_t WidthOf(const RECT& rect) noexcept
{
    return static_cast<std::size_t>(rect.right - rect.left);
}

std::size_t HeightOf(const RECT& rect) noexcept
{
    return static_cast<std::size_t>(rect.bottom - rect.top);
}

// Calls for each strip of a rectangle, from the top, until one fails.
template <class Call>
bool InStrips(const RECT& rect, std::size_t nPixels, Call call)
{
    const auto nRows = static_cast<LONG>(std::max<std::size_t>(nPixels / WidthOf(rect), 1));
    for (RECT strip = rect; strip.top < rect.bottom; strip.top = strip.bottom) {
        strip.bottom = std::min(strip.top + nRows, rect.bottom);
        if (!call(strip)) return false;
    }
    return true;
}

// The same for pieces of that many pixels at most, also where not even a row fits in.
template <class Call>
bool InPieces(const RECT& rect, std::size_t nPixels, Call call)
{
    const auto nColumns = static_cast<LONG>(std::min(nPixels, WidthOf(rect)));
    for (RECT part = rect; part.left < rect.right; part.left = part.right) {
        part.right = std::min(part.left + nColumns, rect.right);
        if (!InStrips(part, nPixels, call)) return false;
    }
    return true;
}

// A visual with an alpha channel shows what is opaque in it.
void CopyOut(const gdi::Surface& from, const RECT& rect, std::uint32_t* to)
{
    for (int y = rect.top; y < rect.bottom; ++y)
        for (int x = rect.left; x < rect.right; ++x)
            *to++ = from.Row(y)[x] | ~gdi::COLOR_BITS;
}

void CopyIn(const std::uint32_t* from, const RECT& rect, gdi::Surface& to)
{
    for (int y = rect.top; y < rect.bottom; ++y)
        for (int x = rect.left; x < rect.right; ++x)
            to.Row(y)[x] = *from++ & gdi::COLOR_BITS;
}

RECT CutTo(const gdi::Surface& pixels, const RECT& rect) noexcept
{
    return gdi::Cut(rect, {0, 0, pixels.Width(), pixels.Height()});
}

} // namespace

PixelPort::PixelPort(const Connection& connection)
    : m_connection(connection),
      m_gc(xcb_generate_id(connection.Get())),
      m_bShares(SharedMemory::IsOffered(connection))
{
    const std::uint32_t none = 0;
    xcb_create_gc(m_connection.Get(), m_gc, m_connection.Root(), XCB_GC_GRAPHICS_EXPOSURES, &none);
}

PixelPort::~PixelPort()
{
    AwaitServer();
}

void PixelPort::AwaitServer()
{
    if (m_pending) Own(xcb_get_input_focus_reply(m_connection.Get(), *m_pending, nullptr));
    m_pending.reset();
}

SharedMemory* PixelPort::Memory(std::size_t nPixels)
{
    if (!m_bShares) return nullptr;
    AwaitServer();
    const std::size_t nSize = std::bit_ceil(nPixels) * sizeof(std::uint32_t);
    if (!m_memory || m_memory->Size() < nSize) m_memory.emplace(m_connection, nSize);
    m_bShares = m_memory->Pixels() != nullptr;
    return m_bShares ? &*m_memory : nullptr;
}

void PixelPort::Put(xcb_window_t window, const gdi::Surface& pixels, const RECT& rect)
{
    const RECT part = gdi::Cut(CutTo(pixels, rect), {0, 0, kMostSide, kMostSide});
    if (gdi::IsEmpty(part)) return;
    InStrips(part, kSharedPixels, [&](const RECT& strip) {
        return (Share(window, pixels, strip) || Send(window, pixels, strip)) && !m_connection.IsLost();
    });
}

bool PixelPort::Share(xcb_window_t window, const gdi::Surface& pixels, const RECT& strip)
{
    SharedMemory* shared = Memory(WidthOf(strip) * HeightOf(strip));
    if (!shared) return false;
    CopyOut(pixels, strip, shared->Pixels());
    const auto nWidth = static_cast<std::uint16_t>(WidthOf(strip));
    const auto nHeight = static_cast<std::uint16_t>(HeightOf(strip));
    xcb_shm_put_image(m_connection.Get(), window, m_gc, nWidth, nHeight, 0, 0, nWidth, nHeight,
                      static_cast<std::int16_t>(strip.left), static_cast<std::int16_t>(strip.top),
                      m_connection.Screen().root_depth, XCB_IMAGE_FORMAT_Z_PIXMAP, 0, shared->Id(), 0);
    m_pending = xcb_get_input_focus(m_connection.Get());
    return true;
}

bool PixelPort::Send(xcb_window_t window, const gdi::Surface& pixels, const RECT& strip)
{
    const std::size_t nMost = m_connection.MostRequestBytes() / sizeof(std::uint32_t);
    if (nMost == 0) return false; // the server is lost
    return InPieces(strip, std::min(kSentPixels, nMost), [&](const RECT& piece) {
        m_rows.resize(WidthOf(piece) * HeightOf(piece));
        CopyOut(pixels, piece, m_rows.data());
        xcb_put_image(m_connection.Get(), XCB_IMAGE_FORMAT_Z_PIXMAP, window, m_gc,
                      static_cast<std::uint16_t>(WidthOf(piece)), static_cast<std::uint16_t>(HeightOf(piece)),
                      static_cast<std::int16_t>(piece.left), static_cast<std::int16_t>(piece.top), 0,
                      m_connection.Screen().root_depth,
                      static_cast<std::uint32_t>(m_rows.size() * sizeof(std::uint32_t)),
                      reinterpret_cast<const std::uint8_t*>(m_rows.data()));
        return true;
    });
}

bool PixelPort::Get(const RECT& rect, gdi::Surface& pixels)
{
    if (!m_connection.HasOurPixels()) return false;
    const SIZE size = m_connection.size;
    const RECT part = gdi::Cut(CutTo(pixels, rect), {0, 0, size.cx, size.cy});
    if (gdi::IsEmpty(part)) return true;
    return InStrips(part, kSharedPixels, [&](const RECT& strip) { return GetStrip(strip, pixels); });
}

bool PixelPort::GetStrip(const RECT& strip, gdi::Surface& pixels)
{
    const auto x = static_cast<std::int16_t>(strip.left);
    const auto y = static_cast<std::int16_t>(strip.top);
    const auto nWidth = static_cast<std::uint16_t>(WidthOf(strip));
    const auto nHeight = static_cast<std::uint16_t>(HeightOf(strip));
    const std::size_t nPixels = WidthOf(strip) * HeightOf(strip);
    xcb_connection_t* const connection = m_connection.Get();
    constexpr std::uint32_t allPlanes = ~0u;
    if (SharedMemory* shared = Memory(nPixels)) {
        const auto cookie = xcb_shm_get_image(connection, m_connection.Root(), x, y, nWidth, nHeight,
                                              allPlanes, XCB_IMAGE_FORMAT_Z_PIXMAP, shared->Id(), 0);
        if (!Own(xcb_shm_get_image_reply(connection, cookie, nullptr))) return false;
        CopyIn(shared->Pixels(), strip, pixels);
        return true;
    }
    const auto cookie = xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_connection.Root(), x, y,
                                      nWidth, nHeight, allPlanes);
    const auto image = Own(xcb_get_image_reply(connection, cookie, nullptr));
    if (!image || static_cast<std::size_t>(xcb_get_image_data_length(image.get())) < nPixels * 4)
        return false;
    m_rows.resize(nPixels);
    std::memcpy(m_rows.data(), xcb_get_image_data(image.get()), nPixels * sizeof(std::uint32_t));
    CopyIn(m_rows.data(), strip, pixels);
    return true;
}

} // namespace kx::window::x11
