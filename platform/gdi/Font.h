#pragma once

#include "platform/gdi/FontFace.h"
#include "platform/gdi/Object.h"

#include <memory>

namespace kx::gdi {

class Font final : public Object
{
public:
    static constexpr Kind KIND = Kind::Font;

    explicit Font(const LOGFONTA& log);
    // A LOGFONTA.
    int Describe(int nSize, void* pBuffer) const override { return DescribeAs(m_log, nSize, pBuffer); }

    // The typeface, looked for at the first use.
    FontFace& Face() KX_REQUIRES(textLock);
    bool Underline() const noexcept { return m_log.lfUnderline != 0; }
    bool StrikeOut() const noexcept { return m_log.lfStrikeOut != 0; }

private:
    LOGFONTA m_log;
    std::shared_ptr<FontFace> m_face KX_GUARDED_BY(textLock);
};

} // namespace kx::gdi
