#pragma once

#include "KXCritSection.h"

// Holds a lock for the length of a scope.
class KX_SCOPED_CAPABILITY CKXAutoLock
{
public:
    // Takes the lock; null is allowed and locks nothing. The lock stays the caller's and outlives the guard.
    explicit CKXAutoLock(CKXCritSection* lock) KX_ACQUIRE(lock) KX_NO_LOCK_ANALYSIS : m_pLock(lock)
    {
        if (m_pLock) m_pLock->Lock();
    }
    CKXAutoLock(const CKXAutoLock&) = delete;
    // Takes over which lock is given back at the end; neither takes nor gives back one now, so both guards
    // are to be of locks that the thread holds often enough.
    CKXAutoLock& operator=(const CKXAutoLock&) = default;
    ~CKXAutoLock() KX_RELEASE() KX_NO_LOCK_ANALYSIS
    {
        if (m_pLock) m_pLock->UnLock();
    }

private:
    CKXCritSection* m_pLock;
};
