#include "KXCritSection.h"

CKXCritSection::CKXCritSection()
{
    InitializeCriticalSection(&m_cs);
}

CKXCritSection::~CKXCritSection()
{
    DeleteCriticalSection(&m_cs);
}

void CKXCritSection::Lock() KX_NO_LOCK_ANALYSIS
{
    EnterCriticalSection(&m_cs);
}

void CKXCritSection::UnLock() KX_NO_LOCK_ANALYSIS
{
    LeaveCriticalSection(&m_cs);
}
