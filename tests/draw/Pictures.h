#pragma once

#include "platform/Dc.h"
#include "tests/support/GdiPlus.h"
#include "tests/support/Picture.h"
#include "tests/support/Test.h"

namespace test {

// "Load a picture with Load first!", in code page 936.
inline constexpr char szNoImage[] = "\xC7\xEB\xCF\xC8\xCA\xB9\xD3\xC3Load\xB7\xBD\xB7\xA8"
                                    "\xBC\xD3\xD4\xD8\xCD\xBC\xC6\xAC\xA3\xA1";

// A red block on the white paper of a PictureTest.
inline Picture Block(int left, int top, int right, int bottom)
{
    const Paper paper(8, 6, 'W');
    CDC::FromHandle(paper)->FillSolidRect(left, top, right - left, bottom - top, ColorOf('R'));
    return paper.Read();
}

inline std::string File(const Picture& picture)
{
    return ToBmp(picture, 24).File();
}

// The layer, started, and a white paper to draw on.
struct PictureTest : testing::Test
{
    static int LoadBytes(auto& object, std::string bytes)
    {
        return object.Load(reinterpret_cast<BYTE*>(bytes.data()), bytes.size());
    }
    // The paper after a call.
    Picture Drawn(const auto& draw)
    {
        dc.FillSolidRect(0, 0, 8, 6, ColorOf('W'));
        draw();
        return paper.Read();
    }
    // An object's picture at its natural size.
    Picture Shown(const auto& object)
    {
        const CSize size = object.GetImageSize();
        Drawn([&] { object.Render(&dc, CRect(0, 0, size.cx, size.cy)); });
        return Read(paper, 0, 0, size.cx, size.cy);
    }

    const GdiPlus gdiPlus;
    const TempDir dir;
    Paper paper{8, 6, 'W'};
    CDC& dc = *CDC::FromHandle(paper);
};

} // namespace test
