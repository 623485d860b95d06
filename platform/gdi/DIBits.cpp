#include "platform/gdi/DeviceContext.h"
#include "platform/gdi/DibRow.h"

#include <algorithm>

using namespace kx::gdi;

namespace {

BITMAPINFOHEADER HeaderOf(const Bitmap& bitmap) noexcept
{
    const int nWidth = bitmap.Width();
    const int nHeight = bitmap.Height();
    const std::size_t nBytes = RowBytes(nWidth, bitmap.depth, 32) * static_cast<std::size_t>(nHeight);
    return {sizeof(BITMAPINFOHEADER),
            nWidth,
            nHeight,
            1,
            bitmap.depth,
            BI_RGB,
            static_cast<DWORD>(nBytes),
            0,
            0,
            0,
            0};
}

bool Fits(const BITMAPINFOHEADER& header, const Bitmap& bitmap) noexcept
{
    const std::int64_t nHeight = header.biHeight;
    return header.biWidth == bitmap.Width() && (nHeight < 0 ? -nHeight : nHeight) == bitmap.Height() &&
           header.biPlanes == 1 && header.biCompression == BI_RGB && HasDepth(bitmap, header.biBitCount);
}

// As many colours as the caller has room for.
void CopyColors(const Bitmap& bitmap, BITMAPINFO& info) noexcept
{
    const std::size_t nRoom = info.bmiHeader.biBitCount <= 8 ? info.bmiHeader.biClrUsed : 0;
    const std::size_t nColors = std::min(nRoom, bitmap.palette.size());
    RGBQUAD* const colors = info.bmiColors;
    std::copy_n(bitmap.palette.begin(), nColors, colors);
    info.bmiHeader.biClrUsed = static_cast<DWORD>(nColors);
}

// Lines are counted from the bottom, whichever comes first in the buffer.
void CopyRows(const Bitmap& bitmap, const BITMAPINFOHEADER& header, int nStart, int nLines, BYTE* out)
{
    DibRow row(bitmap, header.biBitCount);
    const int nBottom = bitmap.Height() - 1 - nStart;
    const bool bTopDown = header.biHeight < 0;
    for (int n = 0; n < nLines; ++n, out += row.Bytes())
        row.Write(bTopDown ? nBottom - (nLines - 1) + n : nBottom - n, out);
}

} // namespace

int GetDIBits(HDC hDC, HBITMAP hBitmap, UINT nStart, UINT nLines, void* pBits, BITMAPINFO* pInfo, UINT nUsage)
{
    const auto context = FindAs<DeviceContext>(hDC);
    const auto bitmap = FindAs<Bitmap>(hBitmap);
    if (!context || !bitmap || !pInfo || nUsage != DIB_RGB_COLORS) return 0;
    BITMAPINFOHEADER& header = pInfo->bmiHeader;
    if (header.biSize != sizeof(BITMAPINFOHEADER)) return 0;
    if (header.biBitCount == 0) {
        header = HeaderOf(*bitmap);
        return 1;
    }
    const auto nHeight = static_cast<UINT>(bitmap->Height());
    if (!Fits(header, *bitmap) || nStart >= nHeight) return 0;
    CopyColors(*bitmap, *pInfo);
    const UINT nCopied = std::min(nLines, nHeight - nStart);
    if (pBits)
        CopyRows(*bitmap, header, static_cast<int>(nStart), static_cast<int>(nCopied),
                 static_cast<BYTE*>(pBits));
    return static_cast<int>(nCopied);
}
