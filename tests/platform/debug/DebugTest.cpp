#include "include/platform/Debug.h"
#include "include/KXCommonClass.h"
#include "include/platform/Error.h"
#include "include/platform/Module.h"
#include "internal/Debug.h"
#include "tests/support/BmpBuilder.h"
#include "tests/support/GdiPlus.h"
#include "tests/support/ScriptedManager.h"
#include "tests/support/Test.h"

namespace {

using KXHost::AddDebugObserver;
using KXHost::RemoveDebugObserver;

TEST(Debug, TellsEveryObserverInOrder)
{
    std::vector<std::string> heard;
    const auto add = [&](const char* pszWho) {
        return AddDebugObserver(
            [&heard, pszWho](std::string_view text) { heard.push_back(pszWho + std::string(text)); });
    };
    const std::string longText(100'000, 'x');
    const int nThrower = AddDebugObserver([](std::string_view) { throw 1; });
    const int nFirst = add("1:"), nNone = AddDebugObserver(nullptr), nSecond = add("2:");
    errno = 77;
    OutputDebugStringA("a\n");
    OutputDebugStringA(nullptr);
    EXPECT_EQ(errno, 77);
    RemoveDebugObserver(nSecond);
    RemoveDebugObserver(4711);
    OutputDebugStringA(longText.c_str());
    for (const int nId : {nThrower, nFirst, nNone})
        RemoveDebugObserver(nId);
    OutputDebugStringA("nobody hears this");
    EXPECT_THAT(heard, testing::ElementsAre("1:a\n", "2:a\n", "1:", "2:", "1:" + longText));
}

TEST(Debug, ObserverDoesNotHearItselfButOthersDo)
{
    std::string heard[2];
    int ids[2];
    for (int i = 0; i < 2; ++i)
        ids[i] = AddDebugObserver([&, i](std::string_view text) {
            heard[i] += text;
            if (heard[i].size() < 100) OutputDebugStringA(i == 0 ? "A" : "B");
        });
    OutputDebugStringA("x");
    for (const int nId : ids)
        RemoveDebugObserver(nId);
    EXPECT_EQ(heard[0], "xB");
    EXPECT_EQ(heard[1], "Ax");
}

TEST(Debug, ObserversMayComeAndGoFromWithin)
{
    const auto held = std::make_shared<int>(0);
    int nCalls = 0, nSelf = 0, nOther = 0;
    nSelf = AddDebugObserver([&, held](std::string_view) {
        ++nCalls;
        RemoveDebugObserver(nSelf);
        nOther = AddDebugObserver([&](std::string_view) { nCalls += 10; });
    });
    OutputDebugStringA("x");
    EXPECT_EQ(nCalls, 1);
    EXPECT_EQ(held.use_count(), 1);
    OutputDebugStringA("x");
    EXPECT_EQ(nCalls, 11);
    RemoveDebugObserver(nOther);
}

TEST(Debug, RemoveWaitsForRunningCalls)
{
    std::atomic<int> nStage{0};
    const auto held = std::make_shared<int>(0);
    const int nId = AddDebugObserver([&, held](std::string_view) {
        nStage = 1;
        test::Await([&] { return nStage == 2; });
        for (int i = 0; i < 100; ++i)
            std::this_thread::yield();
        nStage = 3;
    });
    const std::jthread sender([] { OutputDebugStringA("x"); });
    test::Await([&] { return nStage == 1; });
    nStage = 2;
    RemoveDebugObserver(nId);
    EXPECT_EQ(nStage, 3);
    EXPECT_EQ(held.use_count(), 1);
}

TEST(Debug, ObserversComeAndGoWhileThreadsSend)
{
    std::atomic<bool> bStop{false};
    test::RunThreads(4, [&](int t) {
        while (t > 0 && !bStop)
            OutputDebugStringA("x");
        for (int i = 0; t == 0 && i < 50; ++i) {
            auto nCalls = std::make_unique<std::atomic<int>>(0);
            const int nId = AddDebugObserver([p = nCalls.get()](std::string_view) { ++*p; });
            test::Await([&] { return *nCalls > 0; });
            RemoveDebugObserver(nId);
        }
        if (t == 0) bStop = true;
    });
}

TEST(Debug, DiagnosticsAreForThoseWhoAsked)
{
    std::vector<std::string> described, all;
    const int nDescribed = AddDebugObserver([&](std::string_view text) { described.emplace_back(text); });
    EXPECT_FALSE(kx::debug::Wants("skin"));
    int nFormatted = -1; // "%n" stores the length of a text that is formatted
    kx::debug::Tell("skin", "nobody listens%n", &nFormatted);
    const int nAll = AddDebugObserver([&](std::string_view text) { all.emplace_back(text); }, true);
    {
        const kx::debug::Quiet quiet;
        kx::debug::Tell("skin", "kept back%n", &nFormatted);
    }
    EXPECT_EQ(nFormatted, -1);
    EXPECT_TRUE(kx::debug::Wants("skin"));
    kx::debug::Tell("skin", "heard%n", &nFormatted);
    EXPECT_EQ(nFormatted, 5);
    errno = 77;
    SetLastError(78);
    kx::debug::Tell("skin", "%s is missing, %d kept", "a\nb.bmp", 3);
    EXPECT_EQ(errno, 77);
    EXPECT_EQ(GetLastError(), 78u);
    kx::debug::Tell("xml", "%s", std::string(5000, 'x').c_str());
    OutputDebugStringA("described\n");
    for (const int nId : {nDescribed, nAll})
        RemoveDebugObserver(nId);
    EXPECT_FALSE(kx::debug::Wants("skin"));
    EXPECT_THAT(described, testing::ElementsAre("described\n"));
    EXPECT_THAT(all, testing::ElementsAre("skin: heard\n", "skin: a?b.bmp is missing, 3 kept\n",
                                          "xml: " + std::string(1023 - 6, 'x') + "\n", "described\n"));
}

TEST(Debug, StandardErrorOnDemandToTheLastStatic)
{
    using Words = std::vector<std::string>;
    const std::tuple<Words, Words, const char*> cases[] = {
        {{}, {"KX_DEBUG=1"}, "main\nskin: s\nxml: x\nstatic\nobserved static\n"},
        {{}, {"KX_DEBUG=language,xml"}, "xml: x\nobserved static\n"},
        {{}, {"KX_DEBUG=0"}, "observed static\n"},
        {{}, {}, "observed static\n"},
        {{"desktop"},
         {"KX_DEBUG=window", "DISPLAY=:4711"},
         "window: display :4711 doesn't answer; windows appear on a desktop in memory\nobserved static\n"},
    };
    for (const auto& [args, env, pszExpected] : cases) {
        test::Child child("DebugChild", args, env, true);
        EXPECT_EQ(child.Wait(), 0);
        EXPECT_EQ(child.ErrorText(), pszExpected);
    }
}

std::string Heard(const std::function<void()>& work)
{
    const test::DebugText heard(true);
    work();
    return heard.Text();
}
std::string HeardOfPicture(const CString& strPath)
{
    return Heard([&] { CKXGdiplusImage().Load(strPath); });
}
std::string HeardOfImage(const CString& strPath)
{
    const std::string_view path = strPath;
    return Heard([&] { const Gdiplus::Image image(std::u16string(path.begin(), path.end()).c_str()); });
}

// A line that is told once is asked for twice.
TEST(Diagnostics, SayWhatIsWrongWithAFileAndWhatIsTakenInstead)
{
    KXHost::UseMemoryDesktop();
    CKXLogSys::GetSingletonPtr(); // sends a line of its own
    const test::TempDir dir;
    const auto file = [&](const char* pszName, const std::string& content) {
        dir.Write(pszName, content);
        return dir.Win(pszName);
    };
    const CString strText = file("a.txt", "no picture"), strPng = file("a.png", "\x89PNG\r\n\x1A\n");
    const CString strJpeg = file("a.jpg", "\xFF\xD8\xFF\xD9"),
                  strBmp = file("a.bmp", test::ToBmp({"K"}, 24).File()),
                  strCut = file("b.png", test::Png(1, 1, 8, 2, std::string(4, '\0')).substr(0, 40)),
                  strTiff = file("a.tif", std::string("II*\0\x08\0\0\0", 8));
    const auto refused = [](const CString& strPath, const char* pszWhy) {
        return "picture: " + std::string(strPath) + " is refused: " + pszWhy + "; the picture stays empty\n";
    };
    const char* const pszNone = "it is no picture of a known format";
    const char* const pszNoImage = "JPEG datastream contains no image";

    EXPECT_EQ(HeardOfPicture(strText),
              "picture: GdiplusStartup was not called, or ended; no picture and no gradient is drawn\n");
    EXPECT_EQ(HeardOfPicture(strText), "");
    EXPECT_EQ(HeardOfPicture("C:\\none.png"),
              "picture: C:\\none.png can't be opened; there is no new picture\n");
    const test::GdiPlus gdiPlus;
    EXPECT_EQ(HeardOfImage(strText), refused(strText, pszNone));
    EXPECT_EQ(HeardOfPicture(strText), refused(strText, pszNone));
    EXPECT_EQ(HeardOfPicture(strBmp), ""); // nor is a look at its head told of
    EXPECT_EQ(HeardOfPicture(strJpeg), refused(strJpeg, pszNoImage));
    EXPECT_EQ(HeardOfPicture(strPng),
              refused(strPng, "its content is damaged")); // nothing left of the last one
    EXPECT_EQ(HeardOfImage(strJpeg), refused(strJpeg, pszNoImage));
    EXPECT_EQ(HeardOfImage(strPng), refused(strPng, "its content is damaged"));
    EXPECT_EQ(HeardOfImage(strCut), refused(strCut, "cut"));
    EXPECT_EQ(HeardOfImage(strTiff), refused(strTiff, "Failed to read directory at offset 8"));
    EXPECT_EQ(HeardOfImage("C:\\none.png"), refused("C:\\none.png", "it isn't there"));
    EXPECT_EQ(
        Heard([&] { CKXBitmap().LoadBitmapA(strText); }),
        std::string("picture: " + strText + " can't be read as a BMP file; nothing is drawn from it\n"));
    EXPECT_EQ(Heard([] { LoadLibraryA("C:\\none.so"); }),
              "module: C:\\none.so can't be opened; there is no module\n");
    EXPECT_EQ(Heard([&] { LoadLibraryA(strText); }),
              std::string("module: " + strText + " is no bundle of resources; there is no module\n"));
    EXPECT_EQ(Heard([] { CKXLogSys::GetSingletonPtr()->Initialize("C:\\none\\a.log"); }),
              "log: C:\\none\\a.log can't be opened; lines wait until there is a log\n");

    const auto manager = std::make_shared<test::ScriptedManager>();
    manager->errors["manager"] = ERROR_ACCESS_DENIED;
    KXHost::SetServiceManager(manager);
    EXPECT_EQ(Heard([] { OpenSCManagerA(nullptr, nullptr, SC_MANAGER_CONNECT); }),
              "service: the manager of services can't be opened (error 5)\n");
    KXHost::SetServiceManager(nullptr);
}

} // namespace
