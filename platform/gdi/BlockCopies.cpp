#include "include/platform/Exception.h"
#include "include/platform/Host.h"
#include "platform/Errno.h"
#include "platform/Immortal.h"
#include "platform/gdi/DeviceContext.h"
#include "platform/sync/Mutex.h"

#include <atomic>
#include <memory>
#include <new>
#include <utility>

using namespace kx::gdi;

namespace {

constinit std::atomic<bool> g_bObserved{false};

struct Observer
{
    kx::sync::Mutex lock;
    std::shared_ptr<const KXHost::CopyObserver> call KX_GUARDED_BY(lock);
};

std::shared_ptr<const KXHost::CopyObserver> Current()
{
    Observer& observer = kx::The<Observer>();
    const kx::sync::MutexLock lock(observer.lock);
    return observer.call;
}

void TellCopyObserver(const KXHost::CopyRecord& copy) noexcept
{
    thread_local bool t_bTelling = false;
    if (std::exchange(t_bTelling, true)) return;
    try {
        if (const auto call = Current()) (*call)(copy);
    } catch (...) { // the copy has no part in it
    }
    t_bTelling = false;
}

// Tells the host's observer of a block copy; one load when there is none.
void TellCopy(const KXHost::CopyRecord& copy) noexcept
{
    if (g_bObserved.load(std::memory_order_acquire)) [[unlikely]]
        TellCopyObserver(copy);
}

// Runs a copy from a block of one surface to another; 0 if there is none by either handle.
template <class Copy>
int Between(HDC hDst, HDC hSrc, const Block& source, Copy&& copy)
try {
    const auto to = FindAs<DeviceContext>(hDst);
    const auto from = FindAs<DeviceContext>(hSrc);
    if (!to || !from) return 0;
    Canvas target = to->Paint();
    return copy(target, from->Read(AreaOf(source), target.lock));
} catch (...) {
    return kx::NoMemory();
}

int CopySame(HDC hDst, const Block& block, HDC hSrc, int xSrc, int ySrc)
{
    const Block source{xSrc, ySrc, block.cx, block.cy};
    return Between(hDst, hSrc, source, [&](const Canvas& to, const Canvas& from) {
        CopyBlock(to, block, from, xSrc, ySrc);
        return 1;
    });
}

bool HasNegativeSize(const Block& block) noexcept
{
    return block.cx < 0 || block.cy < 0;
}

// Whether a block lies on the surface as a whole.
bool IsWithin(const Block& block, const Canvas& canvas) noexcept
{
    const RECT placed = AreaOf(block);
    const RECT cut = Cut(placed, canvas.bounds);
    return cut == placed;
}

} // namespace

int BitBlt(HDC hDst, int x, int y, int cx, int cy, HDC hSrc, int xSrc, int ySrc, DWORD dwRop)
{
    TellCopy({KXHost::CopyKind::BitBlt, hDst, x, y, cx, cy, hSrc, xSrc, ySrc, cx, cy, 0});
    return dwRop == SRCCOPY ? CopySame(hDst, {x, y, cx, cy}, hSrc, xSrc, ySrc) : 0;
}

int StretchBlt(HDC hDst, int x, int y, int cx, int cy, HDC hSrc, int xSrc, int ySrc, int cxSrc, int cySrc,
               DWORD dwRop)
{
    TellCopy({KXHost::CopyKind::StretchBlt, hDst, x, y, cx, cy, hSrc, xSrc, ySrc, cxSrc, cySrc, 0});
    const Block block{x, y, cx, cy};
    const Block source{xSrc, ySrc, cxSrc, cySrc};
    if (dwRop != SRCCOPY || HasNegativeSize(block) || HasNegativeSize(source)) return 0;
    if (cx == cxSrc && cy == cySrc) return CopySame(hDst, block, hSrc, xSrc, ySrc);
    return Between(hDst, hSrc, source, [&](const Canvas& to, const Canvas& from) {
        ScaleBlock(to, block, from, source, std::nullopt);
        return 1;
    });
}

int TransparentBlt(HDC hDst, int x, int y, int cx, int cy, HDC hSrc, int xSrc, int ySrc, int cxSrc, int cySrc,
                   UINT clrKey)
{
    TellCopy({KXHost::CopyKind::TransparentBlt, hDst, x, y, cx, cy, hSrc, xSrc, ySrc, cxSrc, cySrc, clrKey});
    const Block block{x, y, cx, cy};
    const Block source{xSrc, ySrc, cxSrc, cySrc};
    if (HasNegativeSize(block) || HasNegativeSize(source)) return 0;
    return Between(hDst, hSrc, source, [&](const Canvas& to, const Canvas& from) {
        if (!IsWithin(source, from)) return 0;
        if (cx == cxSrc && cy == cySrc)
            CopyKeyedBlock(to, block, from, xSrc, ySrc, ToPixel(clrKey));
        else
            ScaleBlock(to, block, from, source, ToPixel(clrKey));
        return 1;
    });
}

void KXHost::SetCopyObserver(CopyObserver observer)
try {
    auto call = observer ? std::make_shared<const CopyObserver>(std::move(observer)) : nullptr;
    Observer& current = kx::The<Observer>();
    const kx::sync::MutexLock lock(current.lock);
    g_bObserved.store(call != nullptr, std::memory_order_release);
    current.call.swap(call);
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}
