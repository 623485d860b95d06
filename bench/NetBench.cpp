#include "bench/BenchDir.h"
#include "bench/HttpServer.h"
#include "bench/Loop.h"

#include <KXHttpDownloadMgr.h>
#include <algorithm>
#include <atomic>
#include <benchmark/benchmark.h>
#include <curl/curl.h>
#include <fcntl.h>
#include <fstream>
#include <semaphore>
#include <string>
#include <unistd.h>

// Downloads from a server in this process, by the download manager and by one handle of libcurl's easy
// interface that is used again and again: a large file to disk, and many small ones to nowhere. libcurl hands
// out what a receive brings, up to 16 KB; the peer writes that as it comes or, like the manager, in blocks of
// 2,048 bytes.

namespace {

constexpr std::size_t cbLarge = 256 << 20;
constexpr std::size_t cbSmall = 2048;
constexpr int nSmall = 2000;
constexpr std::size_t cbBlock = 2048;

std::atomic<int> served{0}; // small ones

void Serve(httplib::Server& http)
{
    static const std::string piece(256 * 1024, 'p');
    http.set_tcp_nodelay(true);
    http.set_keep_alive_max_count(1'000'000);
    http.set_write_timeout(60);
    http.Get("/large", [](const auto&, auto& response) {
        response.set_content_provider(cbLarge, "a/b", [](std::size_t, std::size_t left, auto& sink) {
            return sink.write(piece.data(), std::min(left, piece.size()));
        });
    });
    http.Get("/small", [](const auto&, auto& response) {
        ++served;
        response.set_content(piece.data(), cbSmall, "a/b");
    });
}

bench::HttpServer& TheServer()
{
    static bench::HttpServer server{Serve};
    return server;
}

std::counting_semaphore<> ended{0};
unsigned long received = 0; // of the last task

int OnDownload(unsigned int code, unsigned int, CString const&, CString const&, unsigned long,
               unsigned long dwReceived, unsigned int)
{
    if (code != WM_KXDOWNLOADENDED) return 0;
    received = dwReceived;
    ended.release();
    return 0;
}

bool IsLargeThere()
{
    std::ifstream file(bench::Dir().Path("large"), std::ios::binary);
    std::string piece(1 << 20, '\0');
    std::size_t size = 0;
    while (file.read(piece.data(), static_cast<std::streamsize>(piece.size())) &&
           piece.find_first_not_of('p') == std::string::npos)
        size += piece.size();
    return size == cbLarge && file.gcount() == 0;
}

void LargeOurs(benchmark::State& state)
{
    const CString url = TheServer().Url("/large").c_str();
    const CString file = bench::Dir().Win("large");
    for (auto _ : bench::Loop(state)) {
        CKXHttpDownloadMgr::Instance().AddTask(url, file, OnDownload, 0);
        ended.acquire();
    }
    if (received != cbLarge || !IsLargeThere()) state.SkipWithError("wrong file");
}

void SmallOurs(benchmark::State& state)
{
    const CString url = TheServer().Url("/small").c_str();
    auto& mgr = CKXHttpDownloadMgr::Instance();
    served.exchange(0);
    for (auto _ : bench::Loop(state)) {
        for (int n = 1; n < nSmall; ++n)
            mgr.AddTask(url, "", nullptr);
        mgr.AddTask(url, "", OnDownload, 0);
        ended.acquire();
    }
    if (received != cbSmall || served.exchange(0) != nSmall) state.SkipWithError("not all received");
}

struct Sink
{
    int fd = -1; // -1: nowhere
    std::size_t cbWrite = CURL_MAX_WRITE_SIZE;
    std::size_t received = 0;
};

std::size_t OnBody(char* bytes, std::size_t size, std::size_t count, void* pSink)
{
    auto& sink = *static_cast<Sink*>(pSink);
    const std::size_t all = size * count;
    sink.received += all;
    for (std::size_t at = 0; sink.fd >= 0 && at < all; at += sink.cbWrite) {
        const std::size_t cb = std::min(sink.cbWrite, all - at);
        if (write(sink.fd, bytes + at, cb) != static_cast<ssize_t>(cb)) return 0;
    }
    return all;
}

CURL* Easy()
{
    static CURL* const easy = curl_easy_init();
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, OnBody);
    return easy;
}

std::size_t FetchByCurl(const std::string& url, Sink sink)
{
    curl_easy_setopt(Easy(), CURLOPT_URL, url.c_str());
    curl_easy_setopt(Easy(), CURLOPT_WRITEDATA, &sink);
    return curl_easy_perform(Easy()) == CURLE_OK ? sink.received : 0;
}

template <std::size_t cbWrite>
void LargeCurl(benchmark::State& state)
{
    const std::string url = TheServer().Url("/large");
    const std::string path = bench::Dir().Path("large");
    for (auto _ : bench::Loop(state)) {
        const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
        if (FetchByCurl(url, {fd, cbWrite, 0}) != cbLarge) state.SkipWithError("wrong size");
        close(fd);
    }
    if (!IsLargeThere()) state.SkipWithError("wrong file");
}

void SmallCurl(benchmark::State& state)
{
    const std::string url = TheServer().Url("/small");
    for (auto _ : bench::Loop(state))
        for (int n = 0; n < nSmall; ++n)
            if (FetchByCurl(url, {}) != cbSmall) state.SkipWithError("wrong size");
}

const int registered = [] {
    const auto add = [](const char* name, void (*run)(benchmark::State&)) {
        benchmark::RegisterBenchmark(name, run)->UseRealTime()->Iterations(1);
    };
    add("download_256mb/ours", LargeOurs);
    add("download_256mb/libcurl", LargeCurl<CURL_MAX_WRITE_SIZE>);
    add("download_256mb/libcurl_2048", LargeCurl<cbBlock>);
    add("download_2000_small/ours", SmallOurs);
    add("download_2000_small/libcurl", SmallCurl);
    return 0;
}();

} // namespace
