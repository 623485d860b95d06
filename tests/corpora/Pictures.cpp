#include "tests/corpora/Readers.h"

#include "include/platform/CodePage.h"
#include "include/platform/GdiPlus.h"

namespace fs = std::filesystem;
using namespace Gdiplus;

namespace corpora {

namespace {

std::u16string Wide(const fs::path& file)
{
    const std::string text = ToPlatform(file);
    std::u16string wide(text.size() + 1, u'\0');
    const int nUnits = MultiByteToWideChar(CP_ACP, 0, text.c_str(), static_cast<int>(text.size()),
                                           wide.data(), static_cast<int>(wide.size()));
    wide.resize(static_cast<std::size_t>(nUnits));
    return wide;
}

// Pixels, with nothing of the colour of those that can't be seen.
std::vector<ARGB> PixelsOf(Bitmap& bitmap)
{
    const auto cx = static_cast<int>(bitmap.GetWidth()), cy = static_cast<int>(bitmap.GetHeight());
    std::vector<ARGB> pixels;
    pixels.reserve(static_cast<std::size_t>(cx) * static_cast<std::size_t>(cy) + 1);
    for (int y = 0; y < cy; ++y)
        for (int x = 0; x < cx; ++x) {
            Color color;
            bitmap.GetPixel(x, y, &color);
            pixels.push_back(color.GetValue() >> 24 == 0 ? 0 : color.GetValue());
        }
    pixels.push_back(static_cast<ARGB>(cx)); // the width, behind them
    return pixels;
}

bool Shows(const std::vector<ARGB>& pixels, const fs::path& expected)
{
    Bitmap bitmap(Wide(expected).c_str());
    return bitmap.GetLastStatus() == Ok && PixelsOf(bitmap) == pixels;
}

// The pictures of which a frame must show one; none where nothing is said, and bListed false.
std::vector<fs::path> Expected(const fs::path& file, UINT nFrame, UINT nFrames)
{
    const fs::path frames = file.parent_path() / "frames";
    const std::string stem = file.stem().string();
    const std::string name = nFrames > 1 ? stem + "-" + std::to_string(nFrame) : stem;
    if (fs::exists(frames / (name + ".png"))) return {frames / (name + ".png")};
    std::vector<fs::path> expected;
    fs::path dir = file.parent_path();
    while (dir != dir.parent_path() && !fs::exists(dir / "expected.txt"))
        dir = dir.parent_path();
    std::ifstream list(dir / "expected.txt");
    for (std::string line, word; std::getline(list, line);)
        if (std::istringstream words(line); words >> word && dir / word == file)
            while (words >> word)
                if (word != "-") expected.push_back(dir / "expected" / word);
    return expected;
}

const char* NameOf(Status status)
{
    switch (status) {
    case GenericError:
        return "broken";
    case OutOfMemory:
        return "beyond the limits, or memory lacks";
    case UnknownImageFormat:
        return "no picture by its first bytes";
    case AccessDenied:
    case FileNotFound:
        return "can't be opened";
    default:
        return "another status";
    }
}

constexpr CLSID kPng{0x557CF406, 0x1A04, 0x11D3, {0x9A, 0x73, 0x00, 0x00, 0xF8, 0x1E, 0xF3, 0x2E}};

} // namespace

Outcome ReadPicture(const fs::path& file, const fs::path& saved)
{
    Bitmap bitmap(Wide(file).c_str());
    const Status status = bitmap.GetLastStatus();
    if (status != Ok) {
        const bool bMust = !Expected(file, 0, 1).empty();
        return {bMust ? Verdict::Wrong : Verdict::Refused,
                NameOf(status) + std::string(bMust ? ", though others show it" : "")};
    }
    GUID dimension{};
    bitmap.GetFrameDimensionsList(&dimension, 1);
    const UINT nFrames = bitmap.GetFrameCount(&dimension);
    for (UINT n = 0; n < nFrames; ++n) {
        if (n > 0 && bitmap.SelectActiveFrame(&dimension, n) != Ok)
            return {Verdict::Refused, "frame " + std::to_string(n) + " is broken"};
        const auto expected = Expected(file, n, nFrames);
        const auto pixels = expected.empty() ? std::vector<ARGB>() : PixelsOf(bitmap);
        if (!saved.empty())
            bitmap.Save(Wide(saved / (file.filename().string() + "-" + std::to_string(n) + ".png")).c_str(),
                        &kPng);
        if (!expected.empty() && std::none_of(expected.begin(), expected.end(),
                                              [&](const fs::path& one) { return Shows(pixels, one); }))
            return {Verdict::Wrong, "other than " + expected[0].filename().string()};
    }
    return {};
}

} // namespace corpora
