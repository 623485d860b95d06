#pragma once

#include "KXBitmap.h"
#include "tests/support/AppDir.h"
#include "tests/support/GdiPlus.h"
#include "tests/support/Picture.h"
#include "tests/support/Test.h"

// Skins written by the tests.
namespace test {

inline std::string BmpFile(int cx, int cy)
{
    return ToBmp(Plain(cx, cy), 24).File();
}

inline std::string IconImage(int side)
{
    return IconBmp(Plain(side, side, 'G'), 32);
}

inline std::vector<std::string> Words(const std::string& text)
{
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

// The files of a full skin, in the order of loading.
inline std::vector<std::string> SkinFiles()
{
    std::vector<std::string> files;
    std::string dir;
    for (
        const std::string& word : Words(
            "Common/Window/ Frame_Title.bmp Frame_Left.bmp Frame_Right.bmp Frame_Bottom.bmp Frame_MinBtn.bmp "
            "Frame_MaxBtn.bmp Frame_RestoreBtn.bmp Frame_CloseBtn.bmp Skin.ini WndBkg_Top.bmp WndBkg_Mid.bmp "
            "WndBkg_Btm.bmp ScrollBar.bmp Common/Button/ PushButton.bmp CheckBox.bmp RadioButton.bmp "
            "SpinButton.bmp ComboButton.bmp TabButtonVert.bmp TabButtonHorz.bmp MainTabButton.bmp "
            "ListViewHeader.bmp Common/IMList/ GroupBtn.bmp TeamBtn.bmp Normal.ico Expand.ico Common/Others/ "
            "SliderCtrlTrack.bmp SliderCtrlThumb.bmp OutlookCtrlBar.bmp MenuIconChecked.bmp "
            "FileTransProgressBar.bmp FileSend.png FileReceive.png")) {
        if (word.ends_with('/'))
            dir = word;
        else
            files.push_back(word == "Skin.ini" ? word : dir + word);
    }
    return files;
}

// Their contents. Bitmaps are of 24 by 10 pixels, the title of 40 by 60; images of 1 by 2.
inline std::string SkinFile(const std::string& name)
{
    if (name.ends_with(".ini")) return "[Background]\r\nBkgType=MultiBMP\r\n[COLOR]\r\nMainTabClient=1,2,3";
    if (name.ends_with(".ico")) return Ico({IconImage(16)});
    if (name.ends_with(".png")) return Png(1, 2, 8, 2, std::string(8, '\0'));
    return name.ends_with("Title.bmp") ? BmpFile(40, 60) : BmpFile(24, 10);
}

} // namespace test
