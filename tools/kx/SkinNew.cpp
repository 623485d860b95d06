// Makes a skin to begin with: every key at its default with a remark that says what it is for, and plain
// artwork at the right numbers of states.

#include "skin/SkinTable.h"
#include "tools/kx/Commands.h"
#include "tools/kx/Findings.h"

#include <KXCommonClass.h>
#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

namespace kx::tool {

namespace {

namespace fs = std::filesystem;

constexpr COLORREF kKey = RGB(255, 0, 255);
constexpr COLORREF kInk = RGB(60, 72, 88);

enum State
{
    Normal,
    Hot,
    Pressed,
    Disabled,
    Default
};

struct Look
{
    COLORREF clrFace;
    COLORREF clrEdge;
    COLORREF clrInk;
};

constexpr Look kLooks[] = {
    {RGB(233, 237, 242), RGB(169, 180, 192), kInk},               // Normal
    {RGB(214, 230, 247), RGB(91, 146, 200), kInk},                // Hot
    {RGB(178, 208, 238), RGB(62, 116, 172), kInk},                // Pressed
    {RGB(243, 244, 246), RGB(209, 213, 219), RGB(170, 176, 184)}, // Disabled
    {RGB(233, 237, 242), RGB(62, 116, 172), kInk},                // Default
};

// The name in a path, without its extension.
std::string StemOf(const char* pszPath)
{
    const std::string path = pszPath;
    const std::size_t from = path.rfind('\\') + 1;
    return path.substr(from, path.rfind('.') - from);
}

void Outline(CDC& dc, const CRect& rc, COLORREF clr)
{
    dc.FillSolidRect(rc.left, rc.top, rc.Width(), 1, clr);
    dc.FillSolidRect(rc.left, rc.bottom - 1, rc.Width(), 1, clr);
    dc.FillSolidRect(rc.left, rc.top, 1, rc.Height(), clr);
    dc.FillSolidRect(rc.right - 1, rc.top, 1, rc.Height(), clr);
}

// A mark of 8 by 8 pixels in the middle, as letters.
using Glyph = std::array<const char*, 8>;

constexpr Glyph kClose = {"x......x", "xx....xx", ".xx..xx.", "..xxxx..",
                          "..xxxx..", ".xx..xx.", "xx....xx", "x......x"};
constexpr Glyph kMin = {"........", "........", "........", "........",
                        "........", "........", "xxxxxxxx", "xxxxxxxx"};
constexpr Glyph kMax = {"xxxxxxxx", "xxxxxxxx", "x......x", "x......x",
                        "x......x", "x......x", "x......x", "xxxxxxxx"};
constexpr Glyph kRestore = {"..xxxxxx", "..x....x", "xxxxxx.x", "xxxxxx.x",
                            "x....xxx", "x....x..", "x....x..", "xxxxxx.."};
constexpr Glyph kCheck = {"........", ".......x", "......xx", "x....xx.",
                          "xx..xx..", ".xxxx...", "..xx....", "........"};
constexpr Glyph kDot = {"........", "..xxxx..", ".xxxxxx.", ".xxxxxx.",
                        ".xxxxxx.", ".xxxxxx.", "..xxxx..", "........"};
constexpr Glyph kMixed = {"........", "........", ".xxxxxx.", ".xxxxxx.",
                          ".xxxxxx.", ".xxxxxx.", "........", "........"};
constexpr Glyph kDown = {"........", "........", "xxxxxxxx", ".xxxxxx.",
                         "..xxxx..", "...xx...", "........", "........"};
constexpr Glyph kUp = {"........", "........", "...xx...", "..xxxx..",
                       ".xxxxxx.", "xxxxxxxx", "........", "........"};

void DrawGlyph(CDC& dc, const CRect& rc, const Glyph& glyph, COLORREF clr)
{
    const int x = rc.left + (rc.Width() - 8) / 2;
    const int y = rc.top + (rc.Height() - 8) / 2;
    for (int j = 0; j < 8; ++j)
        for (int i = 0; i < 8; ++i)
            if (glyph[static_cast<std::size_t>(j)][i] == 'x') dc.SetPixel(x + i, y + j, clr);
}

const Glyph* GlyphOf(const std::string& stem, int nState)
{
    const struct
    {
        const char* pszStem;
        const Glyph* glyphs[3]; // of the states 0, 4 and 8 on
    } all[] = {
        {"Frame_CloseBtn", {&kClose, &kClose}},
        {"Frame_MinBtn", {&kMin, &kMin}},
        {"Frame_MaxBtn", {&kMax, &kMax}},
        {"Frame_RestoreBtn", {&kRestore, &kRestore}},
        {"CheckBox", {nullptr, &kCheck, &kMixed}},
        {"RadioButton", {nullptr, &kDot}},
        {"SpinButton", {&kUp, &kDown}},
        {"ComboButton", {&kDown}},
        {"MenuIconChecked", {&kCheck}},
        {"TeamBtn", {&kDown}},
    };
    for (const auto& one : all)
        if (stem == one.pszStem) return one.glyphs[nState / 4];
    return nullptr;
}

void DrawState(CDC& dc, const CRect& rc, const skin::SkinFile& file, int nState)
{
    const std::string stem = StemOf(file.pszPath);
    const bool bFrame = stem.starts_with("Frame_") && file.nStates == 2;
    const Look& look = kLooks[file.nStates == 5 ? nState : nState % 4];
    if (bFrame)
        dc.FillSolidRect(rc, nState == 0 ? RGB(72, 110, 152) : RGB(158, 172, 188));
    else if (stem.starts_with("WndBkg"))
        dc.FillSolidRect(rc, stem == "WndBkg_Top"   ? RGB(226, 234, 243)
                             : stem == "WndBkg_Btm" ? RGB(214, 224, 235)
                                                    : RGB(240, 244, 248));
    else if (stem == "MenuIconChecked")
        dc.FillSolidRect(rc, kKey);
    else if (stem == "FileTransProgressBar" && nState == 1)
        dc.FillSolidRect(rc, RGB(91, 146, 200));
    else
        dc.FillSolidRect(rc, look.clrFace);
    if (bFrame || stem.starts_with("WndBkg") || stem == "MenuIconChecked") {
        // plain
    } else if (file.pszFirstKey) { // its ends are repeated too, so they have no edge of their own
        dc.FillSolidRect(rc.left, rc.top, rc.Width(), 1, look.clrEdge);
        dc.FillSolidRect(rc.left, rc.bottom - 1, rc.Width(), 1, look.clrEdge);
    } else {
        Outline(dc, rc, look.clrEdge);
    }
    if (const Glyph* pGlyph = GlyphOf(stem, nState)) DrawGlyph(dc, rc, *pGlyph, look.clrInk);
}

// Draws the four squares of a scroll bar: up, down, thumb and track.
void DrawScrollBar(CDC& dc)
{
    for (int n = 0; n < 4; ++n) {
        const CRect rc(n * 16, 0, n * 16 + 16, 16);
        dc.FillSolidRect(rc, n == 3 ? kLooks[Disabled].clrFace : kLooks[Normal].clrFace);
        if (n < 3) Outline(dc, rc, kLooks[Normal].clrEdge);
        if (n < 2) DrawGlyph(dc, rc, n == 0 ? kUp : kDown, kInk);
    }
}

bool SaveArtwork(const skin::SkinFile& file, const CString& strPath)
{
    CKXMemoryDC surface;
    surface.Create(file.bHorz ? file.cx * file.nStates : file.cx,
                   file.bHorz ? file.cy : file.cy * file.nStates);
    if (StemOf(file.pszPath) == "ScrollBar") {
        DrawScrollBar(surface.GetDC());
    } else {
        for (int n = 0; n < file.nStates; ++n) {
            const int x = file.bHorz ? n * file.cx : 0;
            const int y = file.bHorz ? 0 : n * file.cy;
            DrawState(surface.GetDC(), CRect(x, y, x + file.cx, y + file.cy), file, n);
        }
    }
    const CKXGdiplusBitmap bitmap(surface.GetHBitmap());
    return bitmap.SaveToFile(strPath, file.kind == skin::FileKind::Picture ? "image/png" : "image/bmp") != 0;
}

void Put(std::string& bytes, unsigned value, int nBytes)
{
    for (int n = 0; n < nBytes; ++n)
        bytes += static_cast<char>(value >> 8 * n & 0xFF);
}

// An icon of one image, 16 by 16 in 32 bits: a folder, closed or open.
std::string IconFile(bool bOpen)
{
    constexpr unsigned kSide = 16;
    std::string image;
    Put(image, 40, 4);
    Put(image, kSide, 4);
    Put(image, kSide * 2, 4);
    Put(image, 1, 2);
    Put(image, 32, 2);
    for (int n = 0; n < 6; ++n)
        Put(image, 0, 4);
    for (int y = kSide - 1; y >= 0; --y)
        for (int x = 0; x < static_cast<int>(kSide); ++x) {
            const bool bTab = y == 3 && x >= 1 && x < 7;
            const bool bBody = y >= 4 && y < 14 && x >= 1 && x < 15;
            const bool bLid = bOpen && y >= 8 && x > (13 - y) / 2;
            Put(image, !bTab && !bBody ? 0 : bLid ? 0xFFF4CE7A : 0xFFE0AA3E, 4);
        }
    image.append(kSide * 4, '\0'); // the mask, which the fourth byte of the pixels replaces
    std::string file;
    Put(file, 0, 2);
    Put(file, 1, 2);
    Put(file, 1, 2);
    Put(file, kSide, 1);
    Put(file, kSide, 1);
    Put(file, 0, 2);
    Put(file, 1, 2);
    Put(file, 32, 2);
    Put(file, static_cast<unsigned>(image.size()), 4);
    Put(file, 22, 4);
    return file + image;
}

std::string IniFile()
{
    std::string ini =
        "; A skin. Sizes are in pixels, colours RGB(red,green,blue); what is transparent in a bitmap has "
        "the\r\n"
        "; colour 255,0,255. Every key has its default here: one that is left out has it too.\r\n";
    std::string section;
    for (const skin::SkinKey& key : skin::kKeys) {
        if (section != key.pszSection) {
            section = key.pszSection;
            ini += "\r\n[" + section + "]\r\n";
        }
        ini += std::string("; ") + key.pszMeaning + "\r\n" + key.pszKey + "=" + key.pszDefault + "\r\n";
    }
    return ini;
}

} // namespace

bool WriteFile(const fs::path& path, const std::string& content)
{
    std::ofstream file(path, std::ios::binary);
    file << content;
    return file.flush().good();
}

int NewSkin(Arguments& arguments)
{
    const auto dir = arguments.Word();
    if (!dir || !arguments.Rest().empty()) return Misused("kx skin new DIR");
    std::error_code error;
    if (fs::exists(*dir, error) && !fs::is_empty(*dir, error))
        return Complain("there is something at " + *dir);
    const CString strDir = LibraryPath(*dir, true);
    if (strDir.IsEmpty()) return Complain("the path is too long: " + *dir);
    for (const char* pszBelow : {"Window", "Button", "IMList", "Others"})
        fs::create_directories(fs::path(*dir) / "Common" / pszBelow, error);
    if (error) return Complain(*dir + " can't be made: " + error.message());
    if (!WriteFile(fs::path(*dir) / "Skin.ini", IniFile())) return Complain("can't write into " + *dir);
    for (const skin::SkinFile& file : skin::kFiles) {
        std::string below = file.pszPath;
        std::replace(below.begin(), below.end(), '\\', '/');
        const bool bWritten =
            file.kind == skin::FileKind::Icon
                ? WriteFile(fs::path(*dir) / below, IconFile(std::strstr(file.pszPath, "Expand") != nullptr))
                : SaveArtwork(file, strDir + file.pszPath);
        if (!bWritten) return Complain("can't write " + *dir + "/" + below);
    }
    return Clean;
}

} // namespace kx::tool
