#include "include/platform/Module.h"
#include "platform/Errno.h"
#include "platform/module/OpenModule.h"
#include "platform/text/CharWalk.h"
#include "platform/text/Conversion.h"

#include <algorithm>
#include <charconv>
#include <optional>

using kx::module::Content;
using kx::module::OpenModule;
using kx::module::Resource;

namespace {

// The number that stands for a name or type: a pointer that is one, or a text like "#101".
std::optional<WORD> NumberOf(const char* pszName)
{
    const auto value = reinterpret_cast<std::uintptr_t>(pszName);
    if (value <= 0xFFFF) return static_cast<WORD>(value);
    if (*pszName != '#') return std::nullopt;
    const std::string_view digits(pszName + 1);
    WORD number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
    return number;
}

// One component of a resource's path. Nothing for a text that can't be one.
std::optional<std::string> NameOf(const char* pszName)
{
    if (const auto number = NumberOf(pszName)) return std::to_string(*number);
    auto name = kx::text::ToUtf8(pszName);
    if (!name || name->empty() || name->find('/') != name->npos) return std::nullopt;
    return name;
}

std::optional<std::string> TypeOf(const char* pszType)
{
    const auto number = NumberOf(pszType);
    if (number == NumberOf(RT_BITMAP)) return "BITMAP";
    if (number == NumberOf(RT_ICON)) return "ICON";
    return NameOf(pszType);
}

std::string UpperCase(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char ch) { return ch >= 'a' && ch <= 'z' ? static_cast<char>(ch - ('a' - 'A')) : ch; });
    return text;
}

HRSRC Find(HMODULE hModule, const char* pszName, const char* pszType)
{
    const auto type = TypeOf(pszType), name = NameOf(pszName);
    if (!type || !name) return nullptr;
    const std::string path = "/" + *type + "/" + *name;
    const auto module = OpenModule::Of(hModule);
    if (!module) return nullptr;
    const HRSRC found = module->Find(hModule, path);
    return found ? found : module->Find(hModule, UpperCase(path));
}

// The bytes of a resource of that module; nothing for another handle.
Content ContentOf(HMODULE hModule, HRSRC hResource)
{
    const auto resource = kx::FindHandle<Resource>(hResource);
    return resource && resource->hModule == hModule ? resource->content : Content();
}

} // namespace

HINSTANCE AfxFindResourceHandle(const char* pszName, const char* pszType)
try {
    const HINSTANCE current = AfxGetResourceHandle();
    if (!current || Find(current, pszName, pszType)) return current;
    return Find(nullptr, pszName, pszType) ? nullptr : current;
} catch (...) {
    kx::NoMemory();
    return AfxGetResourceHandle();
}

HRSRC FindResourceA(HMODULE hModule, const char* pszName, const char* pszType)
try {
    const HRSRC found = Find(hModule, pszName, pszType);
    if (!found) SetLastError(OpenModule::Of(hModule) ? ERROR_RESOURCE_NAME_NOT_FOUND : ERROR_INVALID_HANDLE);
    return found;
} catch (...) {
    return kx::NoMemory();
}

DWORD SizeofResource(HMODULE hModule, HRSRC hResource)
{
    const Content content = ContentOf(hModule, hResource);
    if (!content.owner) return static_cast<DWORD>(kx::Fail(ERROR_INVALID_HANDLE));
    return static_cast<DWORD>(content.bytes.size());
}

HGLOBAL LoadResource(HMODULE hModule, HRSRC hResource)
{
    if (ContentOf(hModule, hResource).owner) return hResource;
    SetLastError(ERROR_INVALID_HANDLE);
    return nullptr;
}

const void* LockResource(HGLOBAL hResource)
{
    const auto resource = kx::FindHandle<Resource>(hResource);
    if (!resource) return nullptr;
    const std::string_view bytes = resource->content.bytes;
    return bytes.empty() ? "" : bytes.data();
}

int FreeResource(HGLOBAL)
{
    return 0;
}

int LoadStringA(HINSTANCE hInstance, UINT nId, char* pszBuffer, int nSize)
try {
    if (!pszBuffer || nSize <= 0) return kx::Fail(ERROR_INVALID_PARAMETER);
    *pszBuffer = '\0';
    const auto module = OpenModule::Of(hInstance);
    const Content content =
        module ? ContentOf(hInstance, module->Find(hInstance, "/STRING/" + std::to_string(nId))) : Content();
    if (!content.owner) return kx::Fail(ERROR_RESOURCE_NAME_NOT_FOUND);

    // No character takes more than four bytes of UTF-8, so what lies behind that many for each byte of the
    // buffer can't come into it.
    const auto size = static_cast<std::size_t>(nSize);
    std::string_view utf8 = content.bytes.substr(0, 4 * size);
    utf8 = utf8.substr(0, utf8.find('\0'));
    if (utf8.ends_with('\n')) utf8.remove_suffix(1);
    if (utf8.ends_with('\r')) utf8.remove_suffix(1);
    return static_cast<int>(kx::text::CopyCut(kx::text::FromUtf8Lossy(utf8), pszBuffer, size));
} catch (...) {
    return kx::NoMemory();
}
