#include "include/platform/Crash.h"
#include "tests/support/Test.h"

#include <csignal>

namespace {

TEST(Filter, EachCaseEndsAsItShould)
{
    constexpr int kCame = 42;
    const std::tuple<const char*, int, std::vector<std::string>> cases[] = {
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
    for (const auto& [pszName, nEnd, env] : cases) {
        SCOPED_TRACE(pszName);
        test::Child child("FilterChild", {pszName}, env, true);
        EXPECT_EQ(child.Wait(), nEnd) << child.ErrorText();
    }
}

} // namespace
