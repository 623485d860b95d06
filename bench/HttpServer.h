#pragma once

#include <functional>
#include <httplib.h>
#include <string>
#include <thread>

namespace bench {

// A server of this process, on a free port of 127.0.0.1.
class HttpServer
{
public:
    // Listens once `prepare` has said what it serves.
    explicit HttpServer(const std::function<void(httplib::Server&)>& prepare)
    {
        prepare(m_http);
        m_port = m_http.bind_to_any_port("127.0.0.1");
        m_thread = std::thread([this] { m_http.listen_after_bind(); });
        while (!m_http.is_running())
            std::this_thread::yield();
    }
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;
    ~HttpServer()
    {
        m_http.stop();
        m_thread.join();
    }

    std::string Url(const char* path) const { return "http://127.0.0.1:" + std::to_string(m_port) + path; }

private:
    httplib::Server m_http;
    int m_port = 0;
    std::thread m_thread;
};

} // namespace bench
