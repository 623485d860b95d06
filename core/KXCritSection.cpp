#include "KXCritSection.h"

CKXCritSection::CKXCritSection()
{
    InitializeCriticalSection(&m_cs);
}

CKXCritSection::~CKXCritSection()
{
    DeleteCriticalSection(&m_cs);
}

void CKXCritSection::Lock() KX_UNCHECKED_LOCKING
{
    EnterCriticalSection(&m_cs);
}

void CKXCritSection::UnLock() KX_UNCHECKED_LOCKING
{
    LeaveCriticalSection(&m_cs);
}
