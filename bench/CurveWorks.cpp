#include "bench/Curves.h"

#include "bench/BenchDir.h"
#include "bench/Measure.h"
#include "bench/Surfaces.h"

#include <KXBitmap.h>
#include <KXFileSystem.h>
#include <KXIniDataMgr.h>
#include <KXLanResManager.h>
#include <KXLogSys.h>
#include <KXXmlDomDocument.h>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <latch>
#include <memory>
#include <platform/Com.h>
#include <platform/Host.h>
#include <stdexcept>
#include <thread>

namespace bench {

namespace {

using Clock = std::chrono::steady_clock;

void Require(bool bDone)
{
    if (!bDone) throw std::runtime_error("a work fails");
}

template <class Do>
double Seconds(Do&& doIt)
{
    const auto start = Clock::now();
    doIt();
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// A work without anything around it; `once` tells whether it was done.
template <class Once>
TimedWork Bare(Once once)
{
    return [once](int nTimes) mutable {
        return Seconds([&] {
            for (int n = 0; n < nTimes; ++n)
                Require(once());
        });
    };
}

// Files lie in memory: the disk's time isn't the library's.
const BenchDir& Memory()
{
    static const BenchDir dir(BenchDir::On::Memory);
    return dir;
}

// ---- Directories of empty files

std::string Directory(int nFiles)
{
    const std::string name = "files" + std::to_string(nFiles);
    if (!std::filesystem::exists(Memory().Path(name)))
        for (int n = 0; n < nFiles; ++n)
            Memory().Write(name + "/Lesson " + std::to_string(n) + ".txt", "");
    return name;
}

TimedWork LookUp(int nFiles, const char* pszFile, int nFound)
{
    const CString file = Memory().Win(Directory(nFiles) + "/" + pszFile);
    return Bare([file, nFound] { return CKXFileSystem::FileExists(file) == nFound; });
}

// In a process that has asked for nothing in the directory yet.
TimedWork LookUpFirst(int nFiles)
{
    const CString file = Memory().Win(Directory(nFiles) + "/missing.txt");
    return [=](int nTimes) {
        double seconds = 0;
        for (int n = 0; n < nTimes; ++n)
            seconds += std::stod(RunApart([&](std::ostream& out) {
                out << Seconds([&] { Require(!CKXFileSystem::FileExists(file)); });
                out.flush();
                return true;
            }));
        return seconds;
    };
}

TimedWork Copy(int nFiles)
{
    const CString from = Memory().Win(Directory(nFiles));
    return [from](int nTimes) {
        double seconds = 0;
        for (int n = 0; n < nTimes; ++n) {
            std::filesystem::create_directory(Memory().Path("copy"));
            CString source = from, target = Memory().Win("copy");
            seconds += Seconds([&] { CKXFileSystem::CopyDir(source, target, nullptr, 0); });
            Require(CKXFileSystem::FileExists(target + "Lesson 0.txt"));
            std::filesystem::remove_all(Memory().Path("copy"));
        }
        return seconds;
    };
}

// ---- INI files

CString IniFile(int nKeys)
{
    std::string text = "[Words]\r\n";
    for (int n = 0; n < nKeys; ++n)
        text += "Word" + std::to_string(n) + "=17\r\n";
    Memory().Write("words.ini", text);
    return Memory().Win("words.ini");
}

TimedWork ReadIni(int nKeys)
{
    const CString file = IniFile(nKeys);
    const std::string key = "Word" + std::to_string(nKeys / 2);
    return Bare([=] { return CKXIniDataMgr::GetInteger(file, "Words", key.c_str(), 0) == 17; });
}

TimedWork WriteIni(int nKeys)
{
    const CString file = IniFile(nKeys);
    const std::string key = "Word" + std::to_string(nKeys / 2);
    return Bare([=, n = 0]() mutable {
        return CKXIniDataMgr::WriteInteger(file, "Words", key.c_str(), ++n % 1000) != 0;
    });
}

// ---- Languages and documents

TimedWork LoadLanguage(int nTexts)
{
    std::string data;
    for (int n = 0; n < nTexts; ++n)
        data += "IDS_" + std::to_string(n) + " = The text of entry number " + std::to_string(n) + "\r\n";
    Memory().Write("lans/L/Lan.ini", "[Language]\r\nLanguage=L\r\n");
    Memory().Write("lans/L/Data.txt", data);
    KXHost::SetExecutablePath(Memory().Path("app"));
    auto* pManager = CKXLanResManager::GetSingletonPtr();
    pManager->Initialize("lans");
    const CString last = ("IDS_" + std::to_string(nTexts - 1)).c_str();
    return Bare([=] { return pManager->SetCurrentLan("L", 0) && pManager->GetString(last) != last; });
}

TimedWork LoadDocument(int nMegabytes)
{
    static const HRESULT hCom = CoInitialize(nullptr);
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<words>\n";
    const std::string record = "<record><id>17</id><word>harbour</word><meaning>a place for ships</meaning>"
                               "<level>3</level></record>\n";
    while (text.size() < static_cast<std::size_t>(nMegabytes) << 20)
        text += record;
    Memory().Write("words.xml", text + "</words>\n");
    const CString file = Memory().Win("words.xml");
    return [file](int nTimes) {
        Require(hCom >= 0);
        double seconds = 0;
        for (int n = 0; n < nTimes; ++n) {
            CKXXmlDomDocument document;
            seconds += Seconds([&] { Require(document.Load(file)); });
        }
        return seconds;
    };
}

// ---- Clips of single pixels, every second one of every second row from the corner on

class Clipped
{
public:
    explicit Clipped(int nRects)
    {
        const int nSide = static_cast<int>(std::ceil(std::sqrt(nRects)));
        std::vector<RECT> rects;
        for (int n = 0; n < nRects; ++n) {
            const RECT rect{n % nSide * 2, n / nSide * 2, n % nSide * 2 + 1, n / nSide * 2 + 1};
            rects.push_back(rect);
        }
        const HRGN rgn = CreateRectsRgn(rects.data(), nRects);
        SelectClipRgn(m_to, rgn);
        DeleteObject(rgn);
        m_bitmap.AttachBitmap(CreateCompatibleBitmap(m_to, 8, 8));
        m_bitmap.SetFillParam(0, 0, 1);
        m_bitmap.SetMultiState(1, 1);
        BitBlt(m_bitmap.GetHDC(), 0, 0, 8, 8, Ours({8, 8}, Pixels(64, 0xFFFFFF)), 0, 0, SRCCOPY);
    }
    bool Copy() { return BitBlt(m_to, 0, 0, 8, 8, m_bitmap.GetHDC(), 0, 0, SRCCOPY) != 0; }
    bool Pave()
    {
        m_bitmap.Pave(CDC::FromHandle(m_to), CRect(0, 0, side.cx, side.cy), 0);
        return true;
    }
    bool IsDrawn() const { return GetPixel(m_to, 0, 0) == 0xFFFFFF; }

private:
    static constexpr Size side{256, 256};
    const Ours m_to{side};
    CKXBitmap m_bitmap;
};

TimedWork DrawClipped(int nRects, bool (Clipped::*pfnDraw)())
{
    const auto clipped = std::make_shared<Clipped>(nRects);
    Require(((*clipped).*pfnDraw)() && clipped->IsDrawn());
    return Bare([=] { return ((*clipped).*pfnDraw)(); });
}

// ---- The log

// All threads together log as many lines each time, of which the time of some is a part.
TimedWork Log(int nThreads)
{
    constexpr int nLines = 1 << 18;
    return [=](int nTimes) {
        CKXLogSys* const pLog = CKXLogSys::GetSingletonPtr();
        const CString strLine = "the quick brown fox jumps over the lazy dog 0123456789 abcde";
        Require(pLog->Initialize(Memory().Win("lines.log")) != 0);
        std::latch start(nThreads + 1);
        std::vector<std::jthread> threads;
        for (int n = 0; n < nThreads; ++n)
            threads.emplace_back([&] {
                start.arrive_and_wait();
                for (int k = 0; k < nLines / nThreads; ++k)
                    pLog->PushLog(CKXLogSys::LogInfo, strLine);
            });
        start.arrive_and_wait();
        const double seconds = Seconds([&] {
            threads.clear();
            Require(pLog->Flush(INFINITE) != 0);
        });
        pLog->Uninitialize();
        return seconds / nLines * nTimes;
    };
}

} // namespace

std::vector<CurvePlan> CurvePlans()
{
    const std::vector<int> files{1'000, 10'000, 50'000, 200'000}, keys{10, 100, 1'000, 10'000},
        texts{1'000, 10'000, 100'000, 1'000'000}, megabytes{1, 4, 16, 60}, rects{1, 10, 100, 1'000, 10'000},
        threads{1, 2, 4, 8, 16, 32, 64};
    return {
        {{"size_dir_found", "a file found by its name in another case", "files", {}},
         files,
         [](int n) { return LookUp(n, "lesson 7.TXT", 1); }},
        {{"size_dir_missing", "a missing file looked for again", "files", {}},
         files,
         [](int n) { return LookUp(n, "missing.txt", 0); }},
        {{"size_dir_missing_first", "a missing file, a process's first look", "files", {}},
         files,
         LookUpFirst},
        {{"size_dir_copy", "a directory of empty files copied", "files", {}}, files, Copy},
        {{"size_ini_read", "a value read from an INI file", "keys", {}}, keys, ReadIni},
        {{"size_ini_write", "a value written to an INI file", "keys", {}}, keys, WriteIni},
        {{"size_language", "a language loaded", "texts", {}}, texts, LoadLanguage},
        {{"size_document", "an XML document loaded", "MB", {}}, megabytes, LoadDocument},
        {{"size_clip_copy", "8 by 8 pixels copied under a clip", "rectangles", {}},
         rects,
         [](int n) { return DrawClipped(n, &Clipped::Copy); }},
        {{"size_clip_pave", "256 by 256 pixels paved under a clip", "rectangles", {}},
         rects,
         [](int n) { return DrawClipped(n, &Clipped::Pave); }},
        {{"size_log", "a line logged until it is in the file", "threads", {}}, threads, Log},
    };
}

} // namespace bench
