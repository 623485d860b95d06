#include "platform/xml/Encoding.h"

#include "platform/text/CharWalk.h"
#include "platform/xml/Libxml.h"

#include <algorithm>
#include <libxml/encoding.h>

namespace kx::xml {

namespace {

// The quoted text behind `name =`; empty without one.
std::string_view Quoted(std::string_view text, std::string_view name)
{
    const std::size_t at = text.find(name);
    if (at == text.npos) return {};
    text.remove_prefix(at + name.size());
    const std::size_t open = text.find_first_of("'\"");
    if (open == text.npos || text.substr(0, open).find_first_not_of(" \t\r\n=") != text.npos) return {};
    const std::size_t close = text.find(text[open], open + 1);
    return close == text.npos ? std::string_view() : text.substr(open + 1, close - open - 1);
}

} // namespace

std::string DeclaredEncoding(std::string_view document)
{
    constexpr std::size_t kLongest = 1000;
    constexpr std::string_view kMark = "\xEF\xBB\xBF";
    if (document.starts_with(kMark)) document.remove_prefix(kMark.size());
    constexpr std::string_view kStart = "<?xml";
    if (!document.starts_with(kStart) || document.size() == kStart.size()) return {};
    if (!text::IsSpace(document[kStart.size()])) return {}; // an instruction with a longer name
    const std::size_t end = document.substr(0, kLongest).find("?>");
    return end == document.npos ? std::string() : std::string(Quoted(document.substr(0, end), "encoding"));
}

bool IsEncoding(const std::string& name)
{
    xmlCharEncodingHandler* const handler = name.empty() ? nullptr : xmlFindCharEncodingHandler(name.c_str());
    if (!handler) return false;
    const bool bBothWays = handler->input || (handler->iconv_in && handler->iconv_out);
    xmlCharEncCloseFunc(handler);
    return bBothWays;
}

bool IsChinese(std::string_view name)
{
    constexpr std::string_view kNames[] = {"gb2312", "gbk", "cp936", "gb18030"};
    return std::any_of(std::begin(kNames), std::end(kNames),
                       [&](std::string_view known) { return text::CompareNoCase(name, known) == 0; });
}

} // namespace kx::xml
