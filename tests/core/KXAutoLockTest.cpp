#include "KXAutoLock.h"
#include "KXAutoResHandle.h"

#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace {

TEST(AutoLock, GuardsAndNests)
{
    CKXCritSection section;
    int nCount = 0;
    std::vector<std::jthread> threads;
    for (int n = 0; n < 4; ++n)
        threads.emplace_back([&] {
            for (int k = 0; k < 5000; ++k) {
                const CKXAutoLock outer(&section);
                const CKXAutoLock inner(&section); // the owner may take it again
                ++nCount;
            }
        });
    threads.clear();
    EXPECT_EQ(nCount, 20000);
    const CKXAutoLock none(nullptr);
}

TEST(AutoLock, AssignmentMovesWhatIsGivenBack)
{
    CKXCritSection kept;
    CKXCritSection given;
    {
        CKXAutoLock first(&kept);
        const CKXAutoLock second(&given);
        given.Lock(); // for `first` to give back in place of `kept`
        first = second;
    }
    std::jthread([&] { const CKXAutoLock lock(&given); }).join();
    kept.UnLock();
    std::jthread([&] { const CKXAutoLock lock(&kept); }).join();
}

TEST(AutoResHandle, AssignmentCopiesWhatComesBack)
{
    int a = 0;
    int b = 0;
    const auto hBefore = AfxGetResourceHandle();
    const auto hOuter = reinterpret_cast<HINSTANCE>(&a);
    const auto hInner = reinterpret_cast<HINSTANCE>(&b);
    {
        CKXAutoResHandle outer(hOuter);
        const CKXAutoResHandle inner(hInner);
        outer = inner;
        EXPECT_EQ(AfxGetResourceHandle(), hInner);
    }
    EXPECT_EQ(AfxGetResourceHandle(), hOuter); // what `inner` had kept
    AfxSetResourceHandle(hBefore);
}

TEST(AutoResHandle, NestsByScope)
{
    int a = 0;
    int b = 0;
    const auto hBefore = AfxGetResourceHandle();
    const auto hOuter = reinterpret_cast<HINSTANCE>(&a);
    const auto hInner = reinterpret_cast<HINSTANCE>(&b);
    {
        const CKXAutoResHandle outer(hOuter);
        {
            const CKXAutoResHandle inner(hInner);
            EXPECT_EQ(AfxGetResourceHandle(), hInner);
        }
        EXPECT_EQ(AfxGetResourceHandle(), hOuter);
    }
    EXPECT_EQ(AfxGetResourceHandle(), hBefore);
}

} // namespace
