#include "platform/window/x11/PixelPort.h"

#include "platform/UniqueFd.h"
#include "platform/gdi/Rect.h"
#include "platform/window/x11/Connection.h"

#include <algorithm>
#include <bit>
#include <fcntl.h>
#include <sys/mman.h>

namespace kx::window::x11 {

bool SharedMemory::IsOffered(const Connection& connection)
{
    const auto* extension = xcb_get_extension_data(connection.Get(), &xcb_shm_id);
    if (!extension || !extension->present) return false;
    const auto cookie = xcb_shm_query_version(connection.Get());
    const auto version = TakeReply(xcb_shm_query_version_reply(connection.Get(), cookie, nullptr));
    constexpr int nFirstWithFiles = 2;
    return version && (version->major_version > 1 || version->minor_version >= nFirstWithFiles);
}

SharedMemory::SharedMemory(const Connection& connection, std::size_t nSize)
    : m_connection(connection), m_nSize(nSize)
{
    UniqueFd file(memfd_create("kx-pixels", MFD_CLOEXEC));
    // Reserved now: a lack of memory later would be a signal.
    if (!file || posix_fallocate(file.Get(), 0, static_cast<off_t>(nSize)) != 0) return;
    void* memory = mmap(nullptr, nSize, PROT_READ | PROT_WRITE, MAP_SHARED, file.Get(), 0);
    if (memory == MAP_FAILED) return;
    if (Attach(file.Release()))
        m_pixels = static_cast<std::uint32_t*>(memory);
    else
        munmap(memory, nSize);
}

// Takes the file, which a connection to another machine can't carry: its server refuses.
bool SharedMemory::Attach(int fd)
{
    m_id = xcb_generate_id(m_connection.Get());
    const auto cookie = xcb_shm_attach_fd_checked(m_connection.Get(), m_id, fd, 0);
    const auto error =
        m_connection.Wait([&] { return TakeReply(xcb_request_check(m_connection.Get(), cookie)); });
    return !error && !m_connection.IsLost();
}

void SharedMemory::AwaitServer()
{
    if (!m_reading) return;
    m_connection.Wait(
        [&] { return TakeReply(xcb_get_input_focus_reply(m_connection.Get(), *m_reading, nullptr)); });
    m_reading.reset();
}

SharedMemory::~SharedMemory()
{
    if (!m_pixels) return;
    xcb_shm_detach(m_connection.Get(), m_id);
    munmap(m_pixels, m_nSize);
}

namespace {

// The most pixels of one piece: of a strip that is shared, and of a part that is sent, in a request of the 16
// KiB that every server takes.
constexpr std::size_t kSharedPixels = std::size_t{1} << 20;
constexpr std::size_t kSentPixels = 4'000;
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

RECT CutToSeen(const Window& window, const RECT& rect)
{
    const sync::MutexLock lock(screen::pixelLock);
    if (!window.visible || !window.appeared || !window.backing) return {};
    return gdi::Cut(rect, {0, 0, window.backing->surface.Width(), window.backing->surface.Height()});
}

std::size_t SquareOf(int nScale) noexcept
{
    return static_cast<std::size_t>(nScale) * static_cast<std::size_t>(nScale);
}

} // namespace

PixelPort::PixelPort(const Connection& connection)
    : m_connection(connection),
      m_gc(xcb_generate_id(connection.Get())),
      m_bShares(SharedMemory::IsOffered(connection))
{
    xcb_create_gc(m_connection.Get(), m_gc, m_connection.Root(), 0, nullptr);
}

PixelPort::Memory PixelPort::TakeMemory(std::size_t nPixels)
{
    Memory one;
    if (!m_bShares) return one;
    if (!m_memory.empty()) one.splice(one.begin(), m_memory, m_memory.begin());
    const std::size_t nSize = std::bit_ceil(nPixels) * sizeof(std::uint32_t);
    if (!one.empty()) one.front().AwaitServer();
    if (!one.empty() && one.front().Size() < nSize) one.clear();
    if (one.empty()) one.emplace_back(m_connection, nSize);
    if (one.front().Pixels()) return one;
    m_bShares = false;
    return {};
}

bool PixelPort::Fade(const Window& window, BYTE opacity)
{
    const HWND hWnd = window.Handle();
    if (!m_fades.contains(hWnd) && !window.visible && opacity < 255) {
        const RECT rect = window.Rect();
        auto below = gdi::Surface::Make(rect.right - rect.left, rect.bottom - rect.top);
        if (below && Get(rect, *below)) m_fades.emplace(hWnd, Faded{std::move(*below), opacity});
    }
    const auto it = m_fades.find(hWnd);
    if (it != m_fades.end()) it->second.opacity = opacity;
    return it != m_fades.end();
}

// A part that the window has lost meanwhile isn't written. A visual with an alpha channel shows what is
// opaque in it.
bool PixelPort::CopyOut(const Window& window, const RECT& rect, int nScale, std::uint32_t* to) const
{
    const auto fade = m_fades.find(window.Handle());
    const Faded* const faded = fade == m_fades.end() ? nullptr : &fade->second;
    const sync::MutexLock lock(screen::pixelLock);
    if (!window.backing) return false;
    gdi::Surface& pixels = window.backing->surface;
    if (rect.right > pixels.Width() || rect.bottom > pixels.Height()) return false;
    const std::size_t nRow = WidthOf(rect) * static_cast<std::size_t>(nScale);
    for (int y = rect.top; y < rect.bottom; ++y) {
        const std::uint32_t* const from = pixels.Row(y);
        std::uint32_t* at = to;
        for (int x = rect.left; x < rect.right; ++x, at += nScale) {
            const bool bBlends = faded && x < faded->below.Width() && y < faded->below.Height();
            const std::uint32_t color =
                bBlends ? gdi::Mixed(from[x], faded->below.Row(y)[x], faded->opacity) : from[x];
            std::fill_n(at, nScale, color | ~gdi::COLOR_BITS);
        }
        for (int n = 1; n < nScale; ++n)
            std::copy_n(to, nRow, to + nRow * static_cast<std::size_t>(n));
        to += nRow * static_cast<std::size_t>(nScale);
    }
    return true;
}

void PixelPort::Put(xcb_window_t id, const Window& window, const RECT& rect)
{
    const int nScale = m_connection.GetView().scale;
    const LONG nMost = kMostSide / nScale;
    const RECT part = gdi::Cut(CutToSeen(window, rect), {0, 0, nMost, nMost});
    if (gdi::IsEmpty(part)) return;
    InStrips(part, kSharedPixels / SquareOf(nScale), [&](const RECT& strip) {
        return (Share(id, window, strip, nScale) || Send(id, window, strip, nScale)) &&
               !m_connection.IsLost();
    });
}

// Nothing is waited for between the copy and its sending, so that of two threads the newer pixels stay.
bool PixelPort::Share(xcb_window_t id, const Window& window, const RECT& strip, int nScale)
{
    Memory shared = TakeMemory(WidthOf(strip) * HeightOf(strip) * SquareOf(nScale));
    if (shared.empty()) return false;
    const bool bThere = CopyOut(window, strip, nScale, shared.front().Pixels());
    const RECT place = Enlarged(strip, nScale);
    const auto nWidth = static_cast<std::uint16_t>(WidthOf(place));
    const auto nHeight = static_cast<std::uint16_t>(HeightOf(place));
    if (bThere) {
        xcb_shm_put_image(m_connection.Get(), id, m_gc, nWidth, nHeight, 0, 0, nWidth, nHeight,
                          static_cast<std::int16_t>(place.left), static_cast<std::int16_t>(place.top),
                          m_connection.Screen().root_depth, XCB_IMAGE_FORMAT_Z_PIXMAP, 0, shared.front().Id(),
                          0);
        shared.front().SetReading();
    }
    m_memory.splice(m_memory.end(), shared);
    return bThere;
}

bool PixelPort::Send(xcb_window_t id, const Window& window, const RECT& strip, int nScale)
{
    return InPieces(strip, kSentPixels / SquareOf(nScale), [&](const RECT& piece) {
        m_rows.resize(WidthOf(piece) * HeightOf(piece) * SquareOf(nScale));
        if (!CopyOut(window, piece, nScale, m_rows.data())) return false;
        const RECT place = Enlarged(piece, nScale);
        xcb_put_image(m_connection.Get(), XCB_IMAGE_FORMAT_Z_PIXMAP, id, m_gc,
                      static_cast<std::uint16_t>(WidthOf(place)), static_cast<std::uint16_t>(HeightOf(place)),
                      static_cast<std::int16_t>(place.left), static_cast<std::int16_t>(place.top), 0,
                      m_connection.Screen().root_depth,
                      static_cast<std::uint32_t>(m_rows.size() * sizeof(std::uint32_t)),
                      reinterpret_cast<const std::uint8_t*>(m_rows.data()));
        return true;
    });
}

bool PixelPort::Get(const RECT& rect, gdi::Surface& pixels)
{
    if (!m_connection.HasOurPixels()) return false;
    const View view = m_connection.GetView();
    // A server refuses to read what lies beyond its screen, if only by a part of a pixel of ours.
    const RECT screen{-view.origin.x / view.scale, -view.origin.y / view.scale, view.whole.cx, view.whole.cy};
    const RECT part = gdi::Cut(rect, screen);
    if (gdi::IsEmpty(part)) return true;
    return InStrips(part, kSharedPixels / SquareOf(view.scale), [&](const RECT& strip) {
        return GetStrip(strip, view, pixels, {rect.left, rect.top});
    });
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
    if (Memory shared = TakeMemory(nPixels); !shared.empty()) {
        const auto cookie = xcb_shm_get_image(connection, m_connection.Root(), x, y, nWidth, nHeight,
                                              allPlanes, XCB_IMAGE_FORMAT_Z_PIXMAP, shared.front().Id(), 0);
        const auto image = m_connection.Wait(
            [&] { return TakeReply(xcb_shm_get_image_reply(connection, cookie, nullptr)); });
        if (image) CopyIn(shared.front().Pixels(), strip, view.scale, pixels, at);
        m_memory.splice(m_memory.end(), shared);
        return image != nullptr;
    }
    const auto cookie = xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_connection.Root(), x, y,
                                      nWidth, nHeight, allPlanes);
    const auto image =
        m_connection.Wait([&] { return TakeReply(xcb_get_image_reply(connection, cookie, nullptr)); });
    if (!image || static_cast<std::size_t>(xcb_get_image_data_length(image.get())) < nPixels * 4)
        return false;
    CopyIn(reinterpret_cast<const std::uint32_t*>(xcb_get_image_data(image.get())), strip, view.scale, pixels,
           at);
    return true;
}

} // namespace kx::window::x11
