#pragma once

#include "include/platform/Com.h"

namespace test {

// The right to make objects, for the scope's length.
class Com
{
public:
    Com() { CoInitialize(nullptr); }
    Com(const Com&) = delete;
    Com& operator=(const Com&) = delete;
    ~Com() { CoUninitialize(); }
};

} // namespace test
