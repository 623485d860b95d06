#include "include/platform/Debug.h"

#include "tests/support/Child.h"
#include "tests/support/Host.h"

#include <atomic>
#include <cerrno>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using KXHost::AddDebugObserver;
using KXHost::RemoveDebugObserver;
using testing::ElementsAre;

// An observer for the length of a scope.
class Observer
{
public:
    explicit Observer(KXHost::DebugObserver call) : m_id(AddDebugObserver(std::move(call))) {}
    Observer(const Observer&) = delete;
    Observer& operator=(const Observer&) = delete;
    ~Observer() { RemoveDebugObserver(m_id); }
    int Id() const { return m_id; }

private:
    int m_id;
};

TEST(Debug, TellsEveryObserverInOrder)
{
    std::vector<std::string> heard;
    const auto hear = [&](const char* pszWho) {
        return [&heard, pszWho](std::string_view text) { heard.push_back(pszWho + std::string(text)); };
    };
    const Observer first(hear("1:"));
    const Observer none(nullptr);
    {
        const Observer second(hear("2:"));
        EXPECT_NE(second.Id(), first.Id());
        EXPECT_NE(none.Id(), 0);
        errno = 77;
        OutputDebugStringA("a\n");
        OutputDebugStringA(nullptr);
        EXPECT_EQ(errno, 77);
    }
    RemoveDebugObserver(4711);
    const std::string longText(100'000, 'x');
    OutputDebugStringA(longText.c_str());
    EXPECT_THAT(heard, ElementsAre("1:a\n", "2:a\n", "1:", "2:", "1:" + longText));
}

TEST(Debug, ObserverDoesNotHearItselfButOthersDo)
{
    std::string first, second;
    const Observer a([&](std::string_view text) {
        first += text;
        if (first.size() < 100) OutputDebugStringA("A");
    });
    const Observer b([&](std::string_view text) {
        second += text;
        if (second.size() < 100) OutputDebugStringA("B");
    });
    OutputDebugStringA("x");
    EXPECT_EQ(first, "xB");
    EXPECT_EQ(second, "Ax");
}

TEST(Debug, ThrowingObserverEndsNothing)
{
    const Observer thrower([](std::string_view) { throw 1; });
    const test::DebugText text;
    OutputDebugStringA("x");
    EXPECT_EQ(text.Text(), "x");
}

TEST(Debug, ObserversMayComeAndGoFromWithin)
{
    const auto held = std::make_shared<int>(0);
    int nCalls = 0, nSelf = 0, nOther = 0;
    nSelf = AddDebugObserver([&, held](std::string_view) {
        ++nCalls;
        RemoveDebugObserver(nSelf);
        nOther = AddDebugObserver([&](std::string_view) { nCalls += 10; });
    });
    EXPECT_EQ(held.use_count(), 2);
    OutputDebugStringA("x");
    EXPECT_EQ(nCalls, 1);
    EXPECT_EQ(held.use_count(), 1);
    OutputDebugStringA("x");
    EXPECT_EQ(nCalls, 11);
    RemoveDebugObserver(nOther);
}

TEST(Debug, RemoveWaitsForRunningCalls)
{
    std::atomic<int> nStage{0};
    const auto held = std::make_shared<int>(0);
    const int nId = AddDebugObserver([&, held](std::string_view) {
        nStage = 1;
        while (nStage != 2)
            std::this_thread::yield();
        for (int i = 0; i < 100; ++i)
            std::this_thread::yield();
        nStage = 3;
    });
    std::thread sender([] { OutputDebugStringA("x"); });
    while (nStage != 1)
        std::this_thread::yield();
    nStage = 2;
    RemoveDebugObserver(nId);
    EXPECT_EQ(nStage, 3);
    EXPECT_EQ(held.use_count(), 1);
    sender.join();
}

TEST(Debug, ObserversComeAndGoWhileThreadsSend)
{
    std::atomic<bool> bStop{false};
    std::vector<std::thread> senders;
    for (int t = 0; t < 3; ++t)
        senders.emplace_back([&] {
            while (!bStop)
                OutputDebugStringA("x");
        });
    for (int i = 0; i < 300; ++i) {
        auto alive = std::make_unique<std::atomic<int>>(0);
        const int nId = AddDebugObserver([p = alive.get()](std::string_view) { ++*p; });
        while (*alive == 0)
            std::this_thread::yield();
        RemoveDebugObserver(nId);
    }
    bStop = true;
    for (auto& sender : senders)
        sender.join();
}

TEST(Debug, StandardErrorOnDemandToTheLastStatic)
{
    const struct
    {
        std::vector<std::string> env;
        const char* pszExpected;
    } cases[] = {{{"KX_DEBUG=1"}, "main\nstatic\nobserved static\n"},
                 {{"KX_DEBUG=0"}, "observed static\n"},
                 {{}, "observed static\n"}};
    for (const auto& one : cases) {
        test::Child child("DebugChild", {}, one.env, true);
        EXPECT_EQ(child.Wait(), 0);
        EXPECT_EQ(child.ErrorText(), one.pszExpected);
    }
}

} // namespace
