#pragma once

#include "KXExport.h"
#include "platform/Sync.h"
#include "platform/ThreadSafety.h"

// The lock that every locked class of the library holds. Its owner may take it again; each Lock needs its
// UnLock. Not copyable: a copy of a lock in use means nothing.
class KX_API KX_CAPABILITY("CKXCritSection") CKXCritSection
{
public:
    // A lock that nobody holds.
    CKXCritSection();
    CKXCritSection(const CKXCritSection&) = delete;
    CKXCritSection& operator=(const CKXCritSection&) = delete;
    // The lock is free by then.
    ~CKXCritSection();

    // Takes the lock, waiting for it without a time-out. Any thread.
    void Lock() KX_ACQUIRE();

    // Gives it back. By the thread that took it.
    void UnLock() KX_RELEASE();

private:
    CRITICAL_SECTION m_cs;
};
