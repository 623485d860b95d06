#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kx::tool {

// The words behind a command: options, which begin with "-", and the rest. An option that takes a value has
// it as the next word or behind "=".
class Arguments
{
public:
    Arguments(int nArgs, char** args) : m_words(args, args + nArgs) {}

    // Takes a flag; whether it was there.
    bool Flag(const std::string& name);
    // Takes an option with its value.
    std::optional<std::string> Value(const std::string& name);
    // Takes the next word that is no option.
    std::optional<std::string> Word();
    // The arguments that nobody has taken: empty when all was understood.
    std::string Rest() const { return m_words.empty() ? std::string() : m_words.front(); }

private:
    std::vector<std::string> m_words;
};

} // namespace kx::tool
