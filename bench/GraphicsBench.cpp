#include "bench/CairoPaper.h"
#include "bench/Loop.h"
#include "bench/Surfaces.h"

#include <array>
#include <gdk-pixbuf/gdk-pixbuf.h>
#include <memory>
#include <platform/GdiPlus.h>
#include <random>

// Pictures drawn smaller or larger, and gradients. Ours go through the classes, with all that they make and
// end on the way; the peers' pictures and targets are made beforehand.

using namespace bench;

namespace {

constexpr Size photo{1024, 768};
constexpr Size screen{1920, 1080};

const std::uintptr_t token = [] {
    std::uintptr_t nToken = 0;
    const Gdiplus::GdiplusStartupInput input;
    Gdiplus::GdiplusStartup(&nToken, &input, nullptr);
    return nToken;
}();

// ---- Pictures

// The same noise for both sides; with alpha some of it half transparent.
Pixels MakePhoto(bool bAlpha)
{
    std::minstd_rand random(1);
    Pixels pixels(photo.Count());
    for (DWORD& pixel : pixels) {
        pixel = 0xFF000000 | static_cast<DWORD>(random());
        if (bAlpha && random() % 4 == 0) pixel &= 0x80FFFFFF;
    }
    return pixels;
}

class OurPhoto
{
public:
    explicit OurPhoto(bool bAlpha)
        : m_pixels(MakePhoto(bAlpha)),
          m_bitmap(photo.cx, photo.cy, photo.cx * 4,
                   bAlpha ? Gdiplus::PixelFormat32bppARGB : Gdiplus::PixelFormat32bppRGB,
                   reinterpret_cast<BYTE*>(m_pixels.data()))
    {
    }
    Gdiplus::Bitmap* operator->() { return &m_bitmap; }
    operator Gdiplus::Image*() { return &m_bitmap; }

private:
    Pixels m_pixels;
    Gdiplus::Bitmap m_bitmap;
};

struct Unref
{
    void operator()(GdkPixbuf* p) const { g_object_unref(p); }
    void operator()(cairo_pattern_t* p) const { cairo_pattern_destroy(p); }
};
using Pixbuf = std::unique_ptr<GdkPixbuf, Unref>;

Pixbuf MakePixbuf(Size size, bool bAlpha)
{
    return Pixbuf(gdk_pixbuf_new(GDK_COLORSPACE_RGB, bAlpha, 8, size.cx, size.cy));
}

Pixbuf MakePixbufPhoto(bool bAlpha)
{
    const Pixels pixels = MakePhoto(bAlpha);
    Pixbuf pixbuf = MakePixbuf(photo, bAlpha);
    const int nBytes = bAlpha ? 4 : 3;
    for (int y = 0; y < photo.cy; ++y) {
        guchar* out = gdk_pixbuf_get_pixels(pixbuf.get()) + y * gdk_pixbuf_get_rowstride(pixbuf.get());
        for (int x = 0; x < photo.cx; ++x, out += nBytes) {
            const DWORD pixel = pixels[static_cast<std::size_t>(y * photo.cx + x)];
            const std::array channels{pixel >> 16, pixel >> 8, pixel, pixel >> 24};
            for (int n = 0; n < nBytes; ++n)
                out[n] = static_cast<guchar>(channels[static_cast<std::size_t>(n)]);
        }
    }
    return pixbuf;
}

// With alpha blended over what is there, as ours does.
void DrawScaled(const GdkPixbuf* from, GdkPixbuf* to, bool bAlpha)
{
    const Size size{gdk_pixbuf_get_width(to), gdk_pixbuf_get_height(to)};
    const double across = static_cast<double>(size.cx) / photo.cx;
    const double down = static_cast<double>(size.cy) / photo.cy;
    if (bAlpha)
        gdk_pixbuf_composite(from, to, 0, 0, size.cx, size.cy, 0, 0, across, down, GDK_INTERP_BILINEAR, 255);
    else
        gdk_pixbuf_scale(from, to, 0, 0, size.cx, size.cy, 0, 0, across, down, GDK_INTERP_BILINEAR);
}

// Whether a surface shows what the peer makes of the picture, whose weights are sixteenths.
bool ShowsScaled(HDC hDC, Size size, bool bAlpha)
{
    constexpr int nOff = 32;
    const Pixbuf from = MakePixbufPhoto(bAlpha);
    const Pixbuf to = MakePixbuf(size, false);
    gdk_pixbuf_fill(to.get(), 0);
    DrawScaled(from.get(), to.get(), bAlpha);
    Pixels pixels;
    for (int y = 0; y < size.cy; ++y) {
        const guchar* in = gdk_pixbuf_get_pixels(to.get()) + y * gdk_pixbuf_get_rowstride(to.get());
        for (int x = 0; x < size.cx; ++x, in += 3)
            pixels.push_back(DWORD{in[0]} << 16 | DWORD{in[1]} << 8 | in[2]);
    }
    return Shows(hDC, size, pixels.data(), nOff);
}

void DrawScaledOurs(benchmark::State& state, Size size, bool bAlpha)
{
    OurPhoto from(bAlpha);
    const Ours to(size);
    const auto draw = [&] {
        Gdiplus::Graphics graphics(static_cast<HDC>(to));
        graphics.DrawImage(from, 0, 0, size.cx, size.cy);
    };
    draw();
    if (!ShowsScaled(to, size, bAlpha)) state.SkipWithError("another picture than the peer's");
    for (auto _ : bench::Loop(state))
        draw();
}

void DrawScaledPixbuf(benchmark::State& state, Size size, bool bAlpha)
{
    const Pixbuf from = MakePixbufPhoto(bAlpha);
    const Pixbuf to = MakePixbuf(size, false);
    gdk_pixbuf_fill(to.get(), 0);
    for (auto _ : bench::Loop(state))
        DrawScaled(from.get(), to.get(), bAlpha);
}

void ThumbnailOurs(benchmark::State& state, Size size)
{
    OurPhoto from(false);
    const Ours paper(size);
    {
        const std::unique_ptr<Gdiplus::Image> thumbnail(
            from->GetThumbnailImage(static_cast<UINT>(size.cx), static_cast<UINT>(size.cy)));
        Gdiplus::Graphics(static_cast<HDC>(paper)).DrawImage(thumbnail.get(), 0, 0);
    }
    if (!ShowsScaled(paper, size, false)) state.SkipWithError("another picture than the peer's");
    for (auto _ : bench::Loop(state))
        benchmark::DoNotOptimize(std::unique_ptr<Gdiplus::Image>(
            from->GetThumbnailImage(static_cast<UINT>(size.cx), static_cast<UINT>(size.cy))));
}

// ---- Gradients over a full screen

enum class Way
{
    Down,
    Across
};

constexpr std::array<int, 2> EndOf(Way way)
{
    return way == Way::Down ? std::array<int, 2>{0, screen.cy} : std::array<int, 2>{screen.cx, 0};
}

// A pattern painted over a picture of the screen's size, and freed.
void Paint(cairo_t* to, cairo_pattern_t* made)
{
    const std::unique_ptr<cairo_pattern_t, Unref> pattern(made);
    cairo_set_source(to, pattern.get());
    cairo_paint(to);
}

cairo_pattern_t* WithStops(cairo_pattern_t* pattern)
{
    cairo_pattern_add_color_stop_rgb(pattern, 0, 1, 0.5, 0);
    cairo_pattern_add_color_stop_rgb(pattern, 1, 0, 0.25, 1);
    return pattern;
}

cairo_pattern_t* MakeLine(Way way)
{
    const auto [x, y] = EndOf(way);
    return WithStops(cairo_pattern_create_linear(0, 0, x, y));
}

cairo_pattern_t* MakeRadial()
{
    return WithStops(cairo_pattern_create_radial(screen.cx / 2, screen.cy / 2, 0, screen.cx / 2,
                                                 screen.cy / 2, screen.cx / 2));
}

// The same four triangles.
cairo_pattern_t* MakeMesh()
{
    cairo_pattern_t* mesh = cairo_pattern_create_mesh();
    const std::array<std::array<int, 2>, 5> corners{
        {{0, 0}, {screen.cx, 0}, {screen.cx, screen.cy}, {0, screen.cy}, {0, 0}}};
    for (std::size_t n = 0; n < 4; ++n) {
        cairo_mesh_pattern_begin_patch(mesh);
        cairo_mesh_pattern_move_to(mesh, screen.cx / 2, screen.cy / 2);
        cairo_mesh_pattern_line_to(mesh, corners[n][0], corners[n][1]);
        cairo_mesh_pattern_line_to(mesh, corners[n + 1][0], corners[n + 1][1]);
        cairo_mesh_pattern_set_corner_color_rgb(mesh, 0, 1, 0.5, 0);
        for (const unsigned nCorner : {1U, 2U})
            cairo_mesh_pattern_set_corner_color_rgb(mesh, nCorner, 0, 0.25, 1);
        cairo_mesh_pattern_end_patch(mesh);
    }
    return mesh;
}

// A peer's pattern, made and painted each time.
template <class Make>
void PaintCairo(benchmark::State& state, Make make)
{
    const CairoPaper to(screen);
    for (auto _ : bench::Loop(state))
        Paint(to, make());
}

// One of ours, each time with all that it needs, where the peer's is the same but for rounding.
template <class Fill>
void PaintOurs(benchmark::State& state, cairo_pattern_t* peer, Fill fill)
{
    constexpr int nRounding = 3;
    const CairoPaper wanted(screen);
    Paint(wanted, peer);
    const Ours to(screen);
    const auto paint = [&] {
        Gdiplus::Graphics graphics(static_cast<HDC>(to));
        fill(graphics);
    };
    paint();
    if (!Shows(to, screen, wanted.Pixels(), nRounding))
        state.SkipWithError("another picture than the peer's");
    for (auto _ : bench::Loop(state))
        paint();
}

void LineOurs(benchmark::State& state, Way way)
{
    const auto [x, y] = EndOf(way);
    PaintOurs(state, MakeLine(way), [x = x, y = y](Gdiplus::Graphics& graphics) {
        const Gdiplus::LinearGradientBrush brush({0, 0}, {x, y}, Gdiplus::Color(255, 128, 0),
                                                 Gdiplus::Color(0, 64, 255));
        graphics.FillRectangle(&brush, 0, 0, screen.cx, screen.cy);
    });
}

void PathOurs(benchmark::State& state)
{
    PaintOurs(state, MakeMesh(), [](Gdiplus::Graphics& graphics) {
        Gdiplus::GraphicsPath path;
        path.AddRectangle(0, 0, screen.cx, screen.cy);
        Gdiplus::PathGradientBrush brush(&path);
        brush.SetCenterColor(Gdiplus::Color(255, 128, 0));
        const Gdiplus::Color surround(0, 64, 255);
        int nCount = 1;
        brush.SetSurroundColors(&surround, &nCount);
        graphics.FillRectangle(&brush, 0, 0, screen.cx, screen.cy);
    });
}

void LineCairo(benchmark::State& state, Way way)
{
    PaintCairo(state, [way] { return MakeLine(way); });
}

void RadialCairo(benchmark::State& state)
{
    PaintCairo(state, MakeRadial);
}

void MeshCairo(benchmark::State& state)
{
    PaintCairo(state, MakeMesh);
}

const int registered = [] {
    constexpr Size block{400, 300};
    constexpr Size large{1600, 1200};
    constexpr Size thumbnail{160, 120};
    Register("draw_scaled/ours", DrawScaledOurs, block, false);
    Register("draw_scaled/pixbuf", DrawScaledPixbuf, block, false);
    Register("draw_scaled_alpha/ours", DrawScaledOurs, block, true);
    Register("draw_scaled_alpha/pixbuf", DrawScaledPixbuf, block, true);
    Register("draw_enlarged/ours", DrawScaledOurs, large, false);
    Register("draw_enlarged/pixbuf", DrawScaledPixbuf, large, false);
    Register("thumbnail/ours", ThumbnailOurs, thumbnail);
    Register("thumbnail/pixbuf", DrawScaledPixbuf, thumbnail, false);
    for (const auto& [name, way] : {std::pair{"line_down", Way::Down}, {"line_across", Way::Across}}) {
        Register(std::string(name) + "/ours", LineOurs, way);
        Register(std::string(name) + "/cairo", LineCairo, way);
    }
    Register("path_gradient/ours", PathOurs);
    Register("path_gradient/cairo_radial", RadialCairo);
    Register("path_gradient/cairo_mesh", MeshCairo);
    return 0;
}();

} // namespace
