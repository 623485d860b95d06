#pragma once

#include "include/platform/CodePage.h"
#include "include/platform/Host.h"
#include "tests/support/Standard.h"

#include <gtest/gtest.h>

// Scopes that steer the platform layer and put it back as it was.
namespace test {

class VirtualClock : Fixed
{
public:
    explicit VirtualClock(std::int64_t wall = 1'700'000'000,
                          KXHost::VirtualSleep sleep = KXHost::VirtualSleep::Blocks)
    {
        KXHost::UseVirtualClock(wall, sleep);
    }
    ~VirtualClock() { KXHost::UseRealClock(); }
};

class CodePage : Fixed
{
public:
    explicit CodePage(UINT page) : m_old(GetACP()) { KXHost::SetCodePage(page); }
    ~CodePage() { KXHost::SetCodePage(m_old); }

private:
    UINT m_old;
};

// Collects what goes to the debug channel.
class DebugText : Fixed
{
public:
    explicit DebugText(bool bDiagnostics = false)
        : m_id(KXHost::AddDebugObserver(
              [this](std::string_view text) {
                  std::lock_guard lock(m_lock);
                  m_text += text;
              },
              bDiagnostics))
    {
    }
    ~DebugText() { KXHost::RemoveDebugObserver(m_id); }

    std::string Text() const
    {
        std::lock_guard lock(m_lock);
        return m_text;
    }

private:
    mutable std::mutex m_lock;
    std::string m_text;
    int m_id;
};

// Fails the test when the scope leaves handles behind.
class NoLeak : Fixed
{
public:
    ~NoLeak() { EXPECT_EQ(KXHost::LiveHandles(), m_before); }

private:
    int m_before = KXHost::LiveHandles();
};

// Each test of it leaves no handle behind.
class LeakTest : public testing::Test
{
    const NoLeak m_noLeak;
};

} // namespace test
