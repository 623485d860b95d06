#include "bench/Rows.h"

#include <map>

namespace bench {

namespace {

const std::map<std::string, const char*> works = {
    {"log_caller_1_producer", "a line given to the log, as its caller waits for it"},
    {"log_drain_1_producer", "200,000 lines of one thread until the file has them"},
    {"log_drain_4_producers", "the same of four threads"},
    {"ini_read100", "100 typed values read from one file"},
    {"ini_cold", "the first value read from a file not read before"},
    {"text_1_thread", "a text looked up by its key, many times"},
    {"text_4_threads", "the same from four threads at once"},
    {"text_load", "a language's texts read from its file"},
    {"copy_64x64", "`BitBlt`, 64 by 64 pixels"},
    {"copy_256x256", "`BitBlt`, 256 by 256 pixels"},
    {"copy_1920x1080", "`BitBlt`, 1920 by 1080 pixels"},
    {"clip_32768", "`BitBlt` of 8 by 8 pixels under a clip of 32,768 rectangles, of which it touches 32"},
    {"keyed_runs_64x64", "`TransparentBlt`, half of it keyed in runs of 16 pixels"},
    {"keyed_noise_64x64", "`TransparentBlt`, half of it keyed at random"},
    {"keyed_runs_256x256", "`TransparentBlt`, half of it keyed in runs of 16 pixels"},
    {"keyed_noise_256x256", "`TransparentBlt`, half of it keyed at random"},
    {"keyed_runs_1920x1080", "`TransparentBlt`, half of it keyed in runs of 16 pixels"},
    {"keyed_noise_1920x1080", "`TransparentBlt`, half of it keyed at random"},
    {"region_disc", "a region from the runs of a disc's rows"},
    {"region_checkerboard", "a region from a checkerboard's pixels"},
    {"region_noise", "a region from the runs of noise"},
    {"draw_scaled", "a picture of 1024 by 768 drawn at 400 by 300"},
    {"draw_scaled_alpha", "the same with alpha"},
    {"draw_enlarged", "a picture drawn larger"},
    {"load_png", "a PNG of 1024 by 768 from memory"},
    {"load_jpeg", "a JPEG of 1024 by 768 from memory"},
    {"load_gif20", "all frames of a GIF of 20"},
    {"gif_step_320x240", "the next frame of a looping GIF, drawn, from its third round on"},
    {"save_jpeg", "a picture encoded as JPEG"},
    {"save_gray", "`SaveGrayPic`: made grey, encoded, written"},
    {"thumbnail", "a thumbnail of 160 by 120"},
    {"line_down", "a linear gradient downwards, full HD"},
    {"line_across", "a linear gradient across, full HD"},
    {"path_gradient", "a path gradient, full HD"},
    {"draw_fill", "`DrawFill` of a bar of 1000 by 30 from a state of 30 by 30"},
    {"bitmap_rgn_disc_1024", "`CreateBitmapRgn` of a disc"},
    {"bitmap_rgn_checkerboard_1024", "`CreateBitmapRgn` of a checkerboard"},
    {"bitmap_rgn_noise_1024", "`CreateBitmapRgn` of noise"},
    {"bitmap_rgn_noise_2048", "`CreateBitmapRgn` of 64 times the pixels"},
    {"letter", "a letter measured and drawn"},
    {"letter_threaded", "the same in a process that has had threads"},
    {"test_word", "a test word of 12 letters with its boxes"},
    {"test_word_threaded", "the same in a process that has had threads"},
    {"send_own", "`SendMessageA` to a window of the own thread"},
    {"send_across", "`SendMessageA` to a window of another thread on the same core"},
    {"repaint_800x600", "a skinned window of 800 by 600 painted whole"},
    {"download_256mb", "a file of 256 MB to disk"},
    {"download_2000_small", "2,000 files of 2 KB in sequence"},
    {"tasks_1_producer", "1,000,000 empty tasks"},
    {"skin_change", "a whole change of the skin"},
    {"skin_ini_reads", "the INI values read in it"},
    {"crash_to_main", "from a fault to the reporter's `main`"},
    {"xml_load_5mb", "a document of 5 MB loaded"},
    {"xml_read_childs", "10 children of each of 20,000 records read by name"},
    {"xml_write", "20,000 records appended and saved"},
};

struct Aim
{
    double least;
    const char* pszWhyShort = ""; // where it was seen to be
};

const std::map<std::string, Aim> aims = {
    {"log_drain_1_producer/spdlog",
     {2, "while the writer is behind, lines lie in fresh memory, whose first touch is dear on a virtual "
         "machine"}},
    {"log_drain_4_producers/spdlog",
     {10, "while the writer is behind, lines lie in fresh memory, whose first touch is dear on a virtual "
          "machine"}},
    {"log_caller_1_producer/spdlog",
     {2, "the queue has no bound, so that while the writer is behind lines lie in fresh memory, where spdlog "
         "overwrites slots of a ring and lets its callers wait"}},
    {"ini_read100/stat", {1 / 1.3, "the read is that call and a look-up"}},
    {"ini_read100/gkeyfile",
     {15,
      "every read asks the system whether the file has changed, and that call is nearly all of its time"}},
    {"ini_cold/gkeyfile", {1}},
    {"text_1_thread/map_and_mutex", {1}},
    {"text_4_threads/map_and_mutex", {1.5}},
    {"text_load/read_and_split", {0.5}},
    {"copy_64x64/pixman", {1}},
    {"copy_64x64/sdl2", {1}},
    {"copy_256x256/memcpy", {0.9}},
    {"copy_256x256/pixman", {1, "both copy whole rows; 0.99 to 1.5 over runs"}},
    {"copy_256x256/sdl2", {1}},
    {"copy_1920x1080/memcpy", {0.9, "both move the same bytes by the C library; 0.97 to 1.01 in other runs"}},
    {"copy_1920x1080/pixman", {1, "both are bound by memory; 0.99 to 1.19 over runs"}},
    {"copy_1920x1080/sdl2", {1}},
    {"clip_32768/1_rectangle", {0.1}},
    {"keyed_runs_64x64/select_loop", {0.9}},
    {"keyed_runs_64x64/sdl2", {3}},
    {"keyed_noise_64x64/select_loop", {0.9}},
    {"keyed_noise_64x64/sdl2", {3}},
    {"keyed_runs_256x256/select_loop", {0.9}},
    {"keyed_runs_256x256/sdl2", {3}},
    {"keyed_noise_256x256/select_loop", {0.9}},
    {"keyed_noise_256x256/sdl2", {3}},
    {"keyed_runs_1920x1080/select_loop", {0.9}},
    {"keyed_runs_1920x1080/sdl2",
     {3, "bound by memory: a bare copy of the picture takes as long, and SDL2 less than twice that"}},
    {"keyed_noise_1920x1080/select_loop", {0.9}},
    {"keyed_noise_1920x1080/sdl2", {3}},
    {"region_disc/cairo", {1}},
    {"region_checkerboard/cairo", {2}},
    {"region_noise/cairo", {2}},
    {"draw_scaled/pixbuf", {1}},
    {"draw_scaled_alpha/pixbuf", {1}},
    {"draw_enlarged/pixbuf", {1}},
    {"load_png/libpng", {1 / 1.1}},
    {"load_png/gdk_pixbuf", {1, "both wait for the same libpng"}},
    {"load_jpeg/libjpeg", {1 / 1.1}},
    {"load_jpeg/gdk_pixbuf", {1}},
    {"load_gif20/giflib", {1 / 1.1}},
    {"load_gif20/gdk_pixbuf", {1}},
    {"gif_step_320x240/giflib", {1}},
    {"save_jpeg/libjpeg", {1 / 1.3}},
    {"save_gray/libjpeg", {1 / 1.3}},
    {"thumbnail/pixbuf", {1}},
    {"line_down/cairo", {1}},
    {"line_across/cairo", {1}},
    {"path_gradient/cairo_radial", {1}},
    {"path_gradient/cairo_mesh", {1}},
    {"draw_fill/sdl2", {1, "both copy the same rows of 30 pixels; 0.97 to 1.27 over runs"}},
    {"bitmap_rgn_disc_1024/scan_pixman", {1 / 1.3}},
    {"bitmap_rgn_checkerboard_1024/scan_pixman", {1 / 1.3}},
    {"bitmap_rgn_noise_1024/scan_pixman", {1 / 1.3}},
    {"bitmap_rgn_noise_2048/256_64_times",
     {0.7, "it takes tens of megabytes of fresh pages, whose first touch is dear on a virtual machine; 0.7 "
           "to 1.05 on a rested one"}},
    {"letter/cairo", {5}},
    {"letter_threaded/cairo", {5}},
    {"test_word/cairo",
     {5, "each of its texts, boxes and selections looks its handles up, pins them and takes a lock; 4.3 to "
         "5.3 over runs"}},
    {"test_word_threaded/cairo",
     {5, "the same by atomic steps, of which a word takes about a hundred at five nanoseconds each"}},
    {"send_own/function", {1 / 20.0}},
    {"send_across/condvar", {1 / 1.5}},
    {"repaint_800x600/cairo", {1.5}},
    {"download_256mb/libcurl_2048", {0.9}},
    {"download_2000_small/libcurl",
     {0.95, "both wait for the same server and the scheduler; 0.35 to 1.95 over thirteen runs, median 1.01"}},
    {"tasks_1_producer/bare_deque", {0.8}},
    {"skin_change/read_and_decode", {1 / 1.5}},
    {"skin_ini_reads/whole_change", {20}},
    {"crash_to_main/posix_spawn", {0.5}},
    {"xml_load_5mb/libxml2", {1 / 1.15}},
    {"xml_read_childs/libxml2_xpath", {5, "bound by the memory of the nodes that are passed"}},
    {"xml_read_childs/ten_tenths",
     {0.8, "a tenth of the document lies in the cache, the whole doesn't: linear in steps, not in waits"}},
    {"xml_write/libxml2",
     {1 / 1.5, "each element is made, given its text and appended in calls of its own, each with an object, "
               "checks and conversions, where libxml2 makes it at once"}},
};

const Aim* AimOf(const Row& row)
{
    const auto found = aims.find(row.work + "/" + row.peer);
    return found != aims.end() ? &found->second : nullptr;
}

} // namespace

double Row::Aim() const
{
    const auto* aim = AimOf(*this);
    return aim ? aim->least : 0;
}

const char* Row::WhyShort() const
{
    const auto* aim = AimOf(*this);
    return aim ? aim->pszWhyShort : "";
}

const char* WhatIs(const std::string& work)
{
    const auto found = works.find(work);
    return found != works.end() ? found->second : "";
}

} // namespace bench
