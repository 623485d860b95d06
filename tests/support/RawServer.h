#pragma once

#include "tests/support/Fixed.h"
#include "tests/support/Standard.h"

namespace test {

// A connection that a RawServer has accepted.
class Peer
{
public:
    explicit Peer(int fd) : m_fd(fd) {}

    int Socket() const { return m_fd; }

    // The next request up to its blank line; empty once the client has hung up.
    std::string Request();
    // False once the client has hung up.
    bool Send(std::string_view bytes);
    // Waits until the client hangs up.
    void AwaitClose();
    // Breaks the connection off, so that the client's next read fails.
    void Reset();

private:
    int m_fd;
    std::string m_ahead;
};

// A server on 127.0.0.1 that does with each connection, one after the other on a thread of its own, what it
// is told: it may lie, stall and break off.
class RawServer : Fixed
{
public:
    explicit RawServer(std::function<void(Peer&)> serve);
    // Answers every request with the same bytes, on one connection for as long as that lasts; with `bClose`
    // one request for each connection.
    static std::function<void(Peer&)> Answering(std::string response, bool bClose = false);

    // Sends a part of its answer and then nothing more; tells of the sending.
    static std::function<void(Peer&)> Stalling(
        std::string part, std::function<void()> sent = [] {});
    // Ends the connection that is open.
    ~RawServer();

    std::string Url(std::string_view path = "/") const;
    std::string Host() const { return "127.0.0.1:" + std::to_string(m_port); }
    int Connections() const { return m_connections; }

private:
    void Run();
    void Open(int fd);

    const std::function<void(Peer&)> m_serve;
    int m_listener = -1;
    std::uint16_t m_port = 0;
    std::atomic<int> m_connections{0};
    std::mutex m_lock;
    int m_open = -1; // the connection
    bool m_stop = false;
    std::thread m_thread;
};

} // namespace test
