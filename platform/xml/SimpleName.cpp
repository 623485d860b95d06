#include "platform/xml/SimpleName.h"

#include "platform/xml/Ahead.h"

namespace kx::xml {

namespace {

constexpr bool IsLetter(unsigned ch) noexcept
{
    return ((ch | 0x20) >= u'a' && (ch | 0x20) <= u'z') || ch == u'_';
}

constexpr std::array<bool, 128> kNameChars = [] {
    std::array<bool, 128> allowed{};
    for (unsigned ch = 0; ch < allowed.size(); ++ch)
        allowed[ch] = IsLetter(ch) || (ch >= u'0' && ch <= u'9') || ch == u'-' || ch == u'.';
    return allowed;
}();

constexpr bool IsNameChar(unsigned ch) noexcept
{
    return ch < kNameChars.size() && kNameChars[ch];
}

// By the first letters.
std::uint64_t BitOf(const char* name) noexcept
{
    const auto first = static_cast<unsigned char>(name[0]);
    const auto second = static_cast<unsigned char>(first ? name[1] : 0);
    const auto third = static_cast<unsigned char>(second ? name[2] : 0);
    return std::uint64_t{1} << ((first + 5u * second + 17u * third) & 63);
}

const char* NameOf(const xmlNode* element) noexcept
{
    return reinterpret_cast<const char*>(element->name);
}

// Whether the text is ASCII and the same.
bool IsSpelled(const char* name, BSTR bstr, UINT nUnits) noexcept
{
    UINT n = 0;
    for (; name[n] != '\0'; ++n)
        if (static_cast<signed char>(name[n]) < 0 || static_cast<WCHAR>(name[n]) != bstr[n]) return false;
    return n == nUnits;
}

} // namespace

xmlNode* SimpleName::NextIn(BSTR bstr, const xmlNode* parent, Passed& passed) noexcept
{
    if (passed.parent != parent)
        passed = {parent, nullptr, 0, passed.parent ? Distance(passed.parent, parent) : 0};
    xmlNode* node = passed.last ? passed.last->next : parent->children;
    while (node && node->type != XML_ELEMENT_NODE)
        node = node->next;
    if (!bstr || !node || node->ns || !IsSpelled(NameOf(node), bstr, SysStringLen(bstr))) return nullptr;
    const std::uint64_t bit = BitOf(NameOf(node));
    if (passed.names & bit) return nullptr;
    passed.last = node;
    passed.names |= bit;
    AskFor(node, passed.step, 3 * sizeof(xmlNode)); // with its text and the white space behind it
    return node;
}

SimpleName::SimpleName(BSTR bstr) noexcept
{
    const UINT nUnits = SysStringLen(bstr);
    if (nUnits == 0 || nUnits >= m_text.size() || !IsLetter(bstr[0])) return;
    for (UINT i = 0; i < nUnits; ++i) {
        if (!IsNameChar(bstr[i])) return;
        m_text[i] = static_cast<char>(bstr[i]);
    }
    m_text[nUnits] = '\0';
    m_bSimple = true;
}

bool SimpleName::Names(const xmlNode* element) const noexcept
{
    const char* name = NameOf(element);
    for (const char* text = m_text.data(); *name == *text; ++name, ++text)
        if (*text == '\0') return !element->ns; // else it has a prefix
    return false;
}

xmlNode* SimpleName::FirstFrom(xmlNode* node) const noexcept
{
    while (node && (node->type != XML_ELEMENT_NODE || !Names(node)))
        node = node->next;
    return node;
}

xmlNode* SimpleName::FirstIn(const xmlNode* parent, Passed& passed) const noexcept
{
    const std::uint64_t bit = BitOf(m_text.data());
    if (passed.parent != parent || (passed.names & bit)) passed = {.parent = parent};
    xmlNode* node = passed.last ? passed.last->next : parent->children;
    for (; node; node = node->next) {
        passed.last = node;
        if (node->type != XML_ELEMENT_NODE) continue;
        const std::uint64_t other = BitOf(NameOf(node));
        passed.names |= other;
        if (other == bit && Names(node)) break;
    }
    return node;
}

} // namespace kx::xml
