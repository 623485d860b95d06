#pragma once

#include <string>

namespace test {

// Hands to `load` what is left of a file cut at each length.
template <class Load>
void ForEachCut(const std::string& file, Load&& load)
{
    for (std::size_t size = 0; size < file.size(); ++size)
        load(file.substr(0, size));
}
// Hands to `load` the file with each byte set to each of these values.
template <class Load>
void ForEachLie(const std::string& file, Load&& load, std::initializer_list<char> values = {'\0', '\xFF'})
{
    for (const char value : values)
        for (std::size_t at = 0; at < file.size(); ++at)
            load(std::string(file).replace(at, 1, 1, value));
}

} // namespace test
