#include "tests/support/RawServer.h"

#include <netinet/in.h>
#include <sys/socket.h>

namespace test {

std::string Peer::Request()
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

bool Peer::Send(std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t put = send(m_fd, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (put <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(put));
    }
    return true;
}

void Peer::AwaitClose()
{
    char byte = 0;
    while (recv(m_fd, &byte, 1, 0) > 0) {
    }
}

void Peer::Reset()
{
    const linger atOnce{1, 0};
    setsockopt(m_fd, SOL_SOCKET, SO_LINGER, &atOnce, sizeof(atOnce));
}

RawServer::RawServer(std::function<void(Peer&)> serve) : m_serve(std::move(serve))
{
    m_listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
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

RawServer::~RawServer()
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

void RawServer::Run()
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

void RawServer::Open(int fd)
{
    const std::lock_guard lock(m_lock);
    m_open = fd;
    if (m_stop && fd >= 0) shutdown(fd, SHUT_RDWR);
}

std::function<void(Peer&)> RawServer::Answering(std::string response, bool bClose)
{
    return [=](Peer& peer) {
        while (!peer.Request().empty() && peer.Send(response) && !bClose) {
        }
    };
}

std::function<void(Peer&)> RawServer::Stalling(std::string part, std::function<void()> sent)
{
    return [=](Peer& peer) {
        peer.Request();
        peer.Send(part);
        sent();
        peer.AwaitClose();
    };
}

std::string RawServer::Url(std::string_view path) const
{
    return "http://" + Host() + std::string(path);
}

} // namespace test
