#include "draw/Encoder.h"

#include "draw/MemoryStream.h"
#include "draw/WideText.h"
#include "internal/Guard.h"

#include <cstddef>

namespace kx::draw {

namespace {

template <class Unit>
bool IsSame(const WCHAR* a, const Unit* b)
{
    for (; *a == *b; ++a, ++b)
        if (!*a) return true;
    return false;
}

template <class Unit>
int Find(const Unit* pszMimeType, GUID* pClsid)
{
    if (!pszMimeType || !pClsid) return -1;
    UINT nCount = 0;
    UINT nBytes = 0;
    Gdiplus::DllExports::GdipGetImageEncodersSize(&nCount, &nBytes);
    // The records begin a block that may be longer than they are.
    const auto block = std::make_unique<std::byte[]>(nBytes);
    auto* const pEncoders = reinterpret_cast<Gdiplus::ImageCodecInfo*>(block.get());
    if (Gdiplus::DllExports::GdipGetImageEncoders(nCount, nBytes, pEncoders) != Gdiplus::Ok) return -1;
    for (UINT n = 0; n < nCount; ++n) {
        if (!IsSame(pEncoders[n].MimeType, pszMimeType)) continue;
        *pClsid = pEncoders[n].Clsid;
        return static_cast<int>(n);
    }
    return -1;
}

} // namespace

int FindEncoder(const WCHAR* pszMimeType, GUID* pClsid)
{
    return Guard([&] { return Find(pszMimeType, pClsid); }, -1);
}

int FindEncoder(const unsigned short* pszMimeType, GUID* pClsid)
{
    return Guard([&] { return Find(pszMimeType, pClsid); }, -1);
}

int Save(const Gdiplus::Image& image, const CString& strPath, const WCHAR* pszMimeType)
{
    GUID clsid{};
    if (FindEncoder(pszMimeType, &clsid) < 0) return 0;
    return image.Save(WideText(strPath), &clsid) == Gdiplus::Ok;
}

int Save(const Gdiplus::Image& image, const WCHAR* pszMimeType, BYTE** ppData, int& nSize)
{
    GUID clsid{};
    if (!ppData || FindEncoder(pszMimeType, &clsid) < 0) return 0;
    const StreamPtr pStream = MakeGrowingStream();
    image.Save(pStream.get(), &clsid);
    return CopyOut(pStream.get(), ppData, nSize);
}

std::unique_ptr<Gdiplus::Image> MakeThumbnail(Gdiplus::Image& image, int nWidth, int nHeight)
{
    return std::unique_ptr<Gdiplus::Image>(
        image.GetThumbnailImage(static_cast<UINT>(nWidth), static_cast<UINT>(nHeight)));
}

} // namespace kx::draw
