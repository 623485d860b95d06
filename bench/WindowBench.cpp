#include "bench/Loop.h"
#include "bench/SkinnedWnd.h"
#include "bench/Surfaces.h"

#include <cairo/cairo.h>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <platform/Host.h>
#include <platform/Sync.h>
#include <platform/Window.h>
#include <sched.h>
#include <semaphore>
#include <thread>

// Messages to windows, and a whole window painted anew.

using namespace bench;

namespace {

LRESULT Answer(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam)
{
    return nMsg == WM_USER ? static_cast<LRESULT>(wParam) + 1 : DefWindowProcA(hWnd, nMsg, wParam, lParam);
}

HWND MakeWindow()
{
    static const WNDCLASSA cls{Answer, "Bench"};
    [[maybe_unused]] static const WORD atom = RegisterClassA(&cls);
    return CreateWindowExA(0, "Bench", "", WS_POPUP, 0, 0, 1, 1);
}

void SendOwn(benchmark::State& state)
{
    const HWND hWnd = MakeWindow();
    if (SendMessageA(hWnd, WM_USER, 1, 0) != 2) state.SkipWithError("no answer");
    for (auto _ : bench::Loop(state))
        benchmark::DoNotOptimize(SendMessageA(hWnd, WM_USER, 1, 0));
    DestroyWindow(hWnd);
}

void CallFunction(benchmark::State& state)
{
    std::function<LRESULT(HWND, UINT, WPARAM, LPARAM)> call = Answer;
    benchmark::DoNotOptimize(call);
    for (auto _ : bench::Loop(state))
        benchmark::DoNotOptimize(call(nullptr, WM_USER, 1, 0));
}

// Keeps this thread, and those that it starts, on one core: on two, the scheduler wakes a thread now here and
// now there, which takes 3 or 40 microseconds for either side.
class OneCore
{
public:
    OneCore()
    {
        sched_getaffinity(0, sizeof m_before, &m_before);
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(static_cast<std::size_t>(sched_getcpu()), &one);
        sched_setaffinity(0, sizeof one, &one);
    }
    OneCore(const OneCore&) = delete;
    OneCore& operator=(const OneCore&) = delete;
    ~OneCore() { sched_setaffinity(0, sizeof m_before, &m_before); }

private:
    cpu_set_t m_before{};
};

// To a thread that waits for messages, and back.
void SendAcross(benchmark::State& state)
{
    const OneCore core;
    std::binary_semaphore ready{0};
    HWND hWnd = nullptr;
    std::thread receiver([&] {
        hWnd = MakeWindow();
        ready.release();
        MSG msg;
        while (GetMessageA(&msg, nullptr, 0, 0) > 0)
            DispatchMessageA(&msg);
    });
    ready.acquire();
    if (SendMessageA(hWnd, WM_USER, 1, 0) != 2) state.SkipWithError("no answer");
    for (auto _ : bench::Loop(state))
        benchmark::DoNotOptimize(SendMessageA(hWnd, WM_USER, 1, 0));
    PostMessage(hWnd, WM_QUIT, 0, 0);
    receiver.join();
}

void PingPong(benchmark::State& state)
{
    const OneCore core;
    std::mutex lock;
    std::condition_variable changed;
    int turn = 0; // 1: the other's, 2: the end
    std::thread receiver([&] {
        for (std::unique_lock guard(lock);;) {
            changed.wait(guard, [&] { return turn != 0; });
            if (turn == 2) return;
            turn = 0;
            changed.notify_one();
        }
    });
    for (auto _ : bench::Loop(state)) {
        std::unique_lock guard(lock);
        turn = 1;
        changed.notify_one();
        changed.wait(guard, [&] { return turn == 0; });
    }
    {
        const std::lock_guard guard(lock);
        turn = 2;
    }
    changed.notify_one();
    receiver.join();
}

// ---- The skinned window of WindowArt.h

constexpr Size window{cxWindow, cyWindow};

Pixels PixelsOf(const Art& art)
{
    Pixels pixels;
    for (int y = 0; y < art.cy; ++y)
        for (int x = 0; x < art.cx; ++x)
            pixels.push_back(PixelOf(art, x, y));
    return pixels;
}

class CBenchWnd : public CSkinnedWnd
{
public:
    CBenchWnd()
    {
        for (std::size_t n = 0; n < arts.size(); ++n) {
            const Size size{arts[n].cx, arts[n].cy};
            bitmaps[n].AttachBitmap(CreateCompatibleBitmap(Ours({1, 1}), size.cx, size.cy));
            BitBlt(bitmaps[n].GetHDC(), 0, 0, size.cx, size.cy, Ours(size, PixelsOf(arts[n])), 0, 0, SRCCOPY);
        }
    }
};

// The same into a buffer that is then shown, with the key colour made transparent beforehand.
class CairoWindow
{
public:
    CairoWindow()
    {
        for (const Art& art : arts) {
            cairo_surface_t* surface = cairo_image_surface_create(
                art.bKeyed ? CAIRO_FORMAT_ARGB32 : CAIRO_FORMAT_RGB24, art.cx, art.cy);
            const Pixels pixels = PixelsOf(art);
            for (int y = 0; y < art.cy; ++y) {
                auto* row = reinterpret_cast<DWORD*>(cairo_image_surface_get_data(surface) +
                                                     y * cairo_image_surface_get_stride(surface));
                for (int x = 0; x < art.cx; ++x) {
                    const DWORD pixel = pixels[static_cast<std::size_t>(y * art.cx + x)];
                    row[x] = art.bKeyed && pixel == dwKey ? 0 : 0xFF000000 | pixel;
                }
            }
            cairo_surface_mark_dirty(surface);
            m_patterns.push_back(cairo_pattern_create_for_surface(surface));
            cairo_surface_destroy(surface);
        }
    }
    CairoWindow(const CairoWindow&) = delete;
    CairoWindow& operator=(const CairoWindow&) = delete;
    ~CairoWindow()
    {
        for (cairo_pattern_t* pattern : m_patterns)
            cairo_pattern_destroy(pattern);
        cairo_surface_destroy(m_buffer);
        cairo_surface_destroy(m_shown);
    }

    void Paint()
    {
        cairo_t* cairo = cairo_create(m_buffer);
        for (const Step& step : m_steps)
            Draw(cairo, step);
        for (const Stripe& stripe : m_stripes) {
            cairo_set_source_rgb(cairo, (stripe.color >> 16) / 255., (stripe.color >> 8 & 0xFF) / 255.,
                                 (stripe.color & 0xFF) / 255.);
            cairo_rectangle(cairo, stripe.x, stripe.y, stripe.cx, stripe.cy);
            cairo_fill(cairo);
        }
        cairo_destroy(cairo);
        cairo_t* shown = cairo_create(m_shown);
        cairo_set_operator(shown, CAIRO_OPERATOR_SOURCE);
        cairo_set_source_surface(shown, m_buffer, 0, 0);
        cairo_paint(shown);
        cairo_destroy(shown);
    }

    const DWORD* Shown() { return reinterpret_cast<DWORD*>(cairo_image_surface_get_data(m_shown)); }

private:
    void Draw(cairo_t* cairo, const Step& step)
    {
        cairo_pattern_t* pattern = m_patterns[step.nArt];
        cairo_matrix_t matrix;
        cairo_matrix_init_translate(&matrix, -step.x, -step.y);
        cairo_pattern_set_matrix(pattern, &matrix);
        cairo_pattern_set_extend(pattern, step.bFill ? CAIRO_EXTEND_REPEAT : CAIRO_EXTEND_NONE);
        cairo_pattern_set_filter(pattern, CAIRO_FILTER_NEAREST);
        cairo_set_source(cairo, pattern);
        cairo_rectangle(cairo, step.x, step.y, step.cx, step.cy);
        cairo_fill(cairo);
    }

    const std::vector<Step> m_steps = Steps();
    const std::vector<Stripe> m_stripes = Stripes();
    std::vector<cairo_pattern_t*> m_patterns;
    cairo_surface_t* m_buffer = cairo_image_surface_create(CAIRO_FORMAT_RGB24, window.cx, window.cy);
    cairo_surface_t* m_shown = cairo_image_surface_create(CAIRO_FORMAT_RGB24, window.cx, window.cy);
};

bool IsSame(CWnd& wnd)
{
    CairoWindow cairo;
    cairo.Paint();
    const CClientDC dc(&wnd);
    return Shows(dc.m_hDC, window, cairo.Shown());
}

void RepaintOurs(benchmark::State& state)
{
    KXHost::UseMemoryDesktop();
    CBenchWnd wnd;
    wnd.Create();
    wnd.ShowWindow(SW_SHOWNA);
    wnd.UpdateWindow();
    if (!IsSame(wnd)) state.SkipWithError("another picture than the peer's");
    for (auto _ : bench::Loop(state)) {
        wnd.Invalidate();
        wnd.UpdateWindow();
    }
}

void RepaintCairo(benchmark::State& state)
{
    CairoWindow cairo;
    for (auto _ : bench::Loop(state))
        cairo.Paint();
}

const int registered = [] {
    Register("send_own/ours", SendOwn);
    Register("send_own/function", CallFunction);
    Register("send_across/ours", SendAcross);
    Register("send_across/condvar", PingPong);
    Register("repaint_800x600/ours", RepaintOurs);
    Register("repaint_800x600/cairo", RepaintCairo);
    return 0;
}();

} // namespace
