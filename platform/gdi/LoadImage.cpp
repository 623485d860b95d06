#include "include/platform/Module.h"
#include "internal/Debug.h"
#include "platform/Errno.h"
#include "platform/files/Path.h"
#include "platform/files/WholeFile.h"
#include "platform/gdi/Bitmap.h"
#include "platform/gdi/Canvas.h"
#include "platform/gdi/ImageFile.h"
#include "platform/sync/PerThread.h"

#include <array>
#include <memory>
#include <new>
#include <string_view>

using namespace kx::gdi;

namespace {

HANDLE Refuse(DWORD dwError) noexcept
{
    SetLastError(dwError);
    return nullptr;
}

// The nearest pixels, in the bitmap's declared depth.
std::shared_ptr<Bitmap> Scaled(Bitmap& bitmap, int cx, int cy)
{
    auto surface = Surface::Make(cx, cy);
    if (!surface) return nullptr;
    const Block to{0, 0, cx, cy}, from{0, 0, bitmap.Width(), bitmap.Height()};
    const RECT toArea = AreaOf(to), fromArea = AreaOf(from);
    ScaleBlock({*surface, toArea, std::span(&toArea, 1), toArea, {}}, to,
               {bitmap.surface, fromArea, {}, {}, {}}, from, std::nullopt);
    return std::make_shared<Bitmap>(std::move(*surface), bitmap.depth, bitmap.palette, bitmap.fromFile);
}

std::shared_ptr<Bitmap> MakeBitmap(FileBytes bytes, int cx, int cy)
{
    // A resource is commonly a file without its file header, but may be a whole one.
    auto bitmap = IsBmp(bytes) ? ReadBmp(bytes) : ReadDib(bytes);
    if (!bitmap) return nullptr;
    if (cx == 0) cx = bitmap->Width();
    if (cy == 0) cy = bitmap->Height();
    if (cx == bitmap->Width() && cy == bitmap->Height()) return bitmap;
    return Scaled(*bitmap, cx, cy);
}

std::shared_ptr<Icon> MakeIcon(FileBytes bytes, int cx, int cy)
{
    auto surface = ReadIcon(bytes, cx, cy);
    return surface ? Icon::Make(std::move(*surface), {cx, cy}) : nullptr;
}

HANDLE Make(FileBytes bytes, UINT nType, int cx, int cy)
{
    std::shared_ptr<Object> object;
    SetLastError(ERROR_SUCCESS);
    if (nType == IMAGE_ICON)
        object = MakeIcon(bytes, cx, cy);
    else
        object = MakeBitmap(bytes, cx, cy);
    if (object) return Add(object);
    return GetLastError() == ERROR_NOT_ENOUGH_MEMORY ? nullptr : Refuse(ERROR_RESOURCE_DATA_NOT_FOUND);
}

// A file that can't be an image is refused by its beginning.
std::optional<std::uint64_t> BytesToRead(FileBytes head, std::uint64_t nFileSize, UINT nType) noexcept
{
    if (nType == IMAGE_BITMAP) return BmpBytesToRead(head, nFileSize);
    return IsIco(head) ? std::optional(nFileSize) : std::nullopt;
}

HANDLE FromFile(const char* pszPath, UINT nType, int cx, int cy)
{
    const auto path = kx::files::ToSystem(pszPath);
    if (!path) return nullptr;
    kx::files::FileContent file;
    if (const DWORD error = kx::files::ReadFileHead(*path, IMAGE_HEAD, file)) return Refuse(error);
    const auto nSize = static_cast<std::uint64_t>(file.status.st_size);
    const auto nBytes =
        nSize <= MAX_IMAGE_FILE ? BytesToRead(BytesOf(file.bytes), nSize, nType) : std::nullopt;
    if (!nBytes) return Refuse(ERROR_RESOURCE_DATA_NOT_FOUND);
    if (const DWORD error = kx::files::ReadFileHead(*path, *nBytes, file)) return Refuse(error);
    return Make(BytesOf(file.bytes), nType, cx, cy);
}

HANDLE FromResource(HINSTANCE hInstance, const char* pszName, UINT nType, int cx, int cy)
{
    const HRSRC found = FindResourceA(hInstance, pszName, nType == IMAGE_ICON ? RT_ICON : RT_BITMAP);
    if (!found) return nullptr;
    const auto* data = static_cast<const std::uint8_t*>(LockResource(LoadResource(hInstance, found)));
    if (!data) return nullptr;
    return Make({data, SizeofResource(hInstance, found)}, nType, cx, cy);
}

// The beginnings of reasons.
using Reasons = kx::sync::PerThread<std::array<char, 128>>;
Reasons& EachReason()
{
    static Reasons reasons;
    return reasons;
}

} // namespace

void kx::gdi::NoteRefusal(const char* pszReason) noexcept
{
    if (*pszReason && !kx::debug::Wants("picture")) return;
    try {
        Reasons& reasons = EachReason();
        if (auto* const pReason = *pszReason ? &reasons.Get() : reasons.Find())
            (*pReason)[std::string_view(pszReason).copy(pReason->data(), pReason->size() - 1)] = '\0';
    } catch (const std::bad_alloc&) { // the file is refused without a reason
    }
}

const char* kx::gdi::LastRefusal()
{
    const auto* const pReason = EachReason().Find();
    return pReason ? pReason->data() : "";
}

HANDLE LoadImageA(HINSTANCE hInstance, const char* pszName, UINT nType, int cx, int cy, UINT nFlags)
{
    const bool bFile = (nFlags & LR_LOADFROMFILE) != 0;
    const bool bNumber = reinterpret_cast<std::uintptr_t>(pszName) <= 0xFFFF;
    if ((nType != IMAGE_BITMAP && nType != IMAGE_ICON) || cx < 0 || cy < 0 || !pszName || (bFile && bNumber))
        return Refuse(ERROR_INVALID_PARAMETER);
    try {
        if (!bFile) return FromResource(hInstance, pszName, nType, cx, cy);
        const HANDLE hImage = FromFile(pszName, nType, cx, cy);
        if (!hImage)
            kx::debug::Tell("picture", "%s can't be read as %s; nothing is drawn from it", pszName,
                            nType == IMAGE_ICON ? "an icon" : "a BMP file");
        return hImage;
    } catch (...) {
        return kx::NoMemory();
    }
}

HBITMAP LoadBitmapA(HINSTANCE hInstance, const char* pszName)
{
    return static_cast<HBITMAP>(LoadImageA(hInstance, pszName, IMAGE_BITMAP, 0, 0, 0));
}
