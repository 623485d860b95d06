#pragma once

// Memory blocks and streams over them.
//
// A block's handle is harmless once it is freed: each operation then gives its failure. Any thread, but one
// stream, and the bytes of one block, are used by one thread at a time.

#include "../KXExport.h"
#include "Types.h"
#include "Unknown.h"

#include <cstddef>

// ---- Memory blocks

inline constexpr UINT GMEM_FIXED = 0;    // the handle is the block's address
inline constexpr UINT GMEM_MOVEABLE = 2; // the block lies where GlobalLock says, for as long as it is locked
inline constexpr UINT GMEM_ZEROINIT = 0x40;
inline constexpr std::size_t MAX_BLOCK_BYTES = 0x7FFFFFFF;

// A block of `nBytes`, 0 too. Null, with ERROR_NOT_ENOUGH_MEMORY, for a lack of memory or more than
// MAX_BLOCK_BYTES. The caller ends it with GlobalFree.
KX_API HGLOBAL GlobalAlloc(UINT nFlags, std::size_t nBytes);
// The block's bytes; null for a bad handle. Each GlobalLock is undone by a GlobalUnlock.
KX_API void* GlobalLock(HGLOBAL hBlock);
// Non-zero while the block stays locked. One more than there were locks does nothing.
KX_API int GlobalUnlock(HGLOBAL hBlock);
// The size in bytes; 0 for a bad handle.
KX_API std::size_t GlobalSize(HGLOBAL hBlock);
// Null on success, the handle itself if there is no such block. A stream over the block then reads nothing.
KX_API HGLOBAL GlobalFree(HGLOBAL hBlock);

// ---- Streams

struct LARGE_INTEGER
{
    std::int64_t QuadPart;
};
// A number of 64 bits.
struct ULARGE_INTEGER
{
    // The number.
    std::uint64_t QuadPart;
};

// A position is counted from the beginning, from where one is, or from the end.
inline constexpr DWORD STREAM_SEEK_SET = 0;
inline constexpr DWORD STREAM_SEEK_CUR = 1;
inline constexpr DWORD STREAM_SEEK_END = 2;

// Failures of streams.
inline constexpr HRESULT STG_E_INVALIDFUNCTION = static_cast<HRESULT>(0x80030001);
inline constexpr HRESULT STG_E_MEDIUMFULL = static_cast<HRESULT>(0x80030070);

// {0000000C-0000-0000-C000-000000000046}
inline constexpr GUID IID_IStream{0xC, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

// A client may implement one of its own. What `pnRead`, `pnWritten` and `pnPosition` point at may be null.
struct IStream : IUnknown
{
    // Reads at most `nBytes` from the stream's position on. S_OK for all of them, S_FALSE for fewer, as at
    // the end.
    virtual HRESULT Read(void* pBytes, ULONG nBytes, ULONG* pnRead) = 0;
    virtual HRESULT Write(const void* pBytes, ULONG nBytes, ULONG* pnWritten) = 0;
    // From the beginning, the position or the end. A position before the beginning is refused.
    virtual HRESULT Seek(LARGE_INTEGER nMove, DWORD nOrigin, ULARGE_INTEGER* pnPosition) = 0;

protected:
    ~IStream() = default;
};

// A stream over a block, at its beginning; null makes a moveable block of its own. Writing past the end
// makes a moveable block longer, with zeros between the end and the position. It fails with STG_E_MEDIUMFULL,
// writing nothing, on a fixed block, on one that is locked and would have to move, and beyond
// MAX_BLOCK_BYTES. With `bDeleteOnRelease` the last Release frees the block. E_POINTER for a null `ppStream`,
// E_INVALIDARG for a bad block.
KX_API HRESULT CreateStreamOnHGlobal(HGLOBAL hBlock, int bDeleteOnRelease, IStream** ppStream);
// The block under a stream that CreateStreamOnHGlobal made; it stays the stream's. E_INVALIDARG for another
// stream.
KX_API HRESULT GetHGlobalFromStream(IStream* pStream, HGLOBAL* phBlock);
