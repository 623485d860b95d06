#pragma once

#include "tests/support/Standard.h"

// The library's readers tell how they took a foreign file.
namespace corpora {

enum class Verdict
{
    Read,
    Refused,
    Wrong, // other than what lies beside the file says that it must be
    Unknown
};

struct Outcome
{
    Verdict verdict = Verdict::Read;
    std::string reason = {};
};

// Picks the readers by the file's name and first bytes. Pictures are drawn into `saved`, as PNG files, unless
// that is empty.
//
// The expected picture is looked for beside the file: `frames/NAME-N.png` or `frames/NAME.png` is what a
// frame must show; `expected.txt`, here or above, has lines of a file and the pictures below `expected` of
// which one must appear; `accepted.txt` and `refused.txt` list documents.
Outcome Read(const std::filesystem::path& file, const std::filesystem::path& saved);

Outcome ReadPicture(const std::filesystem::path& file, const std::filesystem::path& saved);

// A path as the library takes it.
std::string ToPlatform(const std::filesystem::path& file);

} // namespace corpora
