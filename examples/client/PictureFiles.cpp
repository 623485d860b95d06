#include "PictureFiles.h"

#include "Artwork.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <platform/CodePage.h>
#include <platform/File.h>
#include <string>
#include <vector>

namespace {

constexpr int nBall = 96;
constexpr int nSpinner = 48;
constexpr int nDots = 8;

BYTE ToByte(double value)
{
    return static_cast<BYTE>(std::lround(std::clamp(value, 0.0, 1.0) * 255));
}

// Green glass, clearer in the middle, with a light from the upper left; outside of it a shadow that fades.
Gdiplus::Color BallPixel(int x, int y)
{
    const double radius = std::hypot(x - 44, y - 44) / 38;
    if (radius < 1) {
        const double shine = std::clamp(1 - std::hypot(x - 32, y - 30) / 22, 0.0, 1.0);
        return {ToByte(0.35 + 0.6 * radius * radius + shine), ToByte(0.1 + shine),
                ToByte(0.65 - 0.3 * radius + shine), ToByte(0.35 + shine)};
    }
    const double shadow = 1 - std::abs(std::hypot(x - 51, y - 52) - 33) / 11;
    return {ToByte(0.6 * shadow), 20, 30, 40};
}

std::string Word(int n)
{
    return {static_cast<char>(n & 0xFF), static_cast<char>(n >> 8)};
}

// The dot that a pixel lies in, counted around the ring from 1; 0 for none.
int DotAt(int x, int y)
{
    for (int n = 0; n < nDots; ++n) {
        const double angle = n * 2 * std::numbers::pi / nDots;
        const double xDot = 24 + 17 * std::sin(angle);
        const double yDot = 24 - 17 * std::cos(angle);
        if (std::hypot(x + 0.5 - xDot, y + 0.5 - yDot) < 5) return n + 1;
    }
    return 0;
}

// A frame whose dots grow paler behind the one that leads. Its codes are bytes, as the table of codes is
// begun anew before they would need a ninth bit.
std::string SpinnerFrame(int nLead)
{
    std::string frame("\x21\xF9\x04\x09\x0C\x00\x00\x00\x2C\x00\x00\x00\x00",
                      13); // for 120 ms, alone, its first colour clear
    frame += Word(nSpinner) + Word(nSpinner) + '\0' + '\x07';
    for (int y = 0; y < nSpinner; ++y) {
        frame += static_cast<char>(nSpinner + 1);
        frame += '\x80';
        for (int x = 0; x < nSpinner; ++x) {
            const int nDot = DotAt(x, y);
            frame += static_cast<char>(nDot == 0 ? 0 : 1 + (nLead + nDots - (nDot - 1)) % nDots);
        }
    }
    return frame + '\x01' + '\x81' + '\0';
}

} // namespace

bool client::MakeBallPng(const CString& strPath)
{
    Gdiplus::Bitmap bitmap(nBall, nBall, Gdiplus::PixelFormat32bppARGB);
    for (int y = 0; y < nBall; ++y)
        for (int x = 0; x < nBall; ++x)
            bitmap.SetPixel(x, y, BallPixel(x, y));
    constexpr unsigned short szPng[] = {'i', 'm', 'a', 'g', 'e', '/', 'p', 'n', 'g', 0};
    GUID clsid{};
    std::vector<WCHAR> path(MAX_PATH);
    MultiByteToWideChar(CP_ACP, 0, strPath, -1, path.data(), MAX_PATH);
    if (CKXGdiplusImage::GetEncoderClsid(szPng, &clsid) < 0) return false;
    if (bitmap.Save(path.data(), &clsid) != Gdiplus::Ok) return false;
    return Gdiplus::Image(path.data()).GetPixelFormat() == Gdiplus::PixelFormat32bppARGB; // see-through still
}

bool client::MakeLandscapeJpeg(const CString& strPath)
{
    const HBITMAP hBitmap = MakeLandscape();
    const CKXGdiplusBitmap bitmap(hBitmap);
    DeleteObject(hBitmap);
    return bitmap.SaveToFile(strPath, "image/jpeg") != 0;
}

bool client::MakeSpinnerGif(const CString& strPath)
{
    std::string bytes = "GIF89a" + Word(nSpinner) + Word(nSpinner) + '\xF6' + '\0' + '\0';
    for (int n = 0; n < 128; ++n) { // the clear one, then from dark to pale
        const int nShade = n == 0 ? 255 : std::min(255, 40 + (n - 1) * 28);
        bytes += {static_cast<char>(nShade), static_cast<char>(std::min(255, nShade + 30)),
                  static_cast<char>(std::min(255, nShade + 90))};
    }
    for (int nLead = 0; nLead < nDots; ++nLead)
        bytes += SpinnerFrame(nLead);
    bytes += '\x3B';
    CFile file;
    if (!file.Open(strPath, CFile::modeCreate | CFile::modeWrite)) return false;
    file.Write(bytes.data(), bytes.size());
    file.Close();
    return true;
}
