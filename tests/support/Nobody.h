#pragma once

#include "tests/support/Fixed.h"

#include <gtest/gtest.h>

#include <unistd.h>

namespace test {

// A user without rights for the scope's length, where the tests run as root.
struct Nobody : Fixed
{
    Nobody() { Become(65534); }
    ~Nobody() { Become(0); }

    void Become(uid_t user) const { EXPECT_EQ(bRoot ? seteuid(user) : 0, 0); }

    const bool bRoot = geteuid() == 0;
};

} // namespace test
