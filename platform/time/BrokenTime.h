#pragma once

#include "include/platform/String.h"

#include <chrono>
#include <cstdint>
#include <ctime>

// An instant's calendar fields. Any thread.

namespace kx::time {

// Local time of an instant; false when its year doesn't fit the record.
bool ToLocal(std::int64_t nTime, std::tm& fields) noexcept;

// The fields of a second of a day, without a zone. Heap-free.
std::tm FieldsOf(std::chrono::sys_days day, int nSecond) noexcept;

// The fields in a strftime form. Names are English, whatever the program's locale, so that the text is one of
// the code page. What is no conversion stays as it stands. The empty string for null, and for a form whose
// text passes every sensible length (widths in the thousands).
CString FormatFields(const std::tm& fields, const char* pszFormat);

} // namespace kx::time
