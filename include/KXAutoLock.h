#pragma once

#include "KXCritSection.h"

// Holds a lock for the length of a scope.
class KX_SCOPED_CAPABILITY CKXAutoLock
{
public:
    // Takes the lock; null is allowed and locks nothing. The lock stays the caller's and outlives the guard.
    explicit CKXAutoLock(CKXCritSection* lock) KX_ACQUIRE(lock) KX_UNCHECKED_LOCKING : m_pLock(lock)
    {
        if (m_pLock) m_pLock->Lock();
    }
    CKXAutoLock(const CKXAutoLock&) = delete;
    // A copy would give the lock back once too often.
    CKXAutoLock& operator=(const CKXAutoLock&) = delete;
    ~CKXAutoLock() KX_RELEASE() KX_UNCHECKED_LOCKING
    {
        if (m_pLock) m_pLock->UnLock();
    }

private:
    CKXCritSection* m_pLock;
};
