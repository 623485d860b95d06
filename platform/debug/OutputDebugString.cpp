#include "include/platform/Debug.h"
#include "include/platform/Error.h"
#include "include/platform/Exception.h"
#include "include/platform/Host.h"
#include "internal/Debug.h"
#include "platform/Errno.h"
#include "platform/Immortal.h"
#include "platform/sync/Fork.h"
#include "platform/sync/Mutex.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace kx::debug {

namespace {

enum class Kind
{
    Described, // a line that the library's classes are known to send: for every observer
    Diagnostic // for the observers that asked for diagnostics
};

// One observer and how many calls of it run. After it has been removed no call begins.
class Observer
{
public:
    Observer(int nId, KXHost::DebugObserver call, bool bDiagnostics)
        : m_nId(nId), m_bDiagnostics(bDiagnostics), m_call(std::move(call))
    {
    }

    int Id() const noexcept { return m_nId; }
    bool WantsDiagnostics() const noexcept { return m_bDiagnostics; }

    void Tell(std::string_view text) noexcept
    {
        if (!(m_state.fetch_add(kOneCall) & kRemoved)) {
            try {
                m_call(text);
            } catch (...) { // the sender has no part in it
            }
        }
        if (m_state.fetch_sub(kOneCall) == kOneCall + kRemoved) m_state.notify_all();
    }

    void Remove() noexcept { m_state.fetch_or(kRemoved); }

    // After Remove: returns when no call runs, with what the observer held freed.
    void Finish() noexcept
    {
        for (unsigned state; (state = m_state.load()) != kRemoved;)
            m_state.wait(state);
        m_call = nullptr;
    }

private:
    static constexpr unsigned kRemoved = 1;
    static constexpr unsigned kOneCall = 2;

    const int m_nId;
    const bool m_bDiagnostics;
    KXHost::DebugObserver m_call;
    std::atomic<unsigned> m_state{0};
};

using List = std::vector<std::shared_ptr<Observer>>;

constinit std::atomic<bool> g_bAny{false};
constinit std::atomic<bool> g_bAnyDiagnostics{false};

struct Registry
{
    sync::Mutex lock;
    std::shared_ptr<const List>
        list KX_GUARDED_BY(lock) = std::make_shared<List>(); // never changed, only replaced
    int nLastId KX_GUARDED_BY(lock) = 0;

    void Replace(std::shared_ptr<const List> with) noexcept KX_REQUIRES(lock)
    {
        list = std::move(with);
        g_bAny.store(!list->empty(), std::memory_order_release);
        g_bAnyDiagnostics.store(
            std::any_of(list->begin(), list->end(), [](const auto& one) { return one->WantsDiagnostics(); }),
            std::memory_order_release);
    }
};

[[maybe_unused]] const bool g_atFork =
    sync::LockAtFork(sync::ForkOrder::Debug, []() -> sync::Mutex& { return The<Registry>().lock; });

// The observers whose calls are running on this thread, innermost first.
struct Call
{
    const Observer* observer;
    const Call* outer;
};
constinit thread_local const Call* t_calls = nullptr;

bool IsCalled(const Observer& observer) noexcept
{
    for (const Call* call = t_calls; call; call = call->outer)
        if (call->observer == &observer) return true;
    return false;
}

// Gives a text to the host's observers of its kind, oldest first, on this thread. A few nanoseconds when
// there is none.
void TellObservers(std::string_view text, Kind kind)
{
    const std::atomic<bool>& bAny = kind == Kind::Diagnostic ? g_bAnyDiagnostics : g_bAny;
    if (!bAny.load(std::memory_order_acquire)) return;
    Registry& registry = The<Registry>();
    std::shared_ptr<const List> list;
    {
        const sync::MutexLock lock(registry.lock);
        list = registry.list;
    }
    for (const auto& observer : *list) {
        if (kind == Kind::Diagnostic && !observer->WantsDiagnostics()) continue;
        if (IsCalled(*observer)) continue;
        const Call call{observer.get(), t_calls};
        t_calls = &call;
        observer->Tell(text);
        t_calls = call.outer;
    }
}

} // namespace

} // namespace kx::debug

int KXHost::AddDebugObserver(DebugObserver observer, bool bDiagnostics)
try {
    using namespace kx::debug;
    Registry& registry = kx::The<Registry>();
    const kx::sync::MutexLock lock(registry.lock);
    const int nId = registry.nLastId == INT32_MAX ? 1 : registry.nLastId + 1;
    auto list = std::make_shared<List>(*registry.list);
    if (observer) list->push_back(std::make_shared<Observer>(nId, std::move(observer), bDiagnostics));
    registry.nLastId = nId;
    registry.Replace(std::move(list));
    return nId;
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

void KXHost::RemoveDebugObserver(int nObserver)
try {
    using namespace kx::debug;
    Registry& registry = kx::The<Registry>();
    std::shared_ptr<Observer> removed;
    {
        const kx::sync::MutexLock lock(registry.lock);
        auto list = std::make_shared<List>(*registry.list);
        const auto found =
            std::find_if(list->begin(), list->end(), [&](const auto& one) { return one->Id() == nObserver; });
        if (found == list->end()) return;
        removed = *found;
        list->erase(found);
        registry.Replace(std::move(list));
    }
    removed->Remove();
    if (!t_calls) removed->Finish();
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

using kx::debug::Kind;

namespace {

// KX_DEBUG is read as the library is loaded, before threads run that could change the environment: a
// copy, as the environment's own text may change.
std::string_view Asked() noexcept
{
    static const char* const psz = [] {
        const char* const pszSet = std::getenv("KX_DEBUG");
        return pszSet ? strdup(pszSet) : nullptr;
    }();
    return psz ? psz : "";
}

[[maybe_unused]] const bool g_bAsked = !Asked().empty();

bool IsAsked(std::string_view family) noexcept
{
    for (std::string_view rest = Asked(); !rest.empty();) {
        const std::size_t nEnd = std::min(rest.find(','), rest.size());
        if (rest.substr(0, nEnd) == family) return true;
        rest.remove_prefix(std::min(nEnd + 1, rest.size()));
    }
    return Asked() == "1";
}

// One call for the whole text, past every stdio lock and buffer, so that lines of several threads stay whole
// and the last line before a crash is out.
void WriteStandardError(std::string_view text)
{
    while (!text.empty()) {
        const ssize_t nWritten =
            kx::RetryEintr([&] { return write(STDERR_FILENO, text.data(), text.size()); });
        if (nWritten <= 0) return;
        text.remove_prefix(static_cast<std::size_t>(nWritten));
    }
}

// A diagnostic as it is sent: cut to its room with the end of the line, and without control characters.
using Line = std::array<char, 1023>;

std::string_view Format(Line& line, const char* pszFamily, const char* pszFormat, va_list args) noexcept
    __attribute__((format(printf, 3, 0)));
std::string_view Format(Line& line, const char* pszFamily, const char* pszFormat, va_list args) noexcept
{
    const auto fitting = [](int n, std::size_t nRoom) {
        return n > 0 ? std::min(static_cast<std::size_t>(n), nRoom - 1) : 0;
    };
    std::size_t length = fitting(std::snprintf(line.data(), line.size(), "%s: ", pszFamily), line.size());
    const std::size_t nRoom = line.size() - length;
    length += fitting(std::vsnprintf(line.data() + length, nRoom, pszFormat, args), nRoom);
    std::replace_if(
        line.data(), line.data() + length,
        [](char ch) { return static_cast<unsigned char>(ch) < ' ' || ch == 0x7F; }, '?');
    line[length] = '\n';
    return {line.data(), length + 1};
}

thread_local int t_nQuiet = 0;
thread_local const char* t_pszStream = "a stream";

} // namespace

void OutputDebugStringA(const char* pszText)
{
    const int nSaved = errno;
    const std::string_view text = pszText ? pszText : "";
    if (Asked() == "1") WriteStandardError(text);
    kx::debug::TellObservers(text, Kind::Described);
    errno = nSaved;
}

kx::debug::Quiet::Quiet() noexcept
{
    ++t_nQuiet;
}

kx::debug::Quiet::~Quiet()
{
    --t_nQuiet;
}

kx::debug::StreamName::StreamName(const char* pszFile) noexcept
    : m_pszBefore(std::exchange(t_pszStream, pszFile))
{
}

kx::debug::StreamName::~StreamName()
{
    t_pszStream = m_pszBefore;
}

const char* kx::debug::StreamName::Get() noexcept
{
    return t_pszStream;
}

bool kx::debug::Wants(std::string_view family) noexcept
{
    return (g_bAnyDiagnostics.load(std::memory_order_acquire) || IsAsked(family)) && t_nQuiet == 0;
}

void kx::debug::Tell(const char* pszFamily, const char* pszFormat, ...) noexcept
{
    if (!Wants(pszFamily)) return;
    const int nErrno = errno;
    const DWORD dwError = GetLastError();
    Line line;
    va_list args;
    va_start(args, pszFormat);
    const std::string_view text = Format(line, pszFamily, pszFormat, args);
    va_end(args);
    if (IsAsked(pszFamily)) WriteStandardError(text);
    TellObservers(text, Kind::Diagnostic);
    SetLastError(dwError);
    errno = nErrno;
}
