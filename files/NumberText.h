#pragma once

#include "platform/String.h"

#include <string_view>

// Numbers as text, with a decimal point in every locale.

namespace kx::files {

// Reads as `atof` does: the number at the text's start, 0 for none, an infinity for one too large.
double ToDouble(std::string_view text);

// Writes as "%f" does.
CString ToFixedPoint(double dValue);

// Reads as `sscanf` reads a decimal number of that type: the number at the text's start behind white space.
// A number out of range gives the nearest one; an unsigned one takes a minus sign and wraps. The value stays
// as it was without a number.
void ScanNumber(std::string_view text, int& nValue);
void ScanNumber(std::string_view text, long& nValue);
void ScanNumber(std::string_view text, unsigned long& nValue);
void ScanNumber(std::string_view text, unsigned long long& nValue);

} // namespace kx::files
