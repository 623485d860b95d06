#pragma once

#include "platform/UniqueFd.h"
#include "platform/module/ByteSource.h"

#include <optional>
#include <string>
#include <utility>

namespace kx::module {

// A regular file open for reading. It is never mapped, so that a file that shrinks meanwhile is a failed read
// and no signal.
class RegularFile : public ByteSource
{
public:
    // By a path of this library. Nothing, with the last error set, for what can't be opened or is no regular
    // file; a pipe or a device is not even opened.
    static std::optional<RegularFile> Open(const char* pszPath);

    // Absolute.
    const std::string& SystemPath() const noexcept { return m_path; }
    std::uint64_t Size() const noexcept override { return m_size; }

protected:
    bool ReadAt(std::uint64_t offset, std::span<std::uint8_t> target) const override;

private:
    RegularFile(UniqueFd fd, std::string path, std::uint64_t nSize)
        : m_fd(std::move(fd)), m_path(std::move(path)), m_size(nSize)
    {
    }

    UniqueFd m_fd;
    std::string m_path;
    std::uint64_t m_size;
};

} // namespace kx::module
