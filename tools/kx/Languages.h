#pragma once

#include "internal/Finding.h"
#include "language/LanguageCheck.h"

#include <string>
#include <string_view>
#include <vector>

namespace kx::tool {

struct Language
{
    std::string id;
    CString strDir; // ends in a backslash
    std::vector<language::Text> texts;
    bool bRead = true; // whether it could be read at all
};

// All directories below `dir` as languages, by name, with what is wrong with their files.
std::vector<Language> ReadLanguages(const std::string& dir, const FindingSink& sink);

// The parts of a text that printf would take an argument for.
struct Placeholder
{
    std::size_t at = 0;
    std::size_t length = 0;
    std::string kind; // without what may differ between languages: "ld" of "%-8ld", "1$s" of "%1$5s"
};

std::vector<Placeholder> PlaceholdersOf(std::string_view text);

} // namespace kx::tool
