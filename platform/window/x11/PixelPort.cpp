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

RECT Enlarged(const RECT& rect, int nScale) noexcept
{
    return {rect.left * nScale, rect.top * nScale, rect.right * nScale, rect.bottom * nScale};
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

// Takes the first pixel of each square of the server's; `at` is the place of the pixels' top left.
void CopyIn(const std::uint32_t* from, const RECT& rect, int nScale, gdi::Surface& to, POINT at)
{
    const std::size_t nRow = WidthOf(rect) * static_cast<std::size_t>(nScale);
    for (int y = rect.top; y < rect.bottom; ++y, from += nRow * static_cast<std::size_t>(nScale))
        for (int x = rect.left; x < rect.right; ++x)
            to.Row(y - at.y)[x - at.x] = from[(x - rect.left) * nScale] & gdi::COLOR_BITS;
}

std::uint32_t Blend(std::uint32_t over, std::uint32_t under, std::uint32_t opacity) noexcept
{
    std::uint32_t mixed = 0;
    for (const int nShift : {0, 8, 16}) {
        const std::uint32_t a = over >> nShift & 0xFF;
        const std::uint32_t b = under >> nShift & 0xFF;
        mixed |= (a * opacity + b * (255 - opacity) + 127) / 255 << nShift;
    }
    return mixed;
}

RECT CutTo(const gdi::Surface& pixels, const RECT& rect) noexcept
{
    return gdi::Cut(rect, {0, 0, pixels.Width(), pixels.Height()});
}

} // namespace

// What is put: pixels, over others if there are any, each as a square of the server's.
struct PixelPort::Picture
{
    const gdi::Surface& pixels;
    const gdi::Surface* below;
    std::uint32_t opacity;
    int scale;

    // A visual with an alpha channel shows what is opaque in it.
    std::uint32_t At(int x, int y) const noexcept
    {
        const std::uint32_t color = pixels.Row(y)[x];
        const bool bBlended = below && x < below->Width() && y < below->Height();
        return (bBlended ? Blend(color, below->Row(y)[x], opacity) : color) | ~gdi::COLOR_BITS;
    }
    std::size_t PixelsOf(const RECT& rect) const noexcept
    {
        return WidthOf(rect) * HeightOf(rect) * static_cast<std::size_t>(scale * scale);
    }
    void CopyOut(const RECT& rect, std::uint32_t* to) const
    {
        const std::size_t nRow = WidthOf(rect) * static_cast<std::size_t>(scale);
        for (int y = rect.top; y < rect.bottom; ++y) {
            std::uint32_t* at = to;
            for (int x = rect.left; x < rect.right; ++x, at += scale)
                std::fill_n(at, scale, At(x, y));
            for (int n = 1; n < scale; ++n)
                std::copy_n(to, nRow, to + nRow * static_cast<std::size_t>(n));
            to += nRow * static_cast<std::size_t>(scale);
        }
    }
};

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

void PixelPort::Put(xcb_window_t window, const gdi::Surface& pixels, const RECT& rect,
                    const gdi::Surface* below, BYTE opacity)
{
    const Picture picture{pixels, below, opacity, m_connection.GetView().scale};
    const LONG nMost = kMostSide / picture.scale;
    const RECT part = gdi::Cut(CutTo(pixels, rect), {0, 0, nMost, nMost});
    if (gdi::IsEmpty(part)) return;
    InStrips(part, kSharedPixels / static_cast<std::size_t>(picture.scale * picture.scale),
             [&](const RECT& strip) {
                 return (Share(window, picture, strip) || Send(window, picture, strip)) &&
                        !m_connection.IsLost();
             });
}

bool PixelPort::Share(xcb_window_t window, const Picture& picture, const RECT& strip)
{
    SharedMemory* shared = Memory(picture.PixelsOf(strip));
    if (!shared) return false;
    picture.CopyOut(strip, shared->Pixels());
    const RECT place = Enlarged(strip, picture.scale);
    const auto nWidth = static_cast<std::uint16_t>(WidthOf(place));
    const auto nHeight = static_cast<std::uint16_t>(HeightOf(place));
    xcb_shm_put_image(m_connection.Get(), window, m_gc, nWidth, nHeight, 0, 0, nWidth, nHeight,
                      static_cast<std::int16_t>(place.left), static_cast<std::int16_t>(place.top),
                      m_connection.Screen().root_depth, XCB_IMAGE_FORMAT_Z_PIXMAP, 0, shared->Id(), 0);
    m_pending = xcb_get_input_focus(m_connection.Get());
    return true;
}

bool PixelPort::Send(xcb_window_t window, const Picture& picture, const RECT& strip)
{
    const auto nSquare = static_cast<std::size_t>(picture.scale * picture.scale);
    const std::size_t nMost = m_connection.MostRequestBytes() / sizeof(std::uint32_t) / nSquare;
    if (nMost == 0) return false; // the server is lost
    return InPieces(strip, std::min(kSentPixels / nSquare, nMost), [&](const RECT& piece) {
        m_rows.resize(picture.PixelsOf(piece));
        picture.CopyOut(piece, m_rows.data());
        const RECT place = Enlarged(piece, picture.scale);
        xcb_put_image(m_connection.Get(), XCB_IMAGE_FORMAT_Z_PIXMAP, window, m_gc,
                      static_cast<std::uint16_t>(WidthOf(place)), static_cast<std::uint16_t>(HeightOf(place)),
                      static_cast<std::int16_t>(place.left), static_cast<std::int16_t>(place.top), 0,
                      m_connection.Screen().root_depth,
                      static_cast<std::uint32_t>(m_rows.size() * sizeof(std::uint32_t)),
                      reinterpret_cast<const std::uint8_t*>(m_rows.data()));
        return true;
    });
}

bool PixelPort::Get(const RECT& rect, gdi::Surface& pixels, POINT at)
{
    if (!m_connection.HasOurPixels()) return false;
    const View view = m_connection.GetView();
    // A server refuses to read what lies beyond its screen, if only by a part of a pixel of ours.
    const RECT screen{-view.origin.x / view.scale, -view.origin.y / view.scale, view.whole.cx, view.whole.cy};
    const RECT held{at.x, at.y, at.x + pixels.Width(), at.y + pixels.Height()};
    const RECT part = gdi::Cut(gdi::Cut(rect, held), screen);
    if (gdi::IsEmpty(part)) return true;
    return InStrips(part, kSharedPixels / static_cast<std::size_t>(view.scale * view.scale),
                    [&](const RECT& strip) { return GetStrip(strip, view, pixels, at); });
}

bool PixelPort::GetStrip(const RECT& strip, const View& view, gdi::Surface& pixels, POINT at)
{
    const RECT place = Enlarged(strip, view.scale);
    const auto x = static_cast<std::int16_t>(place.left + view.origin.x);
    const auto y = static_cast<std::int16_t>(place.top + view.origin.y);
    const auto nWidth = static_cast<std::uint16_t>(WidthOf(place));
    const auto nHeight = static_cast<std::uint16_t>(HeightOf(place));
    const std::size_t nPixels = WidthOf(place) * HeightOf(place);
    xcb_connection_t* const connection = m_connection.Get();
    constexpr std::uint32_t allPlanes = ~0u;
    if (SharedMemory* shared = Memory(nPixels)) {
        const auto cookie = xcb_shm_get_image(connection, m_connection.Root(), x, y, nWidth, nHeight,
                                              allPlanes, XCB_IMAGE_FORMAT_Z_PIXMAP, shared->Id(), 0);
        if (!Own(xcb_shm_get_image_reply(connection, cookie, nullptr))) return false;
        CopyIn(shared->Pixels(), strip, view.scale, pixels, at);
        return true;
    }
    const auto cookie = xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_connection.Root(), x, y,
                                      nWidth, nHeight, allPlanes);
    const auto image = Own(xcb_get_image_reply(connection, cookie, nullptr));
    if (!image || static_cast<std::size_t>(xcb_get_image_data_length(image.get())) < nPixels * 4)
        return false;
    m_rows.resize(nPixels);
    std::memcpy(m_rows.data(), xcb_get_image_data(image.get()), nPixels * sizeof(std::uint32_t));
    CopyIn(m_rows.data(), strip, view.scale, pixels, at);
    return true;
}

} // namespace kx::window::x11
