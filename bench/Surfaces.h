#pragma once

#include <SDL2/SDL.h>
#include <benchmark/benchmark.h>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <platform/Gdi.h>
#include <string>
#include <thread>
#include <vector>

// Pictures of 32 bits a pixel, on our surfaces and on the peers'.
namespace bench {

struct Size
{
    int cx;
    int cy;
    std::size_t Count() const { return static_cast<std::size_t>(cx) * static_cast<std::size_t>(cy); }
};

// Rows begin where the library's own do: what a copy costs depends on it.
template <class T>
struct Aligned
{
    using value_type = T;
    static constexpr std::align_val_t alignment{64};

    Aligned() = default;
    template <class U>
    explicit Aligned(const Aligned<U>&)
    {
    }
    T* allocate(std::size_t n) { return static_cast<T*>(operator new(n * sizeof(T), alignment)); }
    void deallocate(T* p, std::size_t) { operator delete(p, alignment); }
    bool operator==(const Aligned&) const = default;
};
using Pixels = std::vector<DWORD, Aligned<DWORD>>;

// A memory surface with a bitmap in it.
class Ours
{
public:
    explicit Ours(Size size) : m_hBitmap(CreateCompatibleBitmap(m_hDC, size.cx, size.cy))
    {
        SelectObject(m_hDC, m_hBitmap);
    }
    Ours(Size size, const Pixels& pixels) : Ours(size)
    {
        for (int y = 0; y < size.cy; ++y)
            for (int x = 0; x < size.cx; ++x) {
                const DWORD pixel = pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(size.cx) +
                                           static_cast<std::size_t>(x)];
                SetPixel(m_hDC, x, y, RGB(pixel >> 16, pixel >> 8, pixel));
            }
    }
    Ours(const Ours&) = delete;
    Ours& operator=(const Ours&) = delete;
    ~Ours()
    {
        DeleteDC(m_hDC);
        DeleteObject(m_hBitmap);
    }
    operator HDC() const { return m_hDC; }

private:
    HDC m_hDC = CreateCompatibleDC(nullptr);
    HBITMAP m_hBitmap;
};

struct FreeSurface
{
    void operator()(SDL_Surface* p) const { SDL_FreeSurface(p); }
};
using SdlSurface = std::unique_ptr<SDL_Surface, FreeSurface>;

inline SdlSurface MakeSdl(Size size, Pixels& pixels)
{
    return SdlSurface(SDL_CreateRGBSurfaceWithFormatFrom(pixels.data(), size.cx, size.cy, 32, size.cx * 4,
                                                         SDL_PIXELFORMAT_RGB888));
}

// Whether a surface shows these pixels, each channel at most so far off. Only some are looked at, as each is
// a call.
inline bool Shows(HDC hDC, Size size, const DWORD* pixels, int nOff = 0)
{
    for (int y = 0; y < size.cy; y += 3)
        for (int x = y / 3 % 3; x < size.cx; x += 3) {
            const DWORD wanted = pixels[static_cast<std::ptrdiff_t>(y) * size.cx + x];
            const COLORREF seen = GetPixel(hDC, x, y);
            for (const int nByte : {0, 8, 16}) {
                const int nOne = static_cast<int>(wanted >> (16 - nByte) & 0xFF);
                const int nOther = static_cast<int>(seen >> nByte & 0xFF);
                if (std::abs(nOne - nOther) > nOff) return false;
            }
        }
    return true;
}

// From here on the process counts as one with threads, in which what is shared is counted by atomic steps.
inline void HaveHadThreads()
{
    std::thread([] {}).join();
}

template <class Run, class... Args>
void Register(const std::string& name, Run run, Args... args)
{
    benchmark::RegisterBenchmark(name.c_str(), run, args...)->UseRealTime();
}

} // namespace bench
