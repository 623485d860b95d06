// Uses what each module gives, and prints to its standard error what came of it. KX_DEBUG=1 adds what the
// library says of it. With an argument, in a thread for each of eight.
#include "include/KXMemoryDC.h"
#include "include/platform/Com.h"
#include "include/platform/Gdi.h"
#include "include/platform/Host.h"
#include "include/platform/Internet.h"
#include "include/platform/Module.h"
#include "include/platform/ServiceManager.h"
#include "include/platform/Services.h"
#include "include/platform/Shell.h"
#include "include/platform/Xml.h"
#include "tests/support/Standard.h"

namespace {

const char* Fetch()
{
    try {
        CInternetSession session;
        const std::unique_ptr<CHttpFile> file(session.OpenURL("http://127.0.0.1:1/"));
        return "fetched";
    } catch (CInternetException* exception) {
        const bool bNoModule = exception->m_dwError == ERROR_INTERNET_INTERNAL_ERROR;
        exception->Delete();
        return bNoModule ? "no HTTP" : "HTTP";
    }
}

const char* OpenManager()
{
    if (const SC_HANDLE hManager = OpenSCManagerA(nullptr, nullptr, 1)) CloseServiceHandle(hManager);
    return KXHost::MakeSystemdManager() ? "services" : "no services";
}

const char* MakeDocument()
{
    CoInitialize(nullptr);
    void* document = nullptr;
    const HRESULT result = CoCreateInstance(CLSID_DOMDocument, nullptr, 1, IID_IXMLDOMDocument, &document);
    if (document) static_cast<IXMLDOMDocument*>(document)->Release();
    CoUninitialize();
    return document ? "XML" : result == REGDB_E_CLASSNOTREG ? "no XML" : "XML fails";
}

const char* DrawText()
{
    CKXMemoryDC surface;
    surface.Create(32, 32);
    const HDC hDC = surface.GetHDC();
    SetTextColor(hDC, RGB(255, 255, 255));
    SetBkMode(hDC, TRANSPARENT);
    TextOutA(hDC, 0, 0, "W", 1);
    bool bSeen = false;
    for (int n = 0; n < 32 * 32; ++n)
        bSeen = bSeen || GetPixel(hDC, n % 32, n / 32) != 0;
    SIZE size{};
    GetTextExtentPoint32A(hDC, "W", 1, &size);
    return size.cx <= 0 || size.cy <= 0 ? "letters of no size" : bSeen ? "letters" : "no letters";
}

// A folder has an icon of its own in every theme.
const char* FindIcon()
{
    SHFILEINFOA info{};
    SHGetFileInfoA("C:\\", 0, &info, sizeof info, SHGFI_SYSICONINDEX | SHGFI_TYPENAME);
    SHGetFileInfoA("C:\\usr", 0, &info, sizeof info, SHGFI_SYSICONINDEX | SHGFI_TYPENAME);
    return !info.szTypeName[0] ? "a shell without words" : info.iIcon ? "shell" : "no shell";
}

void UseAll()
{
    char szPicture[] = "/tmp/kx-doors-XXXXXX"; // a device is no file that can be replaced
    close(mkstemp(szPicture));
    const bool bPictures = KXHost::SaveDesktop(szPicture);
    unlink(szPicture);
    KXHost::UseDisplay(":nonsense", 0);                  // what is said of it tells
    FindResourceA(nullptr, MAKEINTRESOURCEA(7), "DATA"); // by another door than the icons'
    std::fprintf(stderr, "%s, %s, %s, %s, %s, %s\n", Fetch(), OpenManager(), MakeDocument(), DrawText(),
                 FindIcon(), bPictures ? "pictures" : "no pictures");
}

} // namespace

int main(int count, char**)
{
    KXHost::UseMemoryDesktop();
    KXHost::AddDebugObserver([](std::string_view) { DrawText(); }, true); // who listens may draw
    DrawText();
    std::vector<std::jthread> threads;
    for (int n = 0; count > 1 && n < 8; ++n)
        threads.emplace_back(UseAll);
    threads.clear();
    UseAll();
}
