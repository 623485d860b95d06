#pragma once

#include <KXCommonClass.h>
#include <string>

namespace client {

// Writes a rectangle of a surface, from 0, 0 on, as a PNG file. False when that fails.
bool WritePng(HDC hDC, CSize size, const std::string& systemPath);

} // namespace client
