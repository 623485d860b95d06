#include "include/platform/Crash.h"
#include "tests/support/Child.h"

#include <csignal>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

TEST(Filter, EachCaseEndsAsItShould)
{
    constexpr int kCame = 42;
    struct Case
    {
        const char* pszName;
        int nEnd;
        std::vector<std::string> env;
    };
    const Case cases[] = {
        {"end", 128 + SIGFPE, {}},
        {"sent", 128 + SIGILL, {}},
        {"pass_on", 128 + SIGABRT, {}},
        {"resumes", kCame, {}},
        {"handler_before", kCame, {}},
        {"hands_on", 128 + SIGSEGV, {}},
        {"record", kCame, {}},
        {"code_abort", kCame, {}},
        {"code_division", kCame, {}},
        {"code_trap", kCame, {}},
        {"code_overflow", kCame, {}},
        {"code_thread_overflow", kCame, {}},
        {"crash_again", 128 + SIGFPE, {}},
        {"crash_again_same", 128 + SIGFPE, {}},
        {"abort_again", 128 + SIGABRT, {}},
        {"throw", 128 + SIGABRT, {}},
        {"removed", 128 + SIGABRT, {}},
        {"times", kCame, {"TZ=CET-1CEST,M3.5.0,M10.5.0/3"}},
        {"times", kCame, {"TZ=Asia/Shanghai"}},
        {"times", kCame, {"TZ=XXX3:30YYY2,J60/0,J300/0"}},
        {"processes", kCame, {}},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(one.pszName);
        test::Child child("FilterChild", {one.pszName}, one.env, true);
        EXPECT_EQ(child.Wait(), one.nEnd) << child.ErrorText();
    }
}

} // namespace
