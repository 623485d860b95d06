#include "platform/gdi/Font.h"

#include "platform/Errno.h"
#include "platform/gdi/Tools.h"
#include "platform/text/Conversion.h"

#include <algorithm>
#include <cstring>

namespace kx::gdi {

Font::Font(const LOGFONTA& log) : Object(KIND), m_log(log)
{
    m_log.lfFaceName[sizeof(m_log.lfFaceName) - 1] = '\0';
}

FontFace& Font::Face()
{
    if (!m_face) {
        FaceRequest request;
        request.family = text::ToUtf8(m_log.lfFaceName).value_or("");
        request.weight = m_log.lfWeight <= 0 ? FW_NORMAL : std::min<LONG>(m_log.lfWeight, 1000);
        request.italic = m_log.lfItalic != 0;
        m_face = FontFace::For(request, m_log.lfHeight);
    }
    return *m_face;
}

std::shared_ptr<Object> MakeStockFont()
{
    LOGFONTA log{};
    log.lfHeight = -12;
    return std::make_shared<Font>(log);
}

} // namespace kx::gdi

HFONT CreateFontIndirectA(const LOGFONTA* pFont)
try {
    return pFont ? static_cast<HFONT>(kx::gdi::Add(std::make_shared<kx::gdi::Font>(*pFont))) : nullptr;
} catch (...) {
    return kx::NoMemory();
}
