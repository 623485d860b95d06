#include "include/KXCommonClass.h"
#include "include/platform/Com.h"
#include "include/platform/Module.h"
#include "tests/support/Com.h"
#include "tests/support/Host.h"
#include "tests/support/ScriptedManager.h"
#include "tests/support/TempDir.h"

#include <functional>
#include <gmock/gmock.h>
#include <memory>
#include <string>
#include <string_view>

namespace {

CString Named(const test::TempDir& dir, const char* pszName, const std::string& content)
{
    dir.Write(pszName, content);
    return KXHost::FromSystemPath(dir.Path(pszName));
}

void LoadPicture(const CString& strPath)
{
    CKXGdiplusImage image;
    image.Load(strPath);
}

void LoadFile(const CString& strPath)
{
    const std::string_view path = strPath;
    const Gdiplus::Image image(std::u16string(path.begin(), path.end()).c_str());
}

void LoadXml(const char* pszXml)
{
    const test::Com com;
    CKXXmlDomDocument().LoadXml(pszXml);
}

// What a person would want to know of each family, each with the line that says it. What is told once is here
// twice.
TEST(Diagnostics, SayWhatWasLookedForAndWhatIsTakenInstead)
{
    KXHost::UseMemoryDesktop();
    CKXLogSys::GetSingletonPtr(); // sends a line of its own
    const test::TempDir dir;
    const CString strText = Named(dir, "a.txt", "no picture");
    const CString strPng = Named(dir, "a.png", std::string("\x89PNG\r\n\x1A\n", 8));
    const CString strJpeg = Named(dir, "a.jpg", std::string("\xFF\xD8\xFF\xD9", 4));
    const std::string_view pixel("BM\x3A\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\1\0\0\0\1\0\0\0\1\0\x18\0", 30);
    const CString strBmp = Named(dir, "a.bmp", std::string(pixel) + std::string(28, '\0'));
    const auto about = [](const CString& strPath, const char* pszText) {
        return std::string(strPath.GetString()) + pszText;
    };
    const Gdiplus::GdiplusStartupInput input;
    std::uintptr_t nToken = 0;
    const auto manager = std::make_shared<test::ScriptedManager>();
    manager->errors["manager"] = ERROR_ACCESS_DENIED;

    const struct
    {
        std::function<void()> work;
        std::string line;
    } cases[] = {
        {[] { CKXXmlDomDocument(); },
         "xml: CoInitialize was not called on this thread; there is no document\n"},
        {[] { LoadXml("<a>\n<b>"); },
         "xml: a text is refused at line 2: Premature end of data in tag b line 2; the document stays "
         "empty\n"},
        {[] { LoadXml("<a>\n<b></c>\n</a></d>"); }, // not the last fault, which follows from the first
         "xml: a text is refused at line 2: Opening and ending tag mismatch: b line 2 and c; the document "
         "stays "
         "empty\n"},
        {[] { LoadXml(("<a>" + std::string(300, '<') + "</a>").c_str()); },
         "xml: a text is refused at line 1: StartTag: invalid element name; the document stays empty\n"},
        {[] {
             std::string xml;
             for (int n = 0; n < 300; ++n)
                 xml += "<a>";
             LoadXml(xml.c_str());
         },
         "xml: a text is refused: it goes beyond a limit; the document stays empty\n"},
        {[] {
             const test::Com com;
             CKXXmlDomDocument().Load("C:\\none.xml");
         },
         "xml: C:\\none.xml can't be read; the document stays empty\n"},
        {[&] { LoadPicture(strText); },
         "picture: GdiplusStartup was not called, or ended; no picture and no gradient is drawn\n"},
        {[&] { LoadPicture(strText); }, ""},
        {[&] { LoadPicture("C:\\none.png"); },
         "picture: C:\\none.png can't be opened; there is no new picture\n"},
        {[&] {
             Gdiplus::GdiplusStartup(&nToken, &input, nullptr);
             LoadFile(strText);
         },
         about("picture: " + strText,
               " is refused: it is no picture of a known format; the picture stays empty\n")},
        {[&] { LoadPicture(strText); },
         about("picture: " + strText,
               " is refused: it is no picture of a known format; the picture stays empty\n")},
        {[&] { LoadPicture(strBmp); }, ""}, // nor is a look at its head told of
        {[&] { LoadFile(strPng); },
         about("picture: " + strPng, " is refused: its content is damaged; the picture stays empty\n")},
        {[&] { LoadPicture(strJpeg); },
         about("picture: " + strJpeg,
               " is refused: JPEG datastream contains no image; the picture stays empty\n")},
        {[&] { LoadFile(strJpeg); },
         about("picture: " + strJpeg,
               " is refused: JPEG datastream contains no image; the picture stays empty\n")},
        {[&] { CKXBitmap().LoadBitmapA(strText); },
         about("picture: " + strText, " can't be read as a BMP file; nothing is drawn from it\n")},
        {[] { LoadLibraryA("C:\\none.so"); }, "module: C:\\none.so can't be opened; there is no module\n"},
        {[&] { LoadLibraryA(strText); },
         about("module: " + strText, " is no bundle of resources; there is no module\n")},
        {[&] {
             KXHost::SetServiceManager(manager);
             OpenSCManagerA(nullptr, nullptr, SC_MANAGER_CONNECT);
             KXHost::SetServiceManager(nullptr);
         },
         "service: the manager of services can't be opened (error 5)\n"},
        {[] { CKXLogSys::GetSingletonPtr()->Initialize("C:\\none\\a.log"); },
         "log: C:\\none\\a.log can't be opened; lines wait until there is a log\n"},
    };
    for (const auto& c : cases) {
        const test::DebugText heard(true);
        c.work();
        EXPECT_EQ(heard.Text(), c.line);
    }
    Gdiplus::GdiplusShutdown(nToken);
}

} // namespace
