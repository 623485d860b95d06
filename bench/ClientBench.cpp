#include "bench/BenchDir.h"
#include "bench/HttpServer.h"
#include "bench/Measure.h"
#include "bench/WindowArt.h"
#include "tests/support/XServer.h"

#include <SDL2/SDL.h>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <png.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

// Clients from their start to their end: one of this library for the first use of each family, against one
// that does nothing or the same by a peer. They are programs of their own (bench/children), so that each maps
// the libraries of its side alone. Their processor time is measured, and all their memory.

namespace {

std::string Program(const std::string& name)
{
    return std::filesystem::read_symlink("/proc/self/exe").parent_path() / ("kx_bench_" + name);
}

// ---- What the clients work on

void WriteArt()
{
    for (std::size_t n = 0; n < bench::arts.size(); ++n) {
        const bench::Art& art = bench::arts[n];
        SDL_Surface* surface = SDL_CreateRGBSurfaceWithFormat(0, art.cx, art.cy, 32, SDL_PIXELFORMAT_RGB888);
        for (int y = 0; y < art.cy; ++y)
            for (int x = 0; x < art.cx; ++x) {
                const std::uint32_t pixel = bench::PixelOf(art, x, y);
                std::memcpy(static_cast<char*>(surface->pixels) + y * surface->pitch + x * 4, &pixel, 4);
            }
        SDL_SaveBMP(surface, bench::Dir().Path(bench::FileOf(n)).c_str());
        SDL_FreeSurface(surface);
    }
}

void WritePng()
{
    constexpr unsigned nSide = 48;
    std::vector<unsigned char> pixels;
    for (unsigned n = 0; n < nSide * nSide * 3; ++n)
        pixels.push_back(static_cast<unsigned char>(n * 7 % 251));
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = image.height = nSide;
    image.format = PNG_FORMAT_RGB;
    png_image_write_to_file(&image, bench::Dir().Path("picture.png").c_str(), 0, pixels.data(), 0, nullptr);
}

void WriteTexts()
{
    std::string texts, words;
    for (int n = 0; n < 2000; ++n)
        texts += "IDS_" + std::to_string(n) + " = The text of entry number " + std::to_string(n) + "\r\n";
    for (int n = 0; n < 10; ++n)
        words += "<word>harbour</word>\n";
    bench::Dir().Write("lans/L/Lan.ini", "[Language]\r\nLanguage=L\r\n");
    bench::Dir().Write("lans/L/Data.txt", texts);
    bench::Dir().Write("values.ini", "[Window]\r\nTop=5\r\nLeft=17\r\n");
    bench::Dir().Write("words.xml", "<words>\n" + words + "</words>\n");
}

void Serve(httplib::Server& http)
{
    http.Get("/file",
             [](const auto&, auto& response) { response.set_content(std::string(2048, 'p'), "a/b"); });
}

// Nothing of the user's is used or changed, and there is neither a display nor a service manager.
struct Setting
{
    Setting()
    {
        const std::string dir = bench::Dir().Path("");
        WriteArt();
        WritePng();
        WriteTexts();
        unsetenv("DISPLAY");
        for (const char* name : {"XDG_CONFIG_HOME", "XDG_RUNTIME_DIR", "HOME"})
            setenv(name, dir.c_str(), 1);
        for (const char* name : {"DBUS_SYSTEM_BUS_ADDRESS", "DBUS_SESSION_BUS_ADDRESS"})
            setenv(name, ("unix:path=" + dir + "none").c_str(), 1);
    }
    bench::HttpServer server{Serve};
};

// ---- Runs

std::string CommandOf(const std::string& client, const std::string& word)
{
    static const Setting setting;
    return Program(client) + " " + word + " " + bench::Dir().Path("") + " " + setting.server.Url("/file");
}

struct Used
{
    double seconds;
    double bytes;
};

// Nothing if the program ends with something else than 0.
std::optional<Used> Run(const std::string& command)
{
    FILE* const told = popen((Program("run") + " " + command).c_str(), "r");
    double microseconds = 0, kilobytes = 0;
    const bool bRead = told && std::fscanf(told, "%lf %lf", &microseconds, &kilobytes) == 2;
    if (!told || pclose(told) != 0 || !bRead) return std::nullopt;
    return Used{microseconds / 1e6, kilobytes * 1024};
}

void RunClient(benchmark::State& state, const std::string& client, const std::string& word)
{
    const std::string command = CommandOf(client, word);
    if (!Run(command)) return state.SkipWithError("the client fails"); // the files are in memory from here on
    for (auto _ : state) {
        const auto used = Run(command);
        if (!used) return state.SkipWithError("the client fails");
        state.SetIterationTime(used->seconds);
        state.counters[bench::pszPeak] = used->bytes;
    }
}

// ---- A window on an X server of its own, whose screen lies in a file

class Screen
{
public:
    Screen() { setenv("DISPLAY", m_server.Name().c_str(), 1); }
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;
    ~Screen() { unsetenv("DISPLAY"); }

    // Whether both clients show the same picture, which isn't of one colour.
    bool ShowsSame() const
    {
        const std::string peer =
            See("sdl2", [](const std::string&) { return true; }); // it waits for the server
        return peer.find_first_not_of(peer.substr(0, 3)) != peer.npos &&
               See("ours", [&](const std::string& seen) { return seen == peer; }) == peer;
    }

private:
    // The pixels in the window's place while a client shows it: those awaited, or after ten seconds those
    // that are there.
    template <class IsAwaited>
    static std::string See(const std::string& client, IsAwaited isAwaited)
    {
        const std::string told = bench::Dir().Write("shown", "");
        FILE* const held = popen((CommandOf(client, "window") + " >" + told).c_str(), "w");
        std::string seen;
        for (int n = 0; n < 1000; ++n) {
            const bool bShown = std::filesystem::file_size(told) > 0;
            seen = Pixels();
            if (bShown && isAwaited(seen)) break;
            usleep(10'000);
        }
        pclose(held);
        return seen;
    }
    // The file is an X window dump: numbers of 32 bits, highest byte first, then colours, then rows of
    // pixels.
    static std::string Pixels()
    {
        std::ifstream file(bench::Dir().Path("Xvfb_screen0"), std::ios::binary);
        const std::string dump((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
        const auto number = [&](std::size_t n) {
            std::size_t value = 0;
            for (std::size_t i = 4 * n; i < 4 * n + 4; ++i)
                value = value << 8 | static_cast<unsigned char>(dump.at(i));
            return value;
        };
        const std::size_t begin = number(0) + number(19) * 12, cbRow = number(12);
        std::string pixels;
        for (std::size_t y = 0; y < bench::cyWindow; ++y)
            for (std::size_t x = 0; x < bench::cxWindow; ++x)
                pixels += dump.substr(begin + y * cbRow + x * 4, 3);
        return pixels;
    }

    test::XServer m_server{"1024x768x24", {"-nocursor", "-fbdir", bench::Dir().Path("")}};
};

void RunWindow(benchmark::State& state, const std::string& client)
{
    CommandOf(client, "window");
    static const Screen screen;
    static const bool bSame = screen.ShowsSame();
    if (!bSame) return state.SkipWithError("another window than the peer's");
    RunClient(state, client, "window");
}

const int registered = [] {
    const auto add = [](const std::string& name, auto run, auto... args) {
        benchmark::RegisterBenchmark(name.c_str(), run, args...)->UseManualTime()->Iterations(3);
    };
    for (const std::string word :
         {"log", "ini", "language", "bitmap", "text", "png", "xml", "http", "service", "shell"}) {
        add("client_" + word + "/ours", RunClient, "ours", word);
        add("client_" + word + "/nothing", RunClient, "ours", "nothing");
    }
    add("client_log/spdlog", RunClient, "spdlog", "log");
    add("client_log/spdlog_basic", RunClient, "spdlog", "basic");
    add("client_window/ours", RunWindow, "ours");
    add("client_window/sdl2", RunWindow, "sdl2");
    add("client_window/nothing", RunClient, "ours", "nothing");
    return 0;
}();

} // namespace
