#include "KXAutoLock.h"
#include "KXAutoResHandle.h"
#include "tests/support/Test.h"

namespace {

TEST(AutoLock, GuardsAndNests)
{
    CKXCritSection section;
    int nCount = 0;
    test::RunThreads(4, [&](int) {
        for (int k = 0; k < 5000; ++k) {
            const CKXAutoLock outer(&section);
            const CKXAutoLock inner(&section); // the owner may take it again
            ++nCount;
        }
    });
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

// The inner one gives back what it found; so does one to which that was assigned.
TEST(AutoResHandle, NestsAndAssignmentCopiesWhatComesBack)
{
    int a = 0;
    int b = 0;
    const auto hBefore = AfxGetResourceHandle();
    const auto hOuter = reinterpret_cast<HINSTANCE>(&a);
    const auto hInner = reinterpret_cast<HINSTANCE>(&b);
    for (const bool bAssign : {false, true}) {
        {
            CKXAutoResHandle outer(hOuter);
            {
                const CKXAutoResHandle inner(hInner);
                EXPECT_EQ(AfxGetResourceHandle(), hInner);
                if (bAssign) outer = inner;
            }
            EXPECT_EQ(AfxGetResourceHandle(), hOuter);
        }
        EXPECT_EQ(AfxGetResourceHandle(), bAssign ? hOuter : hBefore);
        AfxSetResourceHandle(hBefore);
    }
}

} // namespace
