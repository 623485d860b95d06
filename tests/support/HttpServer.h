#pragma once

#include "tests/support/Standard.h"

#include <httplib.h>

namespace test {

// Runs a server of cpp-httplib's on 127.0.0.1 for its scope, at a port that the system chooses.
class HttpServer : Fixed
{
public:
    // `set` gives the server its handlers.
    template <class Setup>
    explicit HttpServer(Setup set,
                        std::unique_ptr<httplib::Server> server = std::make_unique<httplib::Server>())
        : m_server(std::move(server))
    {
        m_server->set_keep_alive_timeout(1); // a stop waits for that in connections that are kept
        set(*m_server);
        m_port = m_server->bind_to_any_port("127.0.0.1");
        m_thread = std::thread([this] { m_server->listen_after_bind(); });
        while (!m_server->is_running())
            std::this_thread::yield();
    }
    ~HttpServer()
    {
        m_server->stop();
        m_thread.join();
    }

    int Port() const { return m_port; }
    std::string Url(std::string_view path, std::string_view scheme = "http") const
    {
        return std::string(scheme) + "://127.0.0.1:" + std::to_string(m_port) + std::string(path);
    }

private:
    std::unique_ptr<httplib::Server> m_server;
    int m_port = 0;
    std::thread m_thread;
};

} // namespace test
