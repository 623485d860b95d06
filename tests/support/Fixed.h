#pragma once

namespace test {

// Can't be copied, and neither can what derives from it.
class Fixed
{
public:
    Fixed() = default;
    Fixed(const Fixed&) = delete;
    Fixed& operator=(const Fixed&) = delete;
};

} // namespace test
