#include "platform/profile/KeptIni.h"

namespace kx::profile {

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
