#pragma once

#include "KXExport.h"
#include "internal/Finding.h"

#include <optional>
#include <string_view>
#include <vector>

namespace kx::language {

// A line of `Data.txt`, white space around both parts removed.
struct DataLine
{
    std::string_view key;
    std::string_view value; // with its escapes
};

// Nothing for a line without "=".
std::optional<DataLine> SplitLine(std::string_view line);

// A text of a language, with its place in `Data.txt`.
struct Text
{
    CString strKey;
    CString strValue; // with its escapes
    int nLine = 0;
    int nColumn = 0; // of the value, in characters from 1
};

// Reads the language in a directory, which ends in a backslash: appends its texts as loading takes them, in
// the file's order and the first of equal keys, and tells what is wrong with `Lan.ini` and `Data.txt`. False
// if `Data.txt` can't be read. Throws nothing but a CMemoryException*.
KX_API bool ReadLanguage(const CString& strDir, std::vector<Text>& texts, const FindingSink& sink);

} // namespace kx::language
