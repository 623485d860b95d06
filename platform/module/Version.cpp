#include "include/platform/Version.h"

#include "platform/Errno.h"
#include "platform/NoMemory.h"
#include "platform/module/FileVersion.h"
#include "platform/module/RegularFile.h"

#include <cstddef>
#include <cstring>
#include <iterator>

using namespace kx::module;

namespace {

// What GetFileVersionInfoA fills: the head of a version resource, in its own form.
struct Block
{
    WORD length;
    WORD valueLength;
    WORD type;
    char16_t key[std::size(kVersionKey)];
    WORD padding;
    VS_FIXEDFILEINFO record;
};
static_assert(offsetof(Block, record) == kFixedRecordAt && sizeof(Block) == kVersionHeadSize);

std::optional<VS_FIXEDFILEINFO> VersionOf(const char* pszFile)
{
    const auto file = RegularFile::Open(pszFile);
    if (!file) return std::nullopt;
    const auto version = ReadVersion(*file);
    if (!version) SetLastError(ERROR_RESOURCE_DATA_NOT_FOUND);
    return version;
}

} // namespace

DWORD GetFileVersionInfoSizeA(const char* pszFile, DWORD* pdwHandle)
try {
    if (pdwHandle) *pdwHandle = 0;
    return VersionOf(pszFile) ? sizeof(Block) : 0;
} catch (...) {
    return kx::NoMemory();
}

int GetFileVersionInfoA(const char* pszFile, DWORD, DWORD nSize, void* pBlock)
try {
    if (!pBlock) return kx::Fail(ERROR_INVALID_PARAMETER);
    if (nSize < sizeof(Block)) return kx::Fail(ERROR_INSUFFICIENT_BUFFER);
    const auto version = VersionOf(pszFile);
    if (!version) return 0;
    Block block{sizeof(Block), sizeof(VS_FIXEDFILEINFO), 0, {}, 0, *version};
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
    if (length != sizeof(Block)) return kx::Fail(ERROR_INVALID_PARAMETER);
    if (std::memcmp(bytes + offsetof(Block, key), kVersionKey, sizeof(kVersionKey)) != 0 ||
        std::memcmp(bytes + kFixedRecordAt, &kFixedSignature, sizeof(kFixedSignature)) != 0)
        return kx::Fail(ERROR_INVALID_PARAMETER);
    *ppRecord = const_cast<std::byte*>(bytes + kFixedRecordAt);
    if (pnSize) *pnSize = sizeof(VS_FIXEDFILEINFO);
    return 1;
}
