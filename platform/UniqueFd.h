#pragma once

#include <unistd.h>
#include <utility>

namespace kx {

// Owns a file descriptor.
class UniqueFd
{
public:
    explicit UniqueFd(int fd = -1) noexcept : m_fd(fd) {}
    UniqueFd(UniqueFd&& other) noexcept : m_fd(other.Release()) {}
    UniqueFd& operator=(UniqueFd&& other) noexcept
    {
        if (this != &other) Reset(other.Release());
        return *this;
    }
    ~UniqueFd() { Reset(); }

    int Get() const noexcept { return m_fd; }
    explicit operator bool() const noexcept { return m_fd >= 0; }
    int Release() noexcept { return std::exchange(m_fd, -1); }
    void Reset(int fd = -1) noexcept
    {
        if (m_fd >= 0) ::close(m_fd);
        m_fd = fd;
    }

private:
    int m_fd;
};

} // namespace kx
