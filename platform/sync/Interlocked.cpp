#include "include/platform/Sync.h"

long InterlockedIncrement(volatile long* pValue) noexcept
{
    return __atomic_add_fetch(pValue, 1, __ATOMIC_SEQ_CST);
}

long InterlockedDecrement(volatile long* pValue) noexcept
{
    return __atomic_sub_fetch(pValue, 1, __ATOMIC_SEQ_CST);
}

long InterlockedExchange(volatile long* pValue, long nValue) noexcept
{
    return __atomic_exchange_n(pValue, nValue, __ATOMIC_SEQ_CST);
}
