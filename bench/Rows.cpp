#include "bench/Rows.h"

#include <algorithm>
#include <array>
#include <map>
#include <string_view>

namespace bench {

namespace {

struct Work
{
    std::string_view name;
    const char* pszWhat;
};

// In the page's order.
constexpr std::array works = {
    Work{"log_caller_1_producer", "a line of 60 bytes given to the log: what the caller waits for it"},
    Work{"log_drain_1_producer", "200,000 such lines logged by one thread, until the file holds all"},
    Work{"log_drain_4_producers", "200,000 such lines logged by four threads, until the file holds all"},
    Work{"tasks_1_producer", "1,000,000 empty tasks given to the task thread, until the last has run"},
    Work{"ini_read100", "100 typed values read from an INI file that doesn't change"},
    Work{"ini_cold", "the first value read from an INI file of 100 keys not read before"},
    Work{"text_1_thread", "2,000 texts looked up by their keys"},
    Work{"text_4_threads", "2,000 texts looked up by their keys, by four threads at once"},
    Work{"text_load", "a language of 2,000 texts loaded"},
    Work{"skin_change", "a whole change of the skin: 32 picture files and an INI file"},
    Work{"skin_ini_reads", "120 values of the skin's INI file read as within a change"},
    Work{"copy_64x64", "`BitBlt` of 64 by 64 pixels"},
    Work{"copy_256x256", "`BitBlt` of 256 by 256 pixels"},
    Work{"copy_1920x1080", "`BitBlt` of 1920 by 1080 pixels"},
    Work{"clip_32768", "`BitBlt` of 8 by 8 pixels under a clip of 32,768 rectangles, of which it touches 32"},
    Work{"keyed_runs_64x64", "`TransparentBlt` of 64 by 64 pixels, half of them keyed, in runs of 16"},
    Work{"keyed_runs_256x256", "`TransparentBlt` of 256 by 256 pixels, half of them keyed, in runs of 16"},
    Work{"keyed_runs_1920x1080",
         "`TransparentBlt` of 1920 by 1080 pixels, half of them keyed, in runs of 16"},
    Work{"keyed_noise_64x64", "`TransparentBlt` of 64 by 64 pixels, half of them keyed, at random"},
    Work{"keyed_noise_256x256", "`TransparentBlt` of 256 by 256 pixels, half of them keyed, at random"},
    Work{"keyed_noise_1920x1080", "`TransparentBlt` of 1920 by 1080 pixels, half of them keyed, at random"},
    Work{"draw_fill", "`DrawFill` of a bar of 1000 by 30 pixels from a state of 30 by 30"},
    Work{"region_disc", "a region made from the runs of a disc's rows, 1024 by 1024 pixels"},
    Work{"region_checkerboard", "a region made from a checkerboard's 524,288 pixels"},
    Work{"region_noise", "a region made from the runs of noise, 1024 by 1024 pixels"},
    Work{"bitmap_rgn_disc_1024", "`CreateBitmapRgn` of a disc, 1024 by 1024 pixels"},
    Work{"bitmap_rgn_checkerboard_1024", "`CreateBitmapRgn` of a checkerboard, 1024 by 1024 pixels"},
    Work{"bitmap_rgn_noise_1024", "`CreateBitmapRgn` of noise, 1024 by 1024 pixels"},
    Work{"bitmap_rgn_noise_2048", "`CreateBitmapRgn` of noise, 2048 by 2048 pixels"},
    Work{"letter", "a letter measured and drawn"},
    Work{"letter_threaded", "a letter measured and drawn, in a process that has had threads"},
    Work{"test_word", "a test word of 12 letters drawn with its boxes"},
    Work{"test_word_threaded",
         "a test word of 12 letters drawn with its boxes, in a process that has had threads"},
    Work{"draw_scaled", "a picture of 1024 by 768 drawn at 400 by 300"},
    Work{"draw_scaled_alpha", "a picture of 1024 by 768 with alpha drawn at 400 by 300"},
    Work{"draw_enlarged", "a picture of 1024 by 768 drawn at 1600 by 1200"},
    Work{"thumbnail", "a thumbnail of 160 by 120 made of a picture of 1024 by 768"},
    Work{"line_down", "a linear gradient downwards, 1920 by 1080 pixels"},
    Work{"line_across", "a linear gradient across, 1920 by 1080 pixels"},
    Work{"path_gradient", "a path gradient, 1920 by 1080 pixels"},
    Work{"load_png", "a PNG of 1024 by 768 decoded from memory"},
    Work{"load_jpeg", "a JPEG of 1024 by 768 decoded from memory"},
    Work{"load_gif20", "all frames of a GIF of 20 frames of 320 by 240 decoded from memory"},
    Work{"gif_step_320x240", "the next frame of a looping GIF drawn, from its third round on"},
    Work{"save_jpeg", "a picture of 1024 by 768 encoded as JPEG"},
    Work{"save_gray", "`SaveGrayPic` of 1024 by 768: made grey, encoded as JPEG, written"},
    Work{"send_own", "`SendMessageA` to a window of the same thread"},
    Work{"send_across", "`SendMessageA` to a window of another thread on the same core"},
    Work{"repaint_800x600", "a skinned window of 800 by 600 painted whole"},
    Work{"xml_load_5mb", "a document of 5 MB loaded"},
    Work{"xml_read_childs", "10 children of each of 20,000 records read by name"},
    Work{"xml_write", "20,000 records of 10 children appended and saved"},
    Work{"download_256mb", "a file of 256 MB downloaded from 127.0.0.1 to disk"},
    Work{"download_2000_small", "2,000 files of 2 KB downloaded from 127.0.0.1, one after the other"},
    Work{"crash_to_main", "from a fault to the crash reporter's `main`"},
    Work{"client_log", "log 100 lines"},
    Work{"client_ini", "read one value of an INI file"},
    Work{"client_language", "load a language of 2,000 texts and look one up"},
    Work{"client_bitmap", "load a bitmap and draw it on a surface"},
    Work{"client_text", "draw a text on a surface"},
    Work{"client_png", "load a PNG of 48 by 48"},
    Work{"client_xml", "load a document of 10 elements and read one"},
    Work{"client_http", "download a file of 2 KB from 127.0.0.1"},
    Work{"client_service", "ask for a service where there is no manager"},
    Work{"client_shell", "ask for the type's name of a file"},
    Work{"client_window", "show a skinned window of 800 by 600 on an X server"},
};

// By how much the library is at least to be faster than a peer.
const std::map<std::string, double> aims = {
    {"log_drain_1_producer/spdlog", 2},
    {"log_drain_4_producers/spdlog", 10},
    {"log_caller_1_producer/spdlog", 2},
    {"ini_read100/stat", 1 / 1.3},
    {"ini_read100/gkeyfile", 15},
    {"ini_cold/gkeyfile", 1},
    {"text_1_thread/map_and_mutex", 1},
    {"text_4_threads/map_and_mutex", 1.5},
    {"text_load/read_and_split", 0.5},
    {"copy_64x64/pixman", 1},
    {"copy_64x64/sdl2", 1},
    {"copy_256x256/memcpy", 0.9},
    {"copy_256x256/pixman", 1},
    {"copy_256x256/sdl2", 1},
    {"copy_1920x1080/memcpy", 0.9},
    {"copy_1920x1080/pixman", 1},
    {"copy_1920x1080/sdl2", 1},
    {"clip_32768/1_rectangle", 0.1},
    {"keyed_runs_64x64/select_loop", 0.9},
    {"keyed_runs_64x64/sdl2", 3},
    {"keyed_noise_64x64/select_loop", 0.9},
    {"keyed_noise_64x64/sdl2", 3},
    {"keyed_runs_256x256/select_loop", 0.9},
    {"keyed_runs_256x256/sdl2", 3},
    {"keyed_noise_256x256/select_loop", 0.9},
    {"keyed_noise_256x256/sdl2", 3},
    {"keyed_runs_1920x1080/select_loop", 0.9},
    {"keyed_runs_1920x1080/sdl2", 3},
    {"keyed_noise_1920x1080/select_loop", 0.9},
    {"keyed_noise_1920x1080/sdl2", 3},
    {"region_disc/cairo", 1},
    {"region_checkerboard/cairo", 2},
    {"region_noise/cairo", 2},
    {"draw_scaled/pixbuf", 1},
    {"draw_scaled_alpha/pixbuf", 1},
    {"draw_enlarged/pixbuf", 1},
    {"load_png/libpng", 1 / 1.1},
    {"load_png/gdk_pixbuf", 1},
    {"load_jpeg/libjpeg", 1 / 1.1},
    {"load_jpeg/gdk_pixbuf", 1},
    {"load_gif20/giflib", 1 / 1.1},
    {"load_gif20/gdk_pixbuf", 1},
    {"gif_step_320x240/giflib", 1},
    {"save_jpeg/libjpeg", 1 / 1.3},
    {"save_gray/libjpeg", 1 / 1.3},
    {"thumbnail/pixbuf", 1},
    {"line_down/cairo", 1},
    {"line_across/cairo", 1},
    {"path_gradient/cairo_radial", 1},
    {"path_gradient/cairo_mesh", 1},
    {"draw_fill/sdl2", 1},
    {"bitmap_rgn_disc_1024/scan_pixman", 1 / 1.3},
    {"bitmap_rgn_checkerboard_1024/scan_pixman", 1 / 1.3},
    {"bitmap_rgn_noise_1024/scan_pixman", 1 / 1.3},
    {"bitmap_rgn_noise_2048/256_64_times", 0.7},
    {"letter/cairo", 1},
    {"letter_threaded/cairo", 1},
    {"test_word/cairo", 1},
    {"test_word_threaded/cairo", 1},
    {"send_own/function", 1 / 20.0},
    {"send_across/condvar", 1 / 1.5},
    {"repaint_800x600/cairo", 1},
    {"download_256mb/libcurl_2048", 0.9},
    {"download_2000_small/libcurl", 0.95},
    {"tasks_1_producer/bare_deque", 0.8},
    {"skin_change/read_and_decode", 1 / 1.5},
    {"skin_ini_reads/whole_change", 20},
    {"crash_to_main/posix_spawn", 0.5},
    {"xml_load_5mb/libxml2", 1 / 1.15},
    {"xml_read_childs/libxml2_xpath", 3},
    {"xml_read_childs/ten_tenths", 0.8},
    {"xml_write/libxml2", 1 / 1.5},
    {"client_log/spdlog", 1 / 1.2},
};

// The same for memory.
const std::map<std::string, double> memoryAims = {
    {"client_log/spdlog", 1 / 1.3},
};

double AimOf(const std::map<std::string, double>& all, const Row& row)
{
    const auto found = all.find(row.work + "/" + row.peer);
    return found != all.end() ? found->second : 0;
}

auto Find(const std::string& work)
{
    return std::find_if(works.begin(), works.end(), [&](const Work& known) { return known.name == work; });
}

} // namespace

Side QuartilesOf(std::vector<double> times)
{
    if (times.empty()) return {};
    std::sort(times.begin(), times.end());
    const std::size_t last = times.size() - 1;
    return {times[last / 4], times[times.size() / 2], times[last - last / 4]};
}

double Row::Aim() const
{
    return AimOf(aims, *this);
}

double Row::MemoryAim() const
{
    return AimOf(memoryAims, *this);
}

void Sort(std::vector<Row>& rows)
{
    std::stable_sort(rows.begin(), rows.end(),
                     [](const Row& a, const Row& b) { return Find(a.work) < Find(b.work); });
}

const char* WhatIs(const std::string& work)
{
    const auto found = Find(work);
    return found != works.end() ? found->pszWhat : "";
}

} // namespace bench
