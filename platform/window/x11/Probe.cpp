#include "platform/window/x11/Probe.h"

#include "platform/window/x11/Reply.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <netdb.h>
#include <poll.h>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <vector>
#include <xcb/xcb.h>

namespace kx::window::x11 {

namespace {

constexpr int kFirstPort = 6000;

struct Address
{
    sockaddr_storage bytes{};
    socklen_t length = 0;
};

Address LocalAddress(const std::string& path, bool bAbstract)
{
    Address address;
    sockaddr_un local{};
    local.sun_family = AF_UNIX;
    path.copy(local.sun_path + bAbstract, sizeof local.sun_path - 2);
    std::memcpy(&address.bytes, &local, sizeof local);
    address.length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + path.size() + 1);
    return address;
}

std::vector<Address> RemoteAddresses(const std::string& machine, int nDisplay)
{
    addrinfo wanted{};
    wanted.ai_socktype = SOCK_STREAM;
    addrinfo* first = nullptr;
    const std::string port = std::to_string(kFirstPort + nDisplay);
    if (getaddrinfo(machine.c_str(), port.c_str(), &wanted, &first) != 0) return {};
    const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> owned(first, &freeaddrinfo);
    std::vector<Address> addresses;
    for (const addrinfo* it = first; it; it = it->ai_next) {
        Address& address = addresses.emplace_back();
        std::memcpy(&address.bytes, it->ai_addr, it->ai_addrlen);
        address.length = it->ai_addrlen;
    }
    return addresses;
}

std::vector<Address> AddressesOf(const char* pszDisplay)
{
    char* machine = nullptr;
    int nDisplay = 0;
    int nScreen = 0;
    if (!xcb_parse_display(pszDisplay, &machine, &nDisplay, &nScreen)) return {};
    const Reply<char> owned(machine);
    const std::string name = machine ? machine : "";
    if (!name.empty() && name != "unix") return RemoteAddresses(name, nDisplay);
    const std::string path = "/tmp/.X11-unix/X" + std::to_string(nDisplay);
    return {LocalAddress(path, true), LocalAddress(path, false)};
}

// Waits for something to happen at a socket.
class Waiting
{
public:
    explicit Waiting(std::chrono::milliseconds limit) : m_end(std::chrono::steady_clock::now() + limit) {}

    int Left() const
    {
        using std::chrono::milliseconds;
        const auto left = std::chrono::ceil<milliseconds>(m_end - std::chrono::steady_clock::now());
        return static_cast<int>(std::clamp<milliseconds::rep>(left.count(), 0, 1'000'000));
    }
    // False at the end of the time.
    bool For(int fd, short events) const
    {
        pollfd ready{fd, events, 0};
        int nReady = 0;
        do {
            nReady = poll(&ready, 1, Left());
        } while (nReady < 0 && errno == EINTR);
        return nReady > 0;
    }

private:
    const std::chrono::steady_clock::time_point m_end;
};

enum class Call
{
    Refused,
    Taken,
    Late,
};

Call Connect(int fd, const Address& address, const Waiting& waiting)
{
    constexpr int nPause = 10; // milliseconds until a server that has many calls to take may have one less
    const auto* to = reinterpret_cast<const sockaddr*>(&address.bytes);
    while (connect(fd, to, address.length) != 0) {
        if (errno == EINPROGRESS) {
            if (!waiting.For(fd, POLLOUT)) return Call::Late;
            int nError = 0;
            socklen_t nLength = sizeof nError;
            getsockopt(fd, SOL_SOCKET, SO_ERROR, &nError, &nLength);
            return nError == 0 ? Call::Taken : Call::Refused;
        }
        if (errno != EAGAIN && errno != EINTR) return Call::Refused;
        if (waiting.Left() == 0) return Call::Late;
        poll(nullptr, 0, std::min(nPause, waiting.Left()));
    }
    return Call::Taken;
}

// The beginning of every client's talk: its byte order, the protocol's version, no name and no secret. That
// is answered in any case, if only by a refusal.
bool Ask(int fd)
{
    std::array<std::uint8_t, 12> setup{};
    const std::uint16_t version = 11;
    setup[0] = std::endian::native == std::endian::little ? 'l' : 'B';
    std::memcpy(&setup[2], &version, sizeof version);
    return send(fd, setup.data(), setup.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(setup.size());
}

} // namespace

Probe::Probe(const char* pszDisplay, std::chrono::milliseconds limit)
{
    const Waiting waiting(limit);
    for (const Address& address : AddressesOf(pszDisplay)) {
        m_socket.Reset(socket(address.bytes.ss_family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
        if (!m_socket) continue;
        const Call call = Connect(m_socket.Get(), address, waiting);
        if (call == Call::Refused) continue;
        m_bSilent = call == Call::Late || (Ask(m_socket.Get()) && !waiting.For(m_socket.Get(), POLLIN));
        return;
    }
    m_socket.Reset();
}

} // namespace kx::window::x11
