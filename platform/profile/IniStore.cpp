#include "platform/profile/IniStore.h"

#include "internal/IniSnapshot.h"
#include "platform/Errno.h"
#include "platform/Immortal.h"
#include "platform/files/Path.h"
#include "platform/files/WholeFile.h"
#include "platform/profile/IniCache.h"
#include "platform/sync/Fork.h"

#include <utility>

namespace kx::profile {

// The file that a thread read last while its IniSnapshot lives.
struct KeptIni
{
    std::string name;
    unsigned generation = 0; // of paths and code page
    IniPtr ini;

    // The thread's own; null without an IniSnapshot. Never destroyed with the thread, so that statics may
    // read.
    static KeptIni*& OfThread() noexcept;

    IniPtr Find(std::string_view wanted, unsigned nowGeneration) const noexcept
    {
        return generation == nowGeneration && name == wanted ? ini : nullptr;
    }
};

namespace {

[[maybe_unused]] const bool g_atFork =
    sync::LockAtFork(sync::ForkOrder::Profile, []() -> sync::Mutex& { return The<IniCache>().Lock(); });

IniPtr IniOf(CachedIniPtr file)
{
    const ParsedIni* ini = &file->ini;
    return {std::move(file), ini};
}

IniPtr Load(std::string_view name, const std::string& path, unsigned generation)
{
    const timespec now = FileTime();
    files::FileContent file;
    if (const DWORD error = files::ReadWholeFile(path, kMaxFile, file)) {
        SetLastError(error);
        return nullptr;
    }
    auto loaded =
        std::make_shared<const CachedIni>(path, file.status, now, std::move(file.bytes), generation);
    The<IniCache>().Put(name, loaded);
    return IniOf(std::move(loaded));
}

IniPtr ReadAt(const std::string& path, unsigned generation)
{
    if (auto file = The<IniCache>().Find(path); file && file->IsCurrent(generation))
        return IniOf(std::move(file));
    return Load(path, path, generation);
}

bool HasDrive(std::string_view path) noexcept
{
    return path.size() > 1 && path[1] == ':';
}

// The way of a path through its directories costs more than all the rest, so a file is kept by the text of
// its path where that text alone names it: an exact spelling wins over every other as long as it is there.
// Other files are kept by their Linux path, which never looks like one of those texts.
IniPtr ReadNow(std::string_view spelled, const char* pszFile, unsigned generation)
{
    if (HasDrive(spelled))
        if (auto file = The<IniCache>().Find(spelled); file && file->IsCurrent(generation))
            return IniOf(std::move(file));

    const auto resolved = files::Resolve(pszFile);
    if (!resolved) return nullptr;
    if (resolved->absolute && resolved->exact) return Load(spelled, resolved->system, generation);
    return ReadAt(resolved->system, generation);
}

} // namespace

IniPtr Read(const char* pszFile)
{
    const std::string_view spelled = pszFile ? std::string_view(pszFile) : std::string_view();
    const unsigned generation = files::Generation();
    KeptIni* const kept = KeptIni::OfThread();
    if (!kept || !HasDrive(spelled)) return ReadNow(spelled, pszFile, generation);
    if (auto ini = kept->Find(spelled, generation)) return ini;
    auto ini = ReadNow(spelled, pszFile, generation);
    kept->name = spelled;
    kept->generation = generation;
    kept->ini = ini;
    return ini;
}

IniPtr ReadSystem(const std::string& path)
{
    return ReadAt(path, files::Generation());
}

DWORD Update(const std::string& path, mode_t mode, const Edit& edit)
{
    if (KeptIni* kept = KeptIni::OfThread()) kept->ini = nullptr;
    files::FileReplacement replacement;
    if (const DWORD error = replacement.Begin(path, mode)) return error;
    files::FileContent file;
    const DWORD error = files::ReadWholeFile(replacement.Target(), kMaxFile, file);
    if (error != ERROR_SUCCESS && error != ERROR_FILE_NOT_FOUND) return error;
    const auto edited = edit(file.bytes);
    if (!edited) return ERROR_INVALID_PARAMETER;
    if (*edited == file.bytes) return ERROR_SUCCESS;
    if (edited->size() > kMaxFile) return ERROR_DISK_FULL;
    replacement.Write(edited->data(), edited->size());
    return replacement.Commit();
}

KeptIni*& KeptIni::OfThread() noexcept
{
    thread_local KeptIni* kept = nullptr;
    return kept;
}

IniSnapshot::IniSnapshot()
{
    if (KeptIni::OfThread()) return;
    m_kept = std::make_unique<KeptIni>();
    KeptIni::OfThread() = m_kept.get();
}

IniSnapshot::~IniSnapshot()
{
    if (m_kept) KeptIni::OfThread() = nullptr;
}

} // namespace kx::profile
