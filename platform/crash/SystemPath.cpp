#include "platform/crash/HeapFree.h"

#include "include/platform/CodePage.h"
#include "include/platform/Types.h"
#include "platform/Errno.h"
#include "platform/files/Drives.h"
#include "platform/files/Path.h"
#include "platform/text/Conversion.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <iconv.h>
#include <new>
#include <string_view>

namespace kx::crash {

namespace {

using Utf8Text = FixedText<4 * MAX_PATH>;

const iconv_t kNone = reinterpret_cast<iconv_t>(-1);
iconv_t g_fromGbk = kNone; // an open converter converts without heap or lock

bool ToUtf8(std::string_view text, Utf8Text& utf8) noexcept
{
    if (GetACP() == CP_UTF8 || text::IsAscii(text)) return (utf8 << text).Fits();
    if (g_fromGbk == kNone) return false;
    std::array<char, 4 * MAX_PATH> converted;
    char* from = const_cast<char*>(text.data());
    char* to = converted.data();
    std::size_t left = text.size();
    std::size_t room = converted.size();
    iconv(g_fromGbk, nullptr, nullptr, nullptr, nullptr);
    if (iconv(g_fromGbk, &from, &left, &to, &room) == static_cast<std::size_t>(-1)) return false;
    return (utf8 << std::string_view(converted.data(), converted.size() - room)).Fits();
}

// Takes the drive off a path and puts its root's directory in its place; true unless there is none.
// `bAbsolute` tells of a path that begins at a root.
bool TakeRoot(std::string_view& path, PathText& system, bool& bAbsolute) noexcept
{
    char drive = '\0';
    if (path.size() >= 2 && files::IsLetter(path[0]) && path[1] == ':') {
        drive = path[0];
        path.remove_prefix(2);
    }
    bAbsolute = !path.empty() && files::IsSeparator(path[0]);
    if (!bAbsolute) return drive == '\0';
    std::array<char, PATH_MAX> root;
    const auto length = files::PeekRoot(drive ? drive : 'C', root);
    return length && (system << std::string_view(root.data(), *length)).Fits();
}

// Adds a path's components as the ordinary resolution does: `.` says nothing, `..` goes up in the text, never
// above the root.
void Append(std::string_view path, bool bAbsolute, PathText& system) noexcept
{
    const std::size_t root = system.Length();
    while (!path.empty()) {
        const auto end = std::find_if(path.begin(), path.end(), files::IsSeparator);
        const std::string_view name(path.begin(), end);
        path.remove_prefix(std::min(name.size() + 1, path.size()));
        if (name.empty() || name == ".") continue;
        if (name == ".." && bAbsolute) {
            if (system.Length() > root) system.Truncate(system.View().rfind('/'));
        } else {
            if (bAbsolute || system.Length() > 0) system << "/";
            system << name;
        }
    }
    if (system.Length() == 0) system << (bAbsolute ? "/" : ".");
}

bool ResolveBroken(const char* pszPath, PathText& system) noexcept
{
    const std::size_t length = pszPath ? strnlen(pszPath, MAX_PATH) : 0;
    Utf8Text utf8;
    if (length == 0 || length >= MAX_PATH || !ToUtf8({pszPath, length}, utf8)) return false;
    std::string_view rest = utf8.View();
    bool bAbsolute = false;
    if (!TakeRoot(rest, system, bAbsolute)) return false;
    const std::size_t root = system.Length();
    Append(rest, bAbsolute, system);
    if (system.Fits()) MatchEntries(system.Data(), root);
    return system.Fits();
}

} // namespace

void PreparePaths() noexcept
{
    if (g_fromGbk == kNone) g_fromGbk = iconv_open("UTF-8", "GB18030");
    std::array<char, PATH_MAX> root;
    for (char letter = 'A'; letter <= 'Z'; ++letter)
        files::PeekRoot(letter, root); // builds what is built at the first look, whoever has the drive
}

bool ToSystem(const char* pszPath, PathText& system) noexcept
{
    system.Clear();
    if (InFilter()) return ResolveBroken(pszPath, system) || Fail(ERROR_PATH_NOT_FOUND);
    try {
        const auto path = files::ToSystem(pszPath);
        return path && ((system << *path).Fits() || Fail(ERROR_FILENAME_EXCED_RANGE));
    } catch (const std::bad_alloc&) {
        return Fail(ERROR_NOT_ENOUGH_MEMORY);
    }
}

} // namespace kx::crash
