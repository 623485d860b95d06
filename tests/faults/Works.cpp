#include "tests/faults/Faults.h"

#include "KXCommonClass.h"
#include "tests/platform/gdiplus/Builders.h"
#include "tests/support/Com.h"
#include "tests/support/GdiPlus.h"
#include "tests/support/RawServer.h"
#include "tests/support/Registry.h"
#include "tests/support/ScriptedManager.h"

namespace faults {

namespace {

constexpr const char* kTypes[] = {"png", "jpg", "bmp", "tif", "gif"};
constexpr const char* kMimes[] = {"image/png", "image/jpeg", "image/bmp", "image/tiff", "image/gif"};

void WriteFile(const std::string& path, std::string_view text)
{
    std::ofstream(path, std::ios::binary) << text;
}

// ---- Files

bool Log(const Place& place)
{
    CKXLogSys* const pLog = CKXLogSys::GetSingletonPtr();
    if (!pLog || !pLog->Initialize(place.Own("a.log"))) return false;
    const std::unique_ptr<CKXLogSys, decltype([](auto* p) { p->Uninitialize(); })> stop(pLog);
    for (int n = 0; n < 5; ++n)
        pLog->PushLogEx(CKXLogSys::LogInfo, "line %d of a log", n);
    pLog->PushLog(CKXLogSys::LogError, "the last");
    if (!pLog->Flush(INFINITE)) return false;
    const Pause pause;
    const std::string text = test::ReadFile(place.Path("a.log"));
    return std::ranges::count(text, '\n') >= 6 && text.ends_with("] 2 the last\n");
}
bool LogIntact(const Place& place)
{
    const std::string text = test::ReadFile(place.Path("a.log"));
    return text.empty() || text.back() == '\n';
}

const std::string kIni = "; a file\r\n[A]\r\nkeep=1\r\nchange=old\r\n\r\n[B]\r\nkeep=2\r\n";

void PrepareIni(const Place& place)
{
    WriteFile(place.Path("a.ini"), kIni);
}
bool Ini(const Place& place)
{
    const char* const pszFile = place.Own("a.ini");
    if (CKXIniDataMgr::GetInteger(pszFile, "A", "keep", 7) != 1) return false;
    if (!CKXIniDataMgr::WriteInteger(pszFile, "A", "change", 5)) return false;
    if (!CKXIniDataMgr::WriteInteger(pszFile, "C", "new", 6)) return false;
    return CKXIniDataMgr::GetInteger(pszFile, "A", "change", 0) == 5 &&
           CKXIniDataMgr::GetInteger(pszFile, "C", "new", 0) == 6 &&
           CKXIniDataMgr::GetInteger(pszFile, "B", "keep", 0) == 2;
}
bool IniIntact(const Place& place)
{
    const std::string text = test::ReadFile(place.Path("a.ini"));
    return text.starts_with("; a file\r\n[A]\r\nkeep=1\r\nchange=") &&
           text.find("\r\n\r\n[B]\r\nkeep=2\r\n") != text.npos && text.ends_with("\r\n");
}

void PrepareRegistry(const Place& place)
{
    KXHost::SetRegistryFile(place.Path("registry"));
    test::StoreValue("Kept", "v", REG_SZ, std::string_view("kept", 5));
}
bool ReadValue(const char* pszKey, std::string_view expected)
{
    HKEY hKey = nullptr;
    if (RegOpenKeyExA(HKEY_CURRENT_USER, pszKey, 0, KEY_READ, &hKey) != ERROR_SUCCESS) return false;
    std::array<char, 64> data{};
    DWORD nSize = data.size();
    const long error =
        RegQueryValueExA(hKey, "v", nullptr, nullptr, reinterpret_cast<BYTE*>(data.data()), &nSize);
    RegCloseKey(hKey);
    return error == ERROR_SUCCESS && expected == data.data();
}
bool Registry(const Place&)
{
    HKEY hKey = nullptr;
    if (RegCreateKeyExA(HKEY_CURRENT_USER, "Made\\Below", 0, nullptr, 0, KEY_WRITE, nullptr, &hKey,
                        nullptr) != ERROR_SUCCESS)
        return false;
    const long error = RegSetValueExA(hKey, "v", 0, REG_SZ, reinterpret_cast<const BYTE*>("made"), 5);
    RegCloseKey(hKey);
    return error == ERROR_SUCCESS && ReadValue("Made\\Below", "made") && ReadValue("Kept", "kept");
}

void PrepareCopy(const Place& place)
{
    WriteFile(place.Path("copy.png"), "old");
}
bool Copy(const Place& place)
{
    if (!CopyFileA(place.Data("a.png"), place.Own("copy.png"), 0)) return false;
    if (!CKXFileSystem::FileExists(place.Own("copy.png"))) return false;
    if (!CKXFileSystem::CreatePath(place.Own("x\\y\\z\\"))) return false;
    const Pause pause;
    return test::ReadFile(place.Path("copy.png")) == test::ReadFile(place.data + "/a.png");
}
bool CopyIntact(const Place& place)
{
    const std::string text = test::ReadFile(place.Path("copy.png"));
    return text == "old" || text == test::ReadFile(place.data + "/a.png");
}

// ---- Skins and languages

bool Skin(const Place&)
{
    const test::GdiPlus gdiPlus;
    CKXSkinResManager* const pSkins = CKXSkinResManager::GetSingletonPtr();
    if (!pSkins) return false;
    const std::unique_ptr<CKXSkinResManager, decltype([](auto* p) { p->UnInitialize(); })> end(pSkins);
    if (!pSkins->SetSkin("Ember", 1) || !pSkins->SetSkin("Harbour", 1)) return false;
    return pSkins->GetBtnRes()->m_bmpPushButton.GetHBITMAP() && pSkins->GetCurrentSkinName() == "Harbour" &&
           pSkins->GetSkinsTotal() == 2;
}

bool Language(const Place&)
{
    CKXLanResManager* const pLanguages = CKXLanResManager::GetSingletonPtr();
    if (!pLanguages || !pLanguages->Initialize("Languages")) return false;
    if (!pLanguages->SetCurrentLan("Chinese", 1) || !pLanguages->SetCurrentLan("English", 1)) return false;
    return pLanguages->GetString("IDS_DEF_FONT") != "IDS_DEF_FONT" && pLanguages->GetLanCount() == 2;
}

// ---- XML

void PrepareXml(const Place& place)
{
    WriteFile(place.Path("a.xml"),
              "<?xml version=\"1.0\"?>\n<list n=\"2\"><one>first</one><one>second</one></list>\n");
    WriteFile(place.Path("b.xml"), "<list>old</list>\n");
}
bool Xml(const Place& place)
{
    const test::Com com;
    CKXXmlDomDocument document;
    if (!document.Load(place.Own("a.xml"))) return false;
    CKXXmlDomElement root = document.GetDocumentElement(), one;
    CString strOne;
    if (!root.IsValid() || root.GetChild("one", strOne, true) != 1 || strOne != "first") return false;
    if (root.GetAttributeString("n") != "2") return false;
    root.AppendChild(document.CreateElement("two", "third"));
    root.SetAttributeString("m", "a & b");
    document.Save(place.Own("b.xml"));
    CKXXmlDomDocument again;
    return again.Load(place.Own("b.xml")) && again.GetDocumentElement().GetChild("two", strOne, true) == 1 &&
           strOne == "third";
}
bool XmlIntact(const Place& place)
{
    const std::string text = test::ReadFile(place.Path("b.xml"));
    return text.ends_with("</list>\n") || text.ends_with("</list>\r\n");
}

// ---- Pictures

bool BitmapWork(const Place& place)
{
    CKXMemoryDC surface;
    surface.Create(64, 64);
    CKXBitmap bitmap;
    if (!bitmap.LoadBitmapA(place.Data("a.bmp"))) return false;
    bitmap.SetMultiState(2, 1);
    CDC& dc = surface.GetDC();
    bitmap.Draw(&dc, 0, 0, 1);
    bitmap.TransparentDraw(&dc, 8, 8, RGB(255, 0, 0), 0);
    bitmap.Pave(&dc, CRect(0, 0, 64, 64), 0);
    CRgn region;
    bitmap.CreateBitmapRgn(region, RGB(255, 0, 0), 0);
    return region.GetSafeHandle() && dc.GetPixel(0, 0) != CLR_INVALID;
}

template <std::size_t Type>
bool PictureWork(const Place& place)
{
    const test::GdiPlus gdiPlus;
    CKXMemoryDC surface;
    surface.Create(64, 64);
    CKXGdiplusBitmap picture;
    std::array<char, 16> name{};
    std::snprintf(name.data(), name.size(), "a.%s", kTypes[Type]);
    picture.Load(place.Data(name.data()));
    if (!picture.IsValid() || !picture.FitRender(&surface.GetDC(), CRect(0, 0, 20, 20))) return false;
    return picture.SaveToFile(place.Own(name.data()), kMimes[Type]) == 1;
}
CSize SizeOf(const Place& place, const char* pszName)
{
    CKXGdiplusBitmap picture;
    picture.Load(place.Own(pszName));
    return picture.GetImageSize();
}

// Pictures are saved in place of these.
void PreparePictures(const Place& place)
{
    for (const char* pszType : kTypes)
        std::filesystem::copy_file(place.data + "/a." + pszType, place.own + "/a." + pszType);
}
bool PicturesIntact(const Place& place)
{
    const test::GdiPlus gdiPlus;
    return std::ranges::all_of(
        kTypes, [&](const std::string& type) { return SizeOf(place, ("a." + type).c_str()).cx > 0; });
}

bool Gif(const Place& place)
{
    const test::GdiPlus gdiPlus;
    CKXMemoryDC surface;
    surface.Create(16, 16);
    CKXGifRender gif;
    if (!gif.Load(place.Data("frames.gif")) || !gif.Play()) return false;
    for (DWORD dwNow = 0; dwNow < 2'000; dwNow += 200) {
        if (!gif.Playing(dwNow)) return false;
        gif.Render(&surface.GetDC(), 0, 0);
    }
    return true;
}

// Pictures and gradients are made in memory.
bool Images(const Place& place)
{
    const test::GdiPlus gdiPlus;
    CKXMemoryDC surface;
    surface.Create(40, 30);
    CDC& dc = surface.GetDC();
    const CRect rc(0, 0, 9, 9);
    DWORD pixels[6]{};
    CKXGdiplusBitmap raw;
    raw.Load(3, 2, pixels);
    const CKXGdiplusBitmap copy(raw), held(surface.GetHBitmap());
    if (!raw.IsValid() || !copy.IsValid() || !held.IsValid()) return false;
    held.PaveRender(&dc, rc);
    CKXGifRender().Render(&dc, 0, 0);
    CKXGdiplusHelper::DrawLinearGradientRect(dc, rc, 1, 2, 1);
    CKXGdiplusHelper::DrawGradientRoundRect(dc, 1, 2, rc, 4, 4, 1, 3);
    CKXGdiplusHelper::DrawPathGradientRect(dc, rc, 1, 2);
    CKXGdiplusImage image;
    BYTE* pData = nullptr;
    int nSize = 0;
    if (!image.Load(place.Data("a.bmp"))) return false;
    image.Rotate(Gdiplus::Rotate90FlipNone);
    const int bGiven = image.GetImageData(&pData, nSize);
    const std::unique_ptr<BYTE[]> data(pData);
    return bGiven && image.ToThumbnailImage(4, 4) && image.SaveGrayPic(place.Own("a.jpg")) &&
           image.SaveThumbnailImage(place.Own("a.png"), 3, 3, "image/png") &&
           raw.ThumbnailImage(place.Own("a.tif"), 5, 4) && SizeOf(place, "a.jpg") == CSize(2, 4) &&
           SizeOf(place, "a.png") == CSize(3, 3) && SizeOf(place, "a.tif") == CSize(5, 4);
}

// ---- Windows

void Pump()
{
    MSG msg;
    for (int n = 0; n < 1'000 && PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE); ++n)
        DispatchMessageA(&msg);
}

bool Tip(const Place&)
{
    CKXTipWnd tip;
    if (!tip.CreateTipWnd()) return false;
    tip.ShowTipWnd("a tip", 100);
    for (int n = 0; n < 60; ++n) {
        KXHost::AdvanceClock(100);
        Pump();
    }
    return tip.DestroyWindow() != 0;
}
bool Transparent(const Place&)
{
    CKXTransparentWnd window;
    const char* const pszClass = AfxRegisterWndClass(CS_HREDRAW | CS_VREDRAW);
    if (!pszClass || !window.CreateEx(0, pszClass, "", WS_POPUP, CRect(10, 10, 110, 60), nullptr, 0))
        return false;
    window.ShowWindow(SW_SHOW);
    window.UpdateWindow();
    Pump();
    return window.DestroyWindow() != 0;
}

// ---- Others

std::string g_url;

class Downloads : public CKXHttpDownloadMgr
{
};
std::binary_semaphore g_ended{0};

int Tell(unsigned uCode, unsigned, const CString&, const CString&, unsigned long, unsigned long, unsigned)
{
    if (uCode == WM_KXDOWNLOADENDED) g_ended.release();
    return 0;
}
bool Download(const Place& place)
{
    (void)g_ended.try_acquire();
    Downloads downloads;
    downloads.AddTask(g_url.c_str(), place.Own("loaded"), Tell, 0);
    // A worker that failed tells nobody, but runs no more.
    bool bEnded = false;
    for (bool bRunning = true; bRunning && !bEnded;) {
        bRunning = downloads.IsRunning();
        bEnded = g_ended.try_acquire_for(std::chrono::milliseconds(1));
    }
    const Pause pause;
    return bEnded && test::ReadFile(place.Path("loaded")) == "downloaded";
}

bool WordTest(const Place&)
{
    const test::GdiPlus gdiPlus;
    CKXMemoryDC surface;
    surface.Create(300, 100);
    CDC& dc = surface.GetDC();
    CFont font;
    LOGFONTA log{};
    log.lfHeight = 17;
    if (!font.CreateFontIndirectA(&log)) return false;
    CString strWord("wonderful");
    CString strTest = strWord;
    CKXEnglishWord::MakeTestWord(strTest, 3, 1);
    const CRect rc(0, 0, 300, 30), rcBelow(0, 30, 300, 60);
    CKXEnglishWord::DrawTestWord(&dc, strWord, strTest, rc, &font, 0, RGB(9, 9, 9), 1);
    CKXEnglishWord::RedrawWordInvalidPart(&dc, &dc, "wond", "wonders", rc, &font, 0);
    CKXEnglishWord::DrawTestWordResult(&dc, strWord, "wonderfil", rc, rcBelow, &font, 1, 2, 3, 4);
    return strTest != strWord;
}

// Each task ends once, run or not: without memory for its place in the queue it stays its maker's.
std::atomic<int> g_tasksEnded{0};
struct Task : tagKXCommonTask
{
    ~Task() override { ++g_tasksEnded; }
};
bool Tasks(const Place&)
{
    g_tasksEnded = 0;
    {
        CKXCommonTaskThread thread;
        thread.Initialize();
        for (int n = 0; n < 3; ++n) {
            std::unique_ptr<Task> task(new (std::nothrow) Task);
            if (!task) return false;
            thread.AddTask(task.get());
            static_cast<void>(task.release());
        }
        thread.UnInitialize();
    }
    return g_tasksEnded == 3;
}

// A host's manager without allocations of its own but for the texts it is given.
void PrepareService(const Place&)
{
    const auto manager = std::make_shared<test::ScriptedManager>();
    manager->states["Nv"] = {{SERVICE_RUNNING, 1, 10, 0, 0}};
    KXHost::SetServiceManager(manager);
}
bool Service(const Place&)
{
    CKXWinService service("Nv");
    int bExists = 0;
    unsigned long dwState = 0;
    return service.Create("C:\\a\\b", SERVICE_DEMAND_START, "A title") &&
           service.ChangeDesc("a description") && service.ChangeStartType(SERVICE_AUTO_START) &&
           service.GetStatus(bExists, dwState) && bExists && dwState == SERVICE_RUNNING && service.Delete();
}

} // namespace

const char* Join(const std::string& directory, const char* pszName) noexcept
{
    static thread_local std::array<std::array<char, 512>, 8> buffers;
    static thread_local std::size_t next = 0;
    auto& buffer = buffers[next++ % buffers.size()];
    std::snprintf(buffer.data(), buffer.size(), "C:%s/%s", directory.c_str(), pszName);
    for (char& ch : buffer)
        if (ch == '/') ch = '\\';
    return buffer.data();
}

const std::vector<Work>& Works()
{
    static const std::vector<Work> works{
        {"log", nullptr, Log, LogIntact, true},
        {"ini", PrepareIni, Ini, IniIntact},
        {"registry", PrepareRegistry, Registry, [](const Place&) { return ReadValue("Kept", "kept"); }},
        {"files", PrepareCopy, Copy, CopyIntact},
        {"skin", nullptr, Skin, nullptr},
        {"language", nullptr, Language, nullptr},
        {"xml", PrepareXml, Xml, XmlIntact},
        {"bitmap", nullptr, BitmapWork, nullptr},
        {"png", PreparePictures, PictureWork<0>, PicturesIntact},
        {"jpeg", PreparePictures, PictureWork<1>, PicturesIntact},
        {"bmp", PreparePictures, PictureWork<2>, PicturesIntact},
        {"tiff", PreparePictures, PictureWork<3>, PicturesIntact},
        {"gif-file", PreparePictures, PictureWork<4>, PicturesIntact},
        {"gif", nullptr, Gif, nullptr},
        {"images", PreparePictures, Images, PicturesIntact},
        {"tip", nullptr, Tip, nullptr, true},
        {"transparent", nullptr, Transparent, nullptr},
        {"download", nullptr, Download, nullptr},
        {"wordtest", nullptr, WordTest, nullptr},
        {"tasks", nullptr, Tasks, nullptr},
        {"service", PrepareService, Service, nullptr},
    };
    return works;
}

void SetServer(const std::string& url)
{
    g_url = url;
}

void MakeData(const std::string& directory)
{
    const test::GdiPlus gdiPlus;
    const Place place{directory, directory};
    CKXMemoryDC surface;
    surface.Create(24, 16);
    surface.GetDC().FillSolidRect(0, 0, 24, 16, RGB(255, 0, 0));
    surface.GetDC().FillSolidRect(4, 4, 9, 9, RGB(0, 80, 255));
    CKXGdiplusBitmap picture(surface.GetHBitmap());
    for (std::size_t n = 0; n < std::size(kTypes); ++n)
        picture.SaveToFile(place.Own((std::string("a.") + kTypes[n]).c_str()), kMimes[n]);
    std::vector<test::GifFrame> frames;
    for (const char letter : std::string("RGB"))
        frames.push_back({.picture = test::Picture(4, std::string(4, letter)), .delay = 10});
    WriteFile(directory + "/frames.gif", test::Gif(4, 4, frames));
}

} // namespace faults
