// Writes into an INI file: ProfileWriterChild FILE PREFIX COUNT sets COUNT keys, each once; with COUNT 0 it
// sets one key to two long texts in turn until it is killed.

#include "include/platform/Profile.h"

#include <cstdlib>
#include <string>

int main(int argc, char** argv)
{
    if (argc != 4) return 2;
    const std::string prefix = argv[2];
    const int count = std::atoi(argv[3]);
    for (int n = 0; n < count; ++n) {
        const std::string number = std::to_string(n);
        if (!WritePrivateProfileStringA("S", (prefix + number).c_str(), number.c_str(), argv[1])) return 1;
    }
    for (int n = 0; count == 0; ++n) {
        const std::string text(10'000, n % 2 == 0 ? 'A' : 'B');
        if (!WritePrivateProfileStringA("S", prefix.c_str(), text.c_str(), argv[1])) return 1;
    }
    return 0;
}
