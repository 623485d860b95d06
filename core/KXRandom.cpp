#include "KXRandom.h"

#include "platform/Time.h"

#include <cstdint>
#include <cstdlib>

void CKXRandom::Init()
{
    std::srand(static_cast<unsigned>(CTime::GetCurrentTime().GetTime()));
}

int CKXRandom::GetRandom(int nMin, int nMax)
{
    const std::int64_t range = std::int64_t{nMax} - nMin + 1;
    if (range == 0) return nMin;
    std::int64_t number = std::rand();
    constexpr std::int64_t kNumbers = std::int64_t{RAND_MAX} + 1;
    if (range > kNumbers) number = number * kNumbers + std::rand();
    return static_cast<int>(number % range + nMin);
}
