#include "bench/WindowArt.h"

#include <SDL2/SDL.h>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <unistd.h>

// A client that shows the picture of our skinned window: `kx_bench_sdl2 window DIRECTORY`. It holds the
// window as ours does.

namespace {

struct Free
{
    void operator()(SDL_Surface* p) const { SDL_FreeSurface(p); }
    void operator()(SDL_Window* p) const { SDL_DestroyWindow(p); }
};
using Surface = std::unique_ptr<SDL_Surface, Free>;

struct Video
{
    ~Video() { SDL_Quit(); }
    const bool bStarted = SDL_Init(SDL_INIT_VIDEO) == 0;
};

// False if a picture is missing.
bool Load(const std::string& directory, std::array<Surface, bench::arts.size()>& surfaces)
{
    for (std::size_t n = 0; n < surfaces.size(); ++n) {
        surfaces[n].reset(SDL_LoadBMP((directory + "/" + bench::FileOf(n)).c_str()));
        if (!surfaces[n]) return false;
        if (bench::arts[n].bKeyed)
            SDL_SetColorKey(surfaces[n].get(), SDL_TRUE, SDL_MapRGB(surfaces[n]->format, 255, 0, 255));
    }
    return true;
}

void Draw(SDL_Surface* from, const bench::Step& step, SDL_Surface* to)
{
    for (int y = 0; y < step.cy; y += from->h)
        for (int x = 0; x < step.cx; x += from->w) {
            const SDL_Rect part{0, 0, std::min(from->w, step.cx - x), std::min(from->h, step.cy - y)};
            SDL_Rect place{step.x + x, step.y + y, 0, 0};
            SDL_BlitSurface(from, &part, to, &place);
        }
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 3) return 2;
    // Without this it asks OpenGL first, which takes more than all the rest.
    SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
    const Video video;
    if (!video.bStarted) return 1;
    std::array<Surface, bench::arts.size()> surfaces;
    const std::unique_ptr<SDL_Window, Free> window(
        SDL_CreateWindow("", 0, 0, bench::cxWindow, bench::cyWindow, SDL_WINDOW_BORDERLESS));
    SDL_Surface* const to = window ? SDL_GetWindowSurface(window.get()) : nullptr;
    if (!to || !Load(argv[2], surfaces)) return 1;
    for (const bench::Step& step : bench::Steps())
        Draw(surfaces[step.nArt].get(), step, to);
    for (const bench::Stripe& stripe : bench::Stripes()) {
        const SDL_Rect place{stripe.x, stripe.y, stripe.cx, stripe.cy};
        SDL_FillRect(to, &place, stripe.color);
    }
    SDL_UpdateWindowSurface(window.get()); // waits for the server
    std::puts("shown");
    std::fflush(stdout);
    char ch;
    while (read(STDIN_FILENO, &ch, 1) > 0) {
    }
    return 0;
}
