#include "bench/Rows.h"

#include <SDL2/SDL.h>
#include <cairo/cairo.h>
#include <cstdio>
#include <curl/curl.h>
#include <gdk-pixbuf/gdk-pixbuf.h>
#include <gif_lib.h>
#include <glib.h>
#include <gnu/libc-version.h>
#include <libxml/parser.h>
#include <map>
#include <pixman.h>
#include <png.h>
#include <spdlog/version.h>

#include <jpeglib.h> // needs stdio

// The peers by the names that rows have for them.

namespace bench {

namespace {

#define KX_TEXT_(x) #x
#define KX_TEXT(x) KX_TEXT_(x)

std::string Dotted(unsigned major, unsigned minor, unsigned patch)
{
    return std::to_string(major) + "." + std::to_string(minor) + "." + std::to_string(patch);
}

std::string SdlVersion()
{
    SDL_version linked;
    SDL_GetVersion(&linked);
    return Dotted(linked.major, linked.minor, linked.patch);
}

struct Peer
{
    const char* pszWhat;
    std::string version;
};

std::map<std::string, Peer> MakePeers()
{
    const std::string none, cairo = cairo_version_string(), pixman = pixman_version_string(),
                            libc = gnu_get_libc_version(), pixbuf = gdk_pixbuf_version, sdl = SdlVersion(),
                            curl = curl_version_info(CURLVERSION_NOW)->version, xml = LIBXML_DOTTED_VERSION,
                            spdlog = Dotted(SPDLOG_VER_MAJOR, SPDLOG_VER_MINOR, SPDLOG_VER_PATCH);
    return {
        {"1_rectangle", {"ours, under a clip of one rectangle", none}},
        {"256_64_times", {"ours, 256 by 256 pixels 64 times", none}},
        {"bare_deque", {"a deque under a mutex, a condition variable", none}},
        {"cairo", {"cairo", cairo}},
        {"cairo_mesh", {"cairo, a mesh", cairo}},
        {"cairo_radial", {"cairo, a radial gradient", cairo}},
        {"condvar", {"two threads, a condition variable", libc}},
        {"function", {"a call of a `std::function`", none}},
        {"gdk_pixbuf", {"GDK pixbuf", pixbuf}},
        {"giflib", {"giflib", Dotted(GIFLIB_MAJOR, GIFLIB_MINOR, GIFLIB_RELEASE)}},
        {"gkeyfile",
         {"`GKeyFile`, loaded for each value",
          Dotted(glib_major_version, glib_minor_version, glib_micro_version)}},
        {"libcurl", {"libcurl's easy interface", curl}},
        {"libcurl_2048", {"libcurl's easy interface, writing blocks of 2,048 bytes", curl}},
        {"libjpeg", {"libjpeg-turbo", KX_TEXT(LIBJPEG_TURBO_VERSION)}},
        {"libpng", {"libpng", png_get_libpng_ver(nullptr)}},
        {"libxml2", {"libxml2", xml}},
        {"libxml2_xpath", {"libxml2, by XPath", xml}},
        {"map_and_mutex", {"a `std::map` under a mutex", none}},
        {"memcpy", {"`memcpy` of each row", libc}},
        {"nothing", {"a client of ours that does nothing", none}},
        {"pixbuf", {"GDK pixbuf", pixbuf}},
        {"pixman", {"pixman", pixman}},
        {"posix_spawn", {"`posix_spawn` of the same program", libc}},
        {"read_and_decode", {"ours, its files read and decoded alone", none}},
        {"read_and_split", {"the file read and split into lines", none}},
        {"scan_pixman", {"a scan for runs, and pixman", pixman}},
        {"sdl2", {"SDL2", sdl}},
        {"select_loop", {"a loop that the compiler vectorises", none}},
        {"spdlog", {"spdlog, asynchronous", spdlog}},
        {"spdlog_basic", {"spdlog, its basic file logger", spdlog}},
        {"stat", {"`stat` for each value", libc}},
        {"ten_tenths", {"ours, a tenth of the document ten times", none}},
        {"whole_change", {"ours, the whole change of the skin", none}},
    };
}

const Peer* Find(const std::string& peer)
{
    static const auto peers = MakePeers();
    const auto found = peers.find(peer);
    return found != peers.end() ? &found->second : nullptr;
}

} // namespace

const char* WhatIsPeer(const std::string& peer)
{
    const auto* found = Find(peer);
    return found ? found->pszWhat : peer.c_str();
}

std::string VersionOf(const std::string& peer)
{
    const auto* found = Find(peer);
    return found ? found->version : std::string();
}

} // namespace bench
