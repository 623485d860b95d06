#include "platform/services/systemd/UnitText.h"

#include "include/platform/Error.h"
#include "platform/files/Path.h"
#include "platform/text/CharWalk.h"
#include "platform/text/Conversion.h"

#include <algorithm>
#include <sys/stat.h>

namespace kx::services::systemd {

namespace {

constexpr std::size_t kMaxBinaryPath = 32'767;
constexpr std::string_view kSpace = " \t\r\n\v\f";

struct Parts
{
    std::string_view program;
    std::string_view rest;
};

// Double quotes and white space are no trail bytes, so bytes may be looked at one by one.
Parts SplitProgram(std::string_view line)
{
    const bool bQuoted = line.starts_with('"');
    if (bQuoted) line.remove_prefix(1);
    const std::size_t end = std::min(bQuoted ? line.find('"') : line.find_first_of(kSpace), line.size());
    return {line.substr(0, end), line.substr(std::min(end + bQuoted, line.size()))};
}

bool IsFile(const std::string& path) noexcept
{
    struct stat info = {};
    return stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

// The program by a full path alone: a unit is started in another directory.
DWORD FindProgram(std::string_view program, std::string& path)
{
    const CString spelled(program);
    const auto resolved = files::Resolve(spelled);
    if (!resolved) return GetLastError();
    const bool bRooted = spelled[0] == '\\' || spelled[0] == '/';
    if (!resolved->absolute && !bRooted) return ERROR_INVALID_PARAMETER;
    path = resolved->system;
    const bool bNameable = std::none_of(path.begin(), path.end(), [](char ch) {
        return static_cast<unsigned char>(ch) < ' ' || ch == '\x7F' || ch == '"' || ch == '\'' || ch == '\\';
    });
    return bNameable && text::FromUtf8(path) ? ERROR_SUCCESS : ERROR_INVALID_NAME;
}

// Appends a command line's arguments: white space parts them but within double quotes, and backslashes are
// plain but before a double quote, where two of them are one and an odd one makes the quote plain.
void SplitArguments(std::string_view line, std::vector<std::string>& arguments)
{
    std::size_t at = 0;
    while ((at = line.find_first_not_of(kSpace, at)) < line.size()) {
        std::string argument;
        bool bQuoted = false;
        for (; at < line.size() && (bQuoted || kSpace.find(line[at]) == kSpace.npos); ++at) {
            const std::size_t past = std::min(line.find_first_not_of('\\', at), line.size());
            const std::size_t slashes = past - at;
            const bool bQuote = past < line.size() && line[past] == '"';
            if (slashes > 0) {
                argument.append(bQuote ? slashes / 2 : slashes, '\\');
                at = past - 1;
                if (!bQuote) continue;
                at = past;
            }
            if (!bQuote)
                argument += line[at];
            else if (slashes % 2 == 1)
                argument += '"';
            else
                bQuoted = !bQuoted;
        }
        arguments.push_back(std::move(argument));
    }
}

} // namespace

DWORD ParseBinaryPath(const CString& binaryPath, std::vector<std::string>& command)
{
    const std::string_view line = text::Trim(binaryPath.View());
    if (line.empty() || line.size() > kMaxBinaryPath) return ERROR_INVALID_PARAMETER;
    std::string program;
    // A path with spaces that nobody quoted, as it is and never a part of it.
    if (FindProgram(line, program) == ERROR_SUCCESS && IsFile(program)) {
        command.assign({std::move(program)});
        return ERROR_SUCCESS;
    }
    const Parts parts = SplitProgram(line);
    const auto rest = text::ToUtf8(parts.rest);
    if (!rest || parts.program.empty()) return ERROR_INVALID_PARAMETER;
    if (const DWORD error = FindProgram(parts.program, program)) return error;
    command.assign({std::move(program)});
    SplitArguments(*rest, command);
    return ERROR_SUCCESS;
}

} // namespace kx::services::systemd
