#include "include/platform/Crash.h"
#include "tests/support/Test.h"

namespace {

constexpr int kCame = 42;

void ExpectEnd(const char* pszName, int nEnd, const std::vector<std::string>& env = {})
{
    test::Child child("FilterChild", {pszName}, env, true);
    EXPECT_EQ(child.Wait(), nEnd) << pszName << '\n' << child.ErrorText();
}

TEST(Filter, EachCaseEndsAsItShould)
{
    const std::pair<int, std::vector<const char*>> cases[] = {
        {kCame,
         {"resumes", "handler_before", "record", "code_abort", "code_division", "code_trap", "code_overflow",
          "code_thread_overflow", "processes"}},
        {128 + SIGABRT, {"pass_on", "abort_again", "throw", "removed"}},
        {128 + SIGFPE, {"end", "crash_again", "crash_again_same"}},
        {128 + SIGILL, {"sent"}},
        {128 + SIGSEGV, {"hands_on"}},
    };
    for (const auto& [nEnd, names] : cases)
        for (const char* pszName : names)
            ExpectEnd(pszName, nEnd);
    for (const char* pszZone : {"CET-1CEST,M3.5.0,M10.5.0/3", "Asia/Shanghai", "XXX3:30YYY2,J60/0,J300/0"})
        ExpectEnd("times", kCame, {std::string("TZ=") + pszZone});
}

} // namespace
