// The crash reporter finds the log's queue in a process by a note among the library's headers in memory,
// which holds up when the library's file has been replaced meanwhile.

#include "internal/Debug.h"

#include <atomic>

// The note points here, at the record's address.
extern "C" {
[[gnu::used, gnu::visibility("hidden")]] constinit std::atomic<const void*> kx_log_record{nullptr};
}

// An ELF note of name "KXLog", type 1. Its descriptor is the distance from itself to that variable, which no
// relocation is needed for.
__asm__(R"(
        .pushsection .note.kxlog, "a", %note
        .balign 4
        .long 2f - 1f
        .long 4f - 3f
        .long 1
1:      .asciz "KXLog"
2:      .balign 4
3:      .quad kx_log_record - 3b
4:      .balign 4
        .popsection
)");

void kx::debug::SetLogRecord(const void* pRecord) noexcept
{
    kx_log_record.store(pRecord, std::memory_order_release);
}
