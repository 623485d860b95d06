#pragma once

namespace kx {

// Counts what the host's LiveHandles tells: a base or member of every object that a public handle names.
class LiveHandle
{
public:
    LiveHandle() noexcept;
    LiveHandle(const LiveHandle&) = delete;
    LiveHandle& operator=(const LiveHandle&) = delete;
    ~LiveHandle();
};

} // namespace kx
