#include "Short.h"

// Surfaces: painted on unseen and shown at once, a copy of what the screen shows, and a frame of any size.
namespace {

HBITMAP MakeBitmap()
{
    CKXMemoryDC surface;
    surface.Create(9, 9);
    surface.GetDC().FillSolidRect(0, 0, 9, 9, RGB(40, 90, 150));
    surface.GetDC().FillSolidRect(1, 1, 7, 7, RGB(190, 215, 240));
    return static_cast<HBITMAP>(surface.GetBitmap().Detach());
}

CKXFrameBitmap MakeFrame()
{
    CKXFrameBitmap frame;
    frame.AttachBitmap(MakeBitmap()); // or LoadBitmapA, from a file
    frame.SetBitmapOptions(CSize(3, 3), CSize(3, 3), CSize(3, 3), CSize(3, 3));
    return frame;
}

class BoxWnd : public CWnd
{
public:
    int Create()
    {
        return CreateEx(0, AfxRegisterWndClass(0), "box", WS_POPUP | WS_VISIBLE, CRect(20, 20, 120, 80),
                        nullptr, 0);
    }
    void OnPaint()
    {
        CPaintDC dc(this);
        CKXPaintMemoryDC memory(this, &dc,
                                RGB(255, 255, 255)); // copied to the window at the end of the scope
        m_frame.Draw(memory, CRect(10, 10, 90, 50), 1, RGB(235, 243, 250));
        CBrush line(RGB(40, 90, 150));
        const CRect rcLine(4, 54, 96, 56);
        memory.GetDC().FillRect(&rcLine, &line);
        SIZE size{};
        GetTextExtentPoint32A(memory.GetHDC(), "box", 3, &size);
        if (memory.GetDC().GetBkColor() == RGB(235, 243, 250)) // of the frame, which was filled last
            memory.GetDC().SetBkColor(RGB(250, 245, 220));     // behind the letters
        TextOutA(memory.GetHDC(), 85 - size.cx, 46 - size.cy, "box", 3);
    }
    DECLARE_MESSAGE_MAP()

private:
    CKXFrameBitmap m_frame = MakeFrame();
};

BEGIN_MESSAGE_MAP(BoxWnd, CWnd)
ON_WM_PAINT()
END_MESSAGE_MAP()

} // namespace

int main()
{
    KXHost::UseMemoryDesktop(200, 150);
    BoxWnd box;
    if (!box.Create()) return 1;
    box.UpdateWindow();

    const HDC hScreen = GetDC(nullptr);
    CKXMemDC copy(CDC::FromHandle(hScreen), CRect(20, 20, 120, 80), 0xFFFFFFFF);
    copy.FromDC();
    const bool bFrame =
        copy.GetPixel(10, 10) == RGB(40, 90, 150) && copy.GetPixel(50, 30) == RGB(235, 243, 250);
    ReleaseDC(nullptr, hScreen);

    CKXTransparentWnd glass; // shows what lies below it
    if (!glass.CreateEx(0, AfxRegisterWndClass(0), "", WS_POPUP, CRect(60, 40, 160, 120), nullptr, 0))
        return 1;
    glass.ShowWindow(SW_SHOW);
    glass.UpdateWindow();
    glass.DestroyWindow();
    box.DestroyWindow();
    std::printf("the frame is there: %d\n", bFrame);
    return bFrame ? 0 : 1;
}
