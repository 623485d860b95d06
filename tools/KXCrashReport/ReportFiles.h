#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace kx::report {

// The place of a report: the directory `dumps`, in whatever case, beside the program that was started,
// under the name that the dump's path ends in, since the crash filter joins both paths from the same
// directory.
struct ReportFiles
{
    std::string dump;
    std::string text;
};
ReportFiles PlaceOf(std::string_view program, std::string_view dump);

// Writes a file that only its owner may read, whole or not at all; `write` gets its descriptor and tells
// whether all went well.
bool WriteWhole(const std::string& path, const std::function<bool(int)>& write);

} // namespace kx::report
