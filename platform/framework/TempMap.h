#pragma once

#include "include/platform/Exception.h"
#include "platform/sync/PerThread.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <new>
#include <unordered_map>
#include <utility>

namespace kx::framework {

// The wrappers that FromHandle gives: one for each handle and thread, owning nothing, kept while the handle
// lives. `IsAlive` tells of a handle; dead ones are swept when the map has doubled, so it stays as small as
// what is used. For lack of memory a CMemoryException* is thrown.
template <class Wrapper, class Handle, bool (*IsAlive)(Handle), void (*Bind)(Wrapper&, Handle)>
class TempMap
{
public:
    ~TempMap()
    {
        for (auto& entry : m_wrappers)
            Bind(*entry.second, Handle{});
    }

    static Wrapper* OfThread(Handle handle)
    try {
        static sync::PerThread<TempMap> maps;
        return handle ? maps.Get().Get(handle) : nullptr;
    } catch (const std::bad_alloc&) {
        AfxThrowMemoryException();
    }

private:
    Wrapper* Get(Handle handle)
    {
        if (const auto found = m_wrappers.find(handle); found != m_wrappers.end()) return found->second.get();
        if (m_wrappers.size() >= m_nSweepAt) Sweep();
        auto wrapper = std::make_unique<Wrapper>();
        Wrapper* const made = wrapper.get();
        m_wrappers.emplace(handle, std::move(wrapper));
        Bind(*made, handle);
        return made;
    }

    void Sweep()
    {
        std::erase_if(m_wrappers, [](auto& entry) {
            if (IsAlive(entry.first)) return false;
            Bind(*entry.second, Handle{});
            return true;
        });
        m_nSweepAt = std::max<std::size_t>(64, m_wrappers.size() * 2);
    }

    std::unordered_map<Handle, std::unique_ptr<Wrapper>> m_wrappers;
    std::size_t m_nSweepAt = 64;
};

} // namespace kx::framework
