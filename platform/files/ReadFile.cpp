#include "platform/files/ReadFile.h"

#include "platform/Errno.h"
#include "platform/UniqueFd.h"

#include <algorithm>
#include <array>
#include <fcntl.h>

std::optional<std::string> kx::ReadFile(const std::string& path, std::size_t limit)
{
    const UniqueFd fd(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!fd) return std::nullopt;
    std::string content;
    std::array<char, 4096> block;
    while (content.size() < limit) {
        const std::size_t want = std::min(block.size(), limit - content.size());
        const ssize_t got = RetryEintr([&] { return read(fd.Get(), block.data(), want); });
        if (got < 0) return std::nullopt;
        if (got == 0) break;
        content.append(block.data(), static_cast<std::size_t>(got));
    }
    return content;
}
