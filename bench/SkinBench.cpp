#include "bench/BenchDir.h"
#include "bench/Loop.h"
#include "internal/IniSnapshot.h"
#include "tests/support/BmpBuilder.h"

#include <KXFileSystem.h>
#include <KXIniDataMgr.h>
#include <KXSkinResManager.h>
#include <array>
#include <benchmark/benchmark.h>
#include <cstring>
#include <fstream>
#include <iterator>
#include <platform/GdiPlus.h>
#include <platform/Host.h>
#include <platform/Stream.h>
#include <png.h>
#include <string>
#include <vector>

// A change between two full skins against reading and decoding the files of the same skins, by our own
// decoders, with nothing else; and what 120 reads of a skin's file are of such a change.

namespace {

struct Bitmap
{
    const char* pszFile;
    std::size_t cx;
    std::size_t cy;
};

constexpr Bitmap bitmaps[] = {
    {"Window/Frame_Title", 400, 60},      {"Window/Frame_Left", 16, 200},
    {"Window/Frame_Right", 16, 200},      {"Window/Frame_Bottom", 400, 16},
    {"Window/Frame_MinBtn", 168, 21},     {"Window/Frame_MaxBtn", 168, 21},
    {"Window/Frame_RestoreBtn", 168, 21}, {"Window/Frame_CloseBtn", 168, 21},
    {"Window/WndBkg_Top", 600, 80},       {"Window/WndBkg_Mid", 600, 20},
    {"Window/WndBkg_Btm", 600, 60},       {"Window/ScrollBar", 64, 64},
    {"Button/PushButton", 375, 23},       {"Button/CheckBox", 156, 13},
    {"Button/RadioButton", 104, 13},      {"Button/SpinButton", 128, 12},
    {"Button/ComboButton", 68, 20},       {"Button/TabButtonVert", 120, 80},
    {"Button/TabButtonHorz", 320, 25},    {"Button/MainTabButton", 192, 48},
    {"Button/ListViewHeader", 240, 22},   {"IMList/GroupBtn", 72, 24},
    {"IMList/TeamBtn", 72, 24},           {"Others/SliderCtrlTrack", 120, 20},
    {"Others/SliderCtrlThumb", 11, 20},   {"Others/OutlookCtrlBar", 360, 28},
    {"Others/MenuIconChecked", 16, 16},   {"Others/FileTransProgressBar", 300, 14},
};
constexpr const char* icons[] = {"IMList/Normal", "IMList/Expand"};
constexpr const char* images[] = {"Others/FileSend", "Others/FileReceive"};
constexpr std::array<const char*, 2> skins{"Blue", "Green"};

struct Key
{
    const char* pszSection;
    std::vector<const char*> names;
    const char* pszValue;
};

// A skin's keys, each section's numbers, colours, flags and texts.
const std::vector<Key>& Keys()
{
    static const std::vector<Key> keys{
        {"COLOR",
         {"BackColor",         "TextColor",        "TitleColor",       "MainTabClient",   "MainTabBkg",
          "MainTabBorderLine", "TabBorderLine",    "CommonBorderLine", "ControlBarBk1",   "ControlBarBk2",
          "MenuBorderNormal",  "MenuBorderSelect", "MenuBorderPress",  "MenuSelectBk",    "PopMenuBk",
          "PopMenuLeftBk",     "PopMenuSelBk",     "PopMenuSelBorder", "FileTransHotBk1", "FileTransHotBk2"},
         "RGB(64,128,255)"},
        {"RoundCorner",
         {"CornerPath1", "CornerPath2", "CornerPath3", "CornerPath4", "CornerMask1", "CornerMask2",
          "CornerMask3", "CornerMask4"},
         "0,5|1,3|3,1|5,0"},
        {"Border",
         {"DrawType", "Title_Left_Width", "Title_Right_Width", "Left_Top_Height", "Left_Bottom_Height",
          "Right_Top_Height", "Right_Bottom_Height", "Bottom_Left_Width", "Bottom_Right_Width"},
         "6"},
        {"SysButton", {"AutoAlign", "AlwaysShowMinButton"}, "TRUE"},
        {"SysButton",
         {"MinButton_Offset", "MaxButton_Offset", "CloseButton_Offset", "MinButton_Top", "MaxButton_Top",
          "CloseButton_Top", "Button_Space", "SysMenu_Top", "SysMenu_Left", "TitleText_Top",
          "TitleText_Left"},
         "12"},
        {"Background", {"BackColor"}, "RGB(240,240,240)"},
        {"Background", {"BkgType"}, "multibmp"},
        {"Background",
         {"BkgTop_bmp_Left", "BkgTop_bmp_Right", "BkgMid_bmp_Left", "BkgMid_bmp_Right", "BkgBtm_bmp_Left",
          "BkgBtm_bmp_Right"},
         "8"},
        {"Button",
         {"PushButton_Left", "PushButton_Right", "TabBtnVert_Left", "TabBtnVert_Right", "TabBtnHorz_Left",
          "TabBtnHorz_Right", "ListViewHeaderLeft", "ListViewHeaderRight", "MainTabBtnIntersect_Height"},
         "5"},
        {"Button", {"MainTabBtn_Mask"}, "0,5|1,3|3,1|5,0"},
        {"IMList", {"GroupBtn_Left", "GroupBtn_Right"}, "4"},
        {"OtherCtrl",
         {"SliderCtrlTrack_Left", "SliderCtrlTrack_Right", "SliderCtrlThumb_Left", "SliderCtrlThumb_Right",
          "OutlookCtrlBar_Left", "OutlookCtrlBar_Right", "FileTransProgressBar_Left",
          "FileTransProgressBar_Right"},
         "3"},
    };
    return keys;
}

std::string FileName(const char* pszSkin, const char* pszFile, const char* pszExtension)
{
    return std::string("Skins/") + pszSkin + "/Common/" + pszFile + pszExtension;
}

test::Picture Plain(std::size_t cx, std::size_t cy)
{
    return test::Picture(cy, std::string(cx, 'C'));
}

void WritePng(const std::string& path)
{
    constexpr unsigned nSide = 48;
    std::vector<unsigned char> pixels;
    for (unsigned y = 0; y < nSide; ++y)
        for (unsigned x = 0; x < nSide; ++x)
            for (const unsigned channel : {x * 5, y * 5, x * y % 256, x + y < nSide ? 255u : 128u})
                pixels.push_back(static_cast<unsigned char>(channel));
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = image.height = nSide;
    image.format = PNG_FORMAT_RGBA;
    png_image_write_to_file(&image, path.c_str(), 0, pixels.data(), 0, nullptr);
}

void WriteSkin(const char* pszSkin)
{
    std::string ini, section;
    for (const Key& key : Keys()) {
        if (section != key.pszSection) ini += std::string("[") + key.pszSection + "]\r\n";
        section = key.pszSection;
        for (const char* name : key.names)
            ini += std::string(name) + "=" + key.pszValue + "\r\n";
    }
    bench::Dir().Write(std::string("Skins/") + pszSkin + "/Skin.ini", ini);
    for (const Bitmap& bitmap : bitmaps)
        bench::Dir().Write(FileName(pszSkin, bitmap.pszFile, ".bmp"),
                           test::ToBmp(Plain(bitmap.cx, bitmap.cy), 24).File());
    for (const char* icon : icons)
        bench::Dir().Write(FileName(pszSkin, icon, ".ico"), test::Ico({test::IconBmp(Plain(16, 16), 32)}));
    for (const char* image : images)
        WritePng(bench::Dir().Path(FileName(pszSkin, image, ".png")));
}

CKXSkinResManager* Manager()
{
    static CKXSkinResManager* const pManager = [] {
        KXHost::SetExecutablePath(bench::Dir().Path("app"));
        static std::uintptr_t token = 0;
        const Gdiplus::GdiplusStartupInput input;
        Gdiplus::GdiplusStartup(&token, &input, nullptr);
        for (const char* skin : skins)
            WriteSkin(skin);
        return CKXSkinResManager::GetSingletonPtr();
    }();
    return pManager;
}

void ChangeOurs(benchmark::State& state)
{
    CKXSkinResManager* pManager = Manager();
    std::size_t n = 0;
    for (auto _ : bench::Loop(state))
        if (!pManager->SetSkin(skins[n++ % skins.size()], 0)) state.SkipWithError("no skin");
    const bool bLoaded = pManager->GetWndRes()->m_nBkgBtmHeight == 60 &&
                         pManager->GetIMLRes()->m_hExpandIcon &&
                         pManager->GetOthRes()->m_imgFileReceive.GetImageSize().cx == 48;
    if (!bLoaded) state.SkipWithError("not all loaded");
}

// ---- The same files, bare

struct Paths
{
    std::vector<CString> bitmaps;
    std::vector<CString> icons;
    std::vector<std::string> images;
};

Paths PathsOf(const char* pszSkin)
{
    Paths paths;
    for (const Bitmap& bitmap : bitmaps)
        paths.bitmaps.push_back(bench::Dir().Win(FileName(pszSkin, bitmap.pszFile, ".bmp")));
    for (const char* icon : icons)
        paths.icons.push_back(bench::Dir().Win(FileName(pszSkin, icon, ".ico")));
    for (const char* image : images)
        paths.images.push_back(bench::Dir().Path(FileName(pszSkin, image, ".png")));
    return paths;
}

Gdiplus::GpImage* DecodeImage(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    const HGLOBAL hBlock = GlobalAlloc(GMEM_MOVEABLE, bytes.size());
    std::memcpy(GlobalLock(hBlock), bytes.data(), bytes.size());
    GlobalUnlock(hBlock);
    IStream* pStream = nullptr;
    CreateStreamOnHGlobal(hBlock, TRUE, &pStream);
    Gdiplus::GpImage* pImage = nullptr;
    Gdiplus::DllExports::GdipLoadImageFromStream(pStream, &pImage);
    pStream->Release();
    return pImage;
}

// False if one isn't there.
bool Decode(const Paths& paths)
{
    int nEnded = 0;
    for (const CString& path : paths.bitmaps)
        nEnded += DeleteObject(
            LoadImageA(nullptr, path, IMAGE_BITMAP, 0, 0, LR_LOADFROMFILE | LR_CREATEDIBSECTION));
    for (const CString& path : paths.icons)
        nEnded +=
            DestroyIcon(static_cast<HICON>(LoadImageA(nullptr, path, IMAGE_ICON, 16, 16, LR_LOADFROMFILE)));
    for (const std::string& path : paths.images)
        nEnded += Gdiplus::DllExports::GdipDisposeImage(DecodeImage(path)) == Gdiplus::Ok;
    return nEnded == std::size(bitmaps) + std::size(icons) + std::size(images);
}

void ChangeBare(benchmark::State& state)
{
    Manager();
    std::vector<Paths> paths;
    for (const char* skin : skins)
        paths.push_back(PathsOf(skin));
    std::size_t n = 0;
    for (auto _ : bench::Loop(state))
        if (!Decode(paths[n++ % paths.size()])) state.SkipWithError("not all decoded");
}

// ---- The reads of values

void Read(const CString& file, const Key& key, const char* pszName)
{
    if (std::strncmp(key.pszValue, "RGB", 3) == 0)
        benchmark::DoNotOptimize(CKXIniDataMgr::GetRGB(file, key.pszSection, pszName, 0));
    else if (std::strcmp(key.pszValue, "TRUE") == 0)
        benchmark::DoNotOptimize(CKXIniDataMgr::GetBoolean(file, key.pszSection, pszName, false));
    else if (std::strchr(key.pszValue, '|') || std::strcmp(key.pszValue, "multibmp") == 0)
        benchmark::DoNotOptimize(CKXIniDataMgr::GetString(file, key.pszSection, pszName, ""));
    else
        benchmark::DoNotOptimize(CKXIniDataMgr::GetInteger(file, key.pszSection, pszName, 0));
}

void ReadValues(benchmark::State& state)
{
    constexpr int nReads = 120;
    CKXSkinResManager* pManager = Manager();
    pManager->SetSkin(0, 0);
    const CString file = pManager->GetCurrentSkinPath() + "Skin.ini";
    for (const Key& key : Keys())
        for (const char* name : key.names)
            if (CKXIniDataMgr::GetString(file, key.pszSection, name, "") != key.pszValue)
                state.SkipWithError("wrong value");
    for (auto _ : bench::Loop(state)) {
        const kx::profile::IniSnapshot snapshot; // as in a change
        int nLeft = nReads;
        while (nLeft > 0)
            for (const Key& key : Keys())
                for (const char* name : key.names)
                    if (nLeft-- > 0) Read(file, key, name);
    }
}

const int registered = [] {
    const auto add = [](const char* name, void (*run)(benchmark::State&)) {
        benchmark::RegisterBenchmark(name, run)->UseRealTime();
    };
    add("skin_change/ours", ChangeOurs);
    add("skin_change/read_and_decode", ChangeBare);
    add("skin_ini_reads/ours", ReadValues);
    add("skin_ini_reads/whole_change", ChangeOurs);
    return 0;
}();

} // namespace
