#pragma once

#include "tests/support/Standard.h"

#include <netinet/in.h>
#include <sys/socket.h>

namespace test {

// A connection that a RawServer has accepted.
class Peer
{
public:
    explicit Peer(int fd) : m_fd(fd) {}

    int Socket() const { return m_fd; }

    // The next request up to its blank line; empty once the client has hung up.
    std::string Request()
    {
        for (;;) {
            if (const auto end = m_ahead.find("\r\n\r\n"); end != std::string::npos) {
                std::string request = m_ahead.substr(0, end + 4);
                m_ahead.erase(0, end + 4);
                return request;
            }
            std::array<char, 4096> block;
            const ssize_t got = recv(m_fd, block.data(), block.size(), 0);
            if (got <= 0) return {};
            m_ahead.append(block.data(), static_cast<std::size_t>(got));
        }
    }
    // False once the client has hung up.
    bool Send(std::string_view bytes)
    {
        while (!bytes.empty()) {
            const ssize_t put = send(m_fd, bytes.data(), bytes.size(), MSG_NOSIGNAL);
            if (put <= 0) return false;
            bytes.remove_prefix(static_cast<std::size_t>(put));
        }
        return true;
    }
    // Waits until the client hangs up.
    void AwaitClose()
    {
        while (!Request().empty()) {
        }
    }
    // Breaks the connection off, so that the client's next read fails.
    void Reset()
    {
        const linger atOnce{1, 0};
        setsockopt(m_fd, SOL_SOCKET, SO_LINGER, &atOnce, sizeof(atOnce));
    }

private:
    int m_fd;
    std::string m_ahead;
};

// A server on 127.0.0.1 that does with each connection, one after the other on a thread of its own, what it
// is told: it may lie, stall and break off.
class RawServer : Fixed
{
public:
    explicit RawServer(std::function<void(Peer&)> serve) : m_serve(std::move(serve))
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof(address);
        auto* pAddress = reinterpret_cast<sockaddr*>(&address);
        if (bind(m_listener, pAddress, size) != 0 || listen(m_listener, 16) != 0 ||
            getsockname(m_listener, pAddress, &size) != 0)
            throw std::runtime_error("no server");
        m_port = ntohs(address.sin_port);
        m_thread = std::thread([this] { Run(); });
    }
    // Ends the connection that is open.
    ~RawServer()
    {
        {
            const std::lock_guard lock(m_lock);
            m_stop = true;
            shutdown(m_listener, SHUT_RDWR);
            if (m_open >= 0) shutdown(m_open, SHUT_RDWR);
        }
        m_thread.join();
        close(m_listener);
    }
    // Answers every request with the same bytes, on one connection for as long as that lasts; with `bClose`
    // one request for each connection.
    static std::function<void(Peer&)> Answering(std::string response, bool bClose = false)
    {
        return [=](Peer& peer) {
            while (!peer.Request().empty() && peer.Send(response) && !bClose) {
            }
        };
    }
    // Sends a part of its answer and then nothing more; tells of the sending.
    static std::function<void(Peer&)> Stalling(
        std::string part, std::function<void()> sent = [] {})
    {
        return [=](Peer& peer) {
            peer.Request();
            peer.Send(part);
            sent();
            peer.AwaitClose();
        };
    }

    std::string Url(std::string_view path = "/") const { return "http://" + Host() + std::string(path); }
    std::string Host() const { return "127.0.0.1:" + std::to_string(m_port); }
    int Connections() const { return m_connections; }

private:
    void Run()
    {
        for (int fd; (fd = accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC)) >= 0;) {
            ++m_connections;
            Open(fd);
            Peer peer(fd);
            m_serve(peer);
            Open(-1);
            close(fd);
        }
    }
    void Open(int fd)
    {
        const std::lock_guard lock(m_lock);
        m_open = fd;
        if (m_stop && fd >= 0) shutdown(fd, SHUT_RDWR);
    }

    const std::function<void(Peer&)> m_serve;
    const int m_listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    std::uint16_t m_port = 0;
    std::atomic<int> m_connections{0};
    std::mutex m_lock;
    int m_open = -1; // the connection
    bool m_stop = false;
    std::thread m_thread;
};

} // namespace test
