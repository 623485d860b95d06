#include "include/platform/Version.h"

#include "platform/Errno.h"
#include "platform/files/Path.h"
#include "platform/files/WholeFile.h"
#include "platform/module/FileVersion.h"

#include <cstddef>
#include <cstring>
#include <iterator>
#include <span>
#include <sys/stat.h>
#include <unistd.h>

using namespace kx::module;

namespace {

// GetFileVersionInfoA fills this: the head of a version resource, in its own form.
struct VersionBlock
{
    WORD length;
    WORD valueLength;
    WORD type;
    char16_t key[std::size(kVersionKey)];
    WORD padding;
    VS_FIXEDFILEINFO record;
};
static_assert(offsetof(VersionBlock, record) == kFixedRecordAt && sizeof(VersionBlock) == kVersionHeadSize);

// A file of which a few places are looked at. It is never mapped, so that a file that shrinks meanwhile is a
// failed read and no signal.
class OpenFile : public ByteSource
{
public:
    OpenFile(const kx::UniqueFd& fd, std::uint64_t nSize) noexcept : m_fd(fd), m_size(nSize) {}
    std::uint64_t Size() const noexcept override { return m_size; }

protected:
    bool ReadAt(std::uint64_t offset, std::span<std::uint8_t> target) const override
    {
        while (!target.empty()) {
            const ssize_t got = kx::RetryEintr(
                [&] { return pread(m_fd.Get(), target.data(), target.size(), static_cast<off_t>(offset)); });
            if (got <= 0) return false;
            offset += static_cast<std::uint64_t>(got);
            target = target.subspan(static_cast<std::size_t>(got));
        }
        return true;
    }

private:
    const kx::UniqueFd& m_fd;
    const std::uint64_t m_size;
};

std::optional<VS_FIXEDFILEINFO> VersionOf(const char* pszFile)
{
    const auto path = kx::files::ToSystem(pszFile);
    if (!path) return std::nullopt;
    struct stat info = {};
    const kx::UniqueFd fd = kx::files::OpenRegularFile(*path, info);
    if (!fd) {
        kx::FailErrno();
        return std::nullopt;
    }
    const auto version = ReadVersion(OpenFile(fd, static_cast<std::uint64_t>(info.st_size)));
    if (!version) SetLastError(ERROR_RESOURCE_DATA_NOT_FOUND);
    return version;
}

} // namespace

DWORD GetFileVersionInfoSizeA(const char* pszFile, DWORD* pdwHandle)
try {
    if (pdwHandle) *pdwHandle = 0;
    return VersionOf(pszFile) ? sizeof(VersionBlock) : 0;
} catch (...) {
    return kx::NoMemory();
}

int GetFileVersionInfoA(const char* pszFile, DWORD, DWORD nSize, void* pBlock)
try {
    if (!pBlock) return kx::Fail(ERROR_INVALID_PARAMETER);
    if (nSize < sizeof(VersionBlock)) return kx::Fail(ERROR_INSUFFICIENT_BUFFER);
    const auto version = VersionOf(pszFile);
    if (!version) return 0;
    VersionBlock block{sizeof(VersionBlock), sizeof(VS_FIXEDFILEINFO), 0, {}, 0, *version};
    std::memcpy(block.key, kVersionKey, sizeof(kVersionKey));
    std::memcpy(pBlock, &block, sizeof(block));
    return 1;
} catch (...) {
    return kx::NoMemory();
}

int VerQueryValueA(const void* pBlock, const char* pszSubBlock, void** ppRecord, UINT* pnSize)
{
    if (!pBlock || !pszSubBlock || !ppRecord) return kx::Fail(ERROR_INVALID_PARAMETER);
    if (std::strcmp(pszSubBlock, "\\") != 0) return kx::Fail(ERROR_RESOURCE_TYPE_NOT_FOUND);
    // The length first: a block of another kind may be no longer than that.
    const auto* bytes = static_cast<const std::byte*>(pBlock);
    WORD length = 0;
    std::memcpy(&length, bytes, sizeof(length));
    if (length != sizeof(VersionBlock)) return kx::Fail(ERROR_INVALID_PARAMETER);
    if (std::memcmp(bytes + offsetof(VersionBlock, key), kVersionKey, sizeof(kVersionKey)) != 0 ||
        std::memcmp(bytes + kFixedRecordAt, &kFixedSignature, sizeof(kFixedSignature)) != 0)
        return kx::Fail(ERROR_INVALID_PARAMETER);
    *ppRecord = const_cast<std::byte*>(bytes + kFixedRecordAt);
    if (pnSize) *pnSize = sizeof(VS_FIXEDFILEINFO);
    return 1;
}
