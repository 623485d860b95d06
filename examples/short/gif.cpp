#include "Short.h"

// A GIF of two frames, played by the client's own clock.
namespace {

// Two pixels wide, one high: red and blue, then blue and red; each frame stays for a tenth of a second.
constexpr unsigned char bytes[] = {
    'G',  'I',  'F', '8', '9', 'a', 2, 0, 1, 0, 0x80, 0, 0,    255,  0, 0, 0, 0, 255, // screen, palette
    0x21, 0xF9, 4,   0,   10,  0,   0, 0,                                             // for how long
    0x2C, 0,    0,   0,   0,   2,   0, 1, 0, 0, 2,    2, 0x44, 0x0A, 0,               // the first frame
    0x21, 0xF9, 4,   0,   10,  0,   0, 0,                                             //
    0x2C, 0,    0,   0,   0,   2,   0, 1, 0, 0, 2,    2, 0x0C, 0x0A, 0,               // the second
    0x3B};

COLORREF LeftPixel(CKXGifRender& player)
{
    CKXMemoryDC surface;
    surface.Create(2, 1);
    player.Render(&surface.GetDC(), 0, 0);
    return surface.GetDC().GetPixel(0, 0);
}

} // namespace

int main()
{
    const Pictures pictures;
    const CString strGif = Beside("two.gif");
    CFile file;
    if (!file.Open(strGif, CFile::modeCreate | CFile::modeWrite)) return 1;
    file.Write(bytes, sizeof(bytes));
    file.Close();

    CKXGifRender player;
    if (!player.Load(strGif) || !player.Play()) return 1;
    const bool bFirst = LeftPixel(player) == RGB(255, 0, 0);
    player.Playing(1000); // the client's clock in milliseconds, as a timer of its window tells it
    const bool bSecond = LeftPixel(player) == RGB(0, 0, 255);
    std::printf("first: %d, second: %d\n", bFirst, bSecond);
    return bFirst && bSecond ? 0 : 1;
}
