#include "platform/LiveHandles.h"

#include "include/platform/Host.h"

#include <atomic>

namespace {
std::atomic<int> g_live{0};
}

kx::LiveHandle::LiveHandle() noexcept
{
    g_live.fetch_add(1, std::memory_order_relaxed);
}

kx::LiveHandle::~LiveHandle()
{
    g_live.fetch_sub(1, std::memory_order_relaxed);
}

int KXHost::LiveHandles()
{
    return g_live.load(std::memory_order_relaxed);
}
