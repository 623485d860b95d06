#pragma once

#include "include/platform/Com.h"
#include "tests/support/Fixed.h"

namespace test {

// The right to make objects, for the scope's length.
class Com : Fixed
{
public:
    Com() { CoInitialize(nullptr); }
    ~Com() { CoUninitialize(); }
};

} // namespace test
