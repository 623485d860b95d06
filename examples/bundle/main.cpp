#include <KXCommonClass.h>
#include <cstdio>

// A client whose pictures and texts are linked into it, and whose crashes are reported.
int main()
{
    CKXCrashDumper dumper;
    const CString strPath = CKXFileSystem::GetInstancePtr()->GetAppPath();
    dumper.Initialize("Bundle", strPath, "bundle", "", "", 0, 0);

    const Gdiplus::GdiplusStartupInput input;
    std::uintptr_t nToken = 0;
    Gdiplus::GdiplusStartup(&nToken, &input, nullptr);
    CSize size;
    {
        CKXGdiplusImage image;
        if (image.Load(101)) size = image.GetImageSize();
    }
    Gdiplus::GdiplusShutdown(nToken);

    char text[64];
    const int nLength = LoadStringA(nullptr, 7, text, sizeof text);
    const bool bReporter = CKXFileSystem::GetInstancePtr()->FileExists(strPath + "KXCrashReport.exe");
    std::printf("%s The picture has %d by %d pixels; the reporter is %s.\n", text, size.cx, size.cy,
                bReporter ? "there" : "missing");
    return nLength > 0 && size.cx > 0 && bReporter ? 0 : 1;
}
