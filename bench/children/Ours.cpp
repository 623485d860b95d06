#include "bench/SkinnedWnd.h"

#include <KXCommonClass.h>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <platform/Com.h>
#include <platform/GdiPlus.h>
#include <platform/Host.h>
#include <string>
#include <unistd.h>

// A client of the library that does one thing: `kx_bench_ours WORD DIRECTORY [URL]`. The directory has what
// it works on. It ends with 0 if the work was done.

namespace {

std::string directory, url;

CString File(const std::string& name)
{
    std::string path = "C:" + directory + "/" + name;
    std::replace(path.begin(), path.end(), '/', '\\');
    return path.c_str();
}

bool Nothing()
{
    return true;
}

bool Log()
{
    CKXLogSys* const pLog = CKXLogSys::GetSingletonPtr();
    if (!pLog->Initialize(File("ours.log"))) return false;
    for (int n = 0; n < 100; ++n)
        pLog->PushLogEx(CKXLogSys::LogInfo, "line %d of %d", n, 100);
    const bool bFlushed = pLog->Flush(5000) != 0;
    pLog->Uninitialize();
    return bFlushed;
}

bool Ini()
{
    return CKXIniDataMgr::GetInteger(File("values.ini"), "Window", "Left", 0) == 17;
}

bool Language()
{
    KXHost::SetExecutablePath(directory + "/client");
    CKXLanResManager* const pManager = CKXLanResManager::GetSingletonPtr();
    return pManager->Initialize("lans") && pManager->SetCurrentLan("L", 0) &&
           pManager->GetString("IDS_1999") == "The text of entry number 1999";
}

bool Bitmap()
{
    CKXBitmap bitmap;
    CKXMemoryDC surface;
    surface.Create(400, 30);
    if (!bitmap.LoadBitmapA(File(bench::FileOf(0)))) return false;
    bitmap.Draw(&surface.GetDC(), 0, 0, 0);
    return surface.GetDC().GetPixel(3, 0) == RGB(149, 149, 149);
}

bool Text()
{
    CKXMemoryDC surface;
    surface.Create(100, 40);
    CDC& dc = surface.GetDC();
    dc.FillSolidRect(0, 0, 100, 40, RGB(255, 255, 255));
    CRect rect(0, 0, 100, 40);
    dc.DrawText("MMMM", rect, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
    int nInk = 0;
    for (int x = 0; x < 100; ++x)
        nInk += dc.GetPixel(x, 20) != RGB(255, 255, 255);
    return nInk > 4;
}

bool Png()
{
    std::uintptr_t token = 0;
    const Gdiplus::GdiplusStartupInput input;
    Gdiplus::GdiplusStartup(&token, &input, nullptr);
    CKXGdiplusImage image;
    return image.Load(File("picture.png")) && image.GetImageSize() == CSize(48, 48);
}

bool Xml()
{
    CoInitialize(nullptr);
    CKXXmlDomDocument document;
    return document.Load(File("words.xml")) &&
           document.GetDocumentElement().GetChild("word[10]").GetText() == "harbour";
}

HANDLE hEnded;
unsigned long received;

int OnDownload(unsigned code, unsigned, const CString&, const CString&, unsigned long,
               unsigned long dwReceived, unsigned)
{
    if (code != WM_KXDOWNLOADENDED) return 0;
    received = dwReceived;
    SetEvent(hEnded);
    return 0;
}

bool Http()
{
    hEnded = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    CKXHttpDownloadMgr::Instance().AddTask(url.c_str(), File("ours.http"), OnDownload, 0);
    return WaitForSingleObject(hEnded, 5000) == WAIT_OBJECT_0 && received == 2048;
}

// The bus has no address here.
bool Service()
{
    CKXWinService service("kx-bench-none");
    int bExists = 1;
    unsigned long dwState = 0;
    return !service.GetStatus(bExists, dwState) || !bExists;
}

bool Shell()
{
    CString strName, strType;
    CKXFileSystem::GetTypeDesc(File("picture.png"), strName, strType);
    return strName == "picture.png" && !strType.IsEmpty();
}

// Shown, and held as long as there is input if it isn't /dev/null.
bool Window()
{
    if (!KXHost::UseDisplay()) return false;
    bench::CSkinnedWnd wnd;
    for (std::size_t n = 0; n < bench::arts.size(); ++n)
        if (!wnd.bitmaps[n].LoadBitmapA(File(bench::FileOf(n)))) return false;
    if (!wnd.Create()) return false;
    wnd.ShowWindow(SW_SHOW);
    wnd.UpdateWindow();
    std::puts("shown");
    std::fflush(stdout);
    char ch;
    while (read(STDIN_FILENO, &ch, 1) > 0) {
    }
    wnd.DestroyWindow();
    return true;
}

struct Word
{
    const char* pszName;
    bool (*pfnDo)();
};
constexpr Word words[] = {{"nothing", Nothing},   {"log", Log},       {"ini", Ini},
                          {"language", Language}, {"bitmap", Bitmap}, {"text", Text},
                          {"png", Png},           {"xml", Xml},       {"http", Http},
                          {"service", Service},   {"shell", Shell},   {"window", Window}};

} // namespace

int main(int argc, char** argv)
{
    if (argc < 3) return 2;
    directory = argv[2];
    if (argc > 3) url = argv[3];
    for (const Word& word : words)
        if (std::strcmp(word.pszName, argv[1]) == 0) return word.pfnDo() ? 0 : 1;
    return 2;
}
