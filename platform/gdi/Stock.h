#pragma once

#include "platform/gdi/Object.h"

namespace kx::gdi {

// A stock object by its number (WHITE_BRUSH ... DEFAULT_GUI_FONT), null for another. Never destroyed.
std::shared_ptr<Object> StockObject(int nIndex);

// What the text operations supply: the font behind SYSTEM_FONT and DEFAULT_GUI_FONT.
std::shared_ptr<Object> MakeStockFont(int nIndex);

} // namespace kx::gdi
