#pragma once

// All that a skin consists of: what its author may put there, for what checks and makes skins.
namespace kx::skin {

enum class FileKind
{
    Bitmap,
    Icon,
    Picture
};

struct SkinFile
{
    const char* pszPath; // below the skin's directory
    int nStates;
    bool bHorz;              // states side by side, else one above the other
    int cx;                  // of one state in a new skin
    int cy;                  //
    const char* pszFirstKey; // of the ends that stay unstretched; null without
    const char* pszLastKey;
    FileKind kind = FileKind::Bitmap;
    const char* pszBackground = nullptr; // read with that BkgType alone
};

inline constexpr SkinFile kFiles[] = {
    {"Common\\Window\\Frame_Title.bmp", 2, false, 120, 30, "Title_Left_Width", "Title_Right_Width"},
    {"Common\\Window\\Frame_Left.bmp", 2, true, 4, 40, "Left_Top_Height", "Left_Bottom_Height"},
    {"Common\\Window\\Frame_Right.bmp", 2, true, 4, 40, "Right_Top_Height", "Right_Bottom_Height"},
    {"Common\\Window\\Frame_Bottom.bmp", 2, false, 120, 4, "Bottom_Left_Width", "Bottom_Right_Width"},
    {"Common\\Window\\Frame_MinBtn.bmp", 8, true, 24, 18, nullptr, nullptr},
    {"Common\\Window\\Frame_MaxBtn.bmp", 8, true, 24, 18, nullptr, nullptr},
    {"Common\\Window\\Frame_RestoreBtn.bmp", 8, true, 24, 18, nullptr, nullptr},
    {"Common\\Window\\Frame_CloseBtn.bmp", 8, true, 24, 18, nullptr, nullptr},
    {"Common\\Window\\WndBkg.bmp", 1, true, 64, 64, "Bkg_bmp_Left", "Bkg_bmp_Right", FileKind::Bitmap,
     "singlebmp"},
    {"Common\\Window\\WndBkg_Top.bmp", 1, true, 64, 32, "BkgTop_bmp_Left", "BkgTop_bmp_Right",
     FileKind::Bitmap, "multibmp"},
    {"Common\\Window\\WndBkg_Mid.bmp", 1, true, 64, 64, "BkgMid_bmp_Left", "BkgMid_bmp_Right",
     FileKind::Bitmap, "multibmp"},
    {"Common\\Window\\WndBkg_Btm.bmp", 1, true, 64, 32, "BkgBtm_bmp_Left", "BkgBtm_bmp_Right",
     FileKind::Bitmap, "multibmp"},
    {"Common\\Window\\ScrollBar.bmp", 1, true, 64, 16, nullptr, nullptr},
    {"Common\\Button\\PushButton.bmp", 5, true, 60, 24, "PushButton_Left", "PushButton_Right"},
    {"Common\\Button\\CheckBox.bmp", 12, true, 14, 14, nullptr, nullptr},
    {"Common\\Button\\RadioButton.bmp", 8, true, 14, 14, nullptr, nullptr},
    {"Common\\Button\\SpinButton.bmp", 8, true, 16, 11, nullptr, nullptr},
    {"Common\\Button\\ComboButton.bmp", 4, true, 16, 20, nullptr, nullptr},
    {"Common\\Button\\TabButtonVert.bmp", 4, true, 60, 26, "TabBtnVert_Left", "TabBtnVert_Right"},
    {"Common\\Button\\TabButtonHorz.bmp", 4, true, 60, 26, "TabBtnHorz_Left", "TabBtnHorz_Right"},
    {"Common\\Button\\MainTabButton.bmp", 4, true, 72, 30, nullptr, nullptr},
    {"Common\\Button\\ListViewHeader.bmp", 4, true, 40, 22, "ListViewHeaderLeft", "ListViewHeaderRight"},
    {"Common\\IMList\\GroupBtn.bmp", 3, true, 60, 22, "GroupBtn_Left", "GroupBtn_Right"},
    {"Common\\IMList\\TeamBtn.bmp", 3, true, 18, 18, nullptr, nullptr},
    {"Common\\IMList\\Normal.ico", 1, true, 16, 16, nullptr, nullptr, FileKind::Icon},
    {"Common\\IMList\\Expand.ico", 1, true, 16, 16, nullptr, nullptr, FileKind::Icon},
    {"Common\\Others\\SliderCtrlTrack.bmp", 1, true, 40, 6, "SliderCtrlTrack_Left", "SliderCtrlTrack_Right"},
    {"Common\\Others\\SliderCtrlThumb.bmp", 1, true, 12, 18, "SliderCtrlThumb_Left", "SliderCtrlThumb_Right"},
    {"Common\\Others\\OutlookCtrlBar.bmp", 3, true, 60, 24, "OutlookCtrlBar_Left", "OutlookCtrlBar_Right"},
    {"Common\\Others\\MenuIconChecked.bmp", 1, true, 14, 14, nullptr, nullptr},
    {"Common\\Others\\FileTransProgressBar.bmp", 2, true, 40, 12, "FileTransProgressBar_Left",
     "FileTransProgressBar_Right"},
    {"Common\\Others\\FileSend.png", 1, true, 24, 24, nullptr, nullptr, FileKind::Picture},
    {"Common\\Others\\FileReceive.png", 1, true, 24, 24, nullptr, nullptr, FileKind::Picture},
};

enum class ValueKind
{
    Number, // in pixels unless said
    Flag,
    Color,
    Points,
    Background,
    Text
};

struct SkinKey
{
    const char* pszSection;
    const char* pszKey;
    ValueKind kind;
    const char* pszDefault; // taken where the key lacks
    const char* pszMeaning;
};

inline constexpr char kWhite[] = "RGB(255,255,255)";
inline constexpr char kBlue[] = "RGB(0,0,255)";

inline constexpr SkinKey kKeys[] = {
    {"COLOR", "BackColor", ValueKind::Color, kWhite, "the ground of windows and fields"},
    {"COLOR", "TextColor", ValueKind::Color, "RGB(0,0,0)", "text"},
    {"COLOR", "TitleColor", ValueKind::Color, kWhite, "the text in the title"},
    {"COLOR", "MainTabClient", ValueKind::Color, kWhite, "the page below the main tabs"},
    {"COLOR", "MainTabBkg", ValueKind::Color, kWhite, "the column of sections beside it"},
    {"COLOR", "MainTabBorderLine", ValueKind::Color, kBlue, "the line around that page"},
    {"COLOR", "TabBorderLine", ValueKind::Color, kBlue, "the line around a tab's page"},
    {"COLOR", "CommonBorderLine", ValueKind::Color, kBlue, "the line around fields and lists"},
    {"COLOR", "ControlBarBk1", ValueKind::Color, kWhite, "the first end of a control bar's gradient"},
    {"COLOR", "ControlBarBk2", ValueKind::Color, kBlue, "its other end"},
    {"COLOR", "MenuBorderNormal", ValueKind::Color, kBlue, "the line around a menu's entry"},
    {"COLOR", "MenuBorderSelect", ValueKind::Color, kBlue, "the same under the mouse"},
    {"COLOR", "MenuBorderPress", ValueKind::Color, kBlue, "the same while it is pressed"},
    {"COLOR", "MenuSelectBk", ValueKind::Color, kBlue, "an entry of the menu bar under the mouse"},
    {"COLOR", "PopMenuBk", ValueKind::Color, kBlue, "the ground of a pop-up menu"},
    {"COLOR", "PopMenuLeftBk", ValueKind::Color, kBlue, "its column of icons"},
    {"COLOR", "PopMenuSelBk", ValueKind::Color, kBlue, "its entry under the mouse"},
    {"COLOR", "PopMenuSelBorder", ValueKind::Color, kBlue, "the line around that"},
    {"COLOR", "FileTransHotBk1", ValueKind::Color, "RGB(200,200,255)",
     "a file transfer under the mouse: the first end of its gradient"},
    {"COLOR", "FileTransHotBk2", ValueKind::Color, kBlue, "its other end"},
    {"RoundCorner", "CornerPath1", ValueKind::Points, "", "points that cut a corner, as 0,5|1,3|3,1|5,0"},
    {"RoundCorner", "CornerPath2", ValueKind::Points, "", "the same for the next"},
    {"RoundCorner", "CornerPath3", ValueKind::Points, "", "the same for the next"},
    {"RoundCorner", "CornerPath4", ValueKind::Points, "", "the same for the next"},
    {"RoundCorner", "CornerMask1", ValueKind::Text, "", "a text for clients"},
    {"RoundCorner", "CornerMask2", ValueKind::Text, "", "a text for clients"},
    {"RoundCorner", "CornerMask3", ValueKind::Text, "", "a text for clients"},
    {"RoundCorner", "CornerMask4", ValueKind::Text, "", "a text for clients"},
    {"Border", "DrawType", ValueKind::Number, "0", "a number for clients"},
    {"Border", "Title_Left_Width", ValueKind::Number, "0", "what stays unstretched of Frame_Title"},
    {"Border", "Title_Right_Width", ValueKind::Number, "0", "at its right"},
    {"Border", "Left_Top_Height", ValueKind::Number, "0", "what stays unstretched of Frame_Left"},
    {"Border", "Left_Bottom_Height", ValueKind::Number, "0", "at its lower end"},
    {"Border", "Right_Top_Height", ValueKind::Number, "0", "what stays unstretched of Frame_Right"},
    {"Border", "Right_Bottom_Height", ValueKind::Number, "0", "at its lower end"},
    {"Border", "Bottom_Left_Width", ValueKind::Number, "0", "what stays unstretched of Frame_Bottom"},
    {"Border", "Bottom_Right_Width", ValueKind::Number, "0", "at its right"},
    {"SysButton", "AutoAlign", ValueKind::Flag, "TRUE", "whether the client places the caption's buttons"},
    {"SysButton", "MinButton_Offset", ValueKind::Number, "0", "from the window's right side"},
    {"SysButton", "MaxButton_Offset", ValueKind::Number, "0", "from the window's right side"},
    {"SysButton", "CloseButton_Offset", ValueKind::Number, "0", "from the window's right side"},
    {"SysButton", "MinButton_Top", ValueKind::Number, "0", "from the window's upper side"},
    {"SysButton", "MaxButton_Top", ValueKind::Number, "0", "from the window's upper side"},
    {"SysButton", "CloseButton_Top", ValueKind::Number, "0", "from the window's upper side"},
    {"SysButton", "Button_Space", ValueKind::Number, "0", "between two buttons"},
    {"SysButton", "SysMenu_Top", ValueKind::Number, "0", "where the window's icon lies"},
    {"SysButton", "SysMenu_Left", ValueKind::Number, "0", "where the window's icon lies"},
    {"SysButton", "TitleText_Top", ValueKind::Number, "0", "where the title's text begins"},
    {"SysButton", "TitleText_Left", ValueKind::Number, "0", "where the title's text begins"},
    {"SysButton", "AlwaysShowMinButton", ValueKind::Flag, "FALSE", "also where a window can't be minimized"},
    {"Background", "BackColor", ValueKind::Color, kWhite, "the ground with colorfill"},
    {"Background", "BkgType", ValueKind::Background, "default", "default, colorfill, singlebmp or multibmp"},
    {"Background", "Bkg_bmp_Left", ValueKind::Number, "0", "what stays unstretched of WndBkg"},
    {"Background", "Bkg_bmp_Right", ValueKind::Number, "0", "at its right"},
    {"Background", "BkgTop_bmp_Left", ValueKind::Number, "0", "what stays unstretched of WndBkg_Top"},
    {"Background", "BkgTop_bmp_Right", ValueKind::Number, "0", "at its right"},
    {"Background", "BkgMid_bmp_Left", ValueKind::Number, "0", "what stays unstretched of WndBkg_Mid"},
    {"Background", "BkgMid_bmp_Right", ValueKind::Number, "0", "at its right"},
    {"Background", "BkgBtm_bmp_Left", ValueKind::Number, "0", "what stays unstretched of WndBkg_Btm"},
    {"Background", "BkgBtm_bmp_Right", ValueKind::Number, "0", "at its right"},
    {"Button", "PushButton_Left", ValueKind::Number, "0", "what stays unstretched of PushButton"},
    {"Button", "PushButton_Right", ValueKind::Number, "0", "at its right"},
    {"Button", "TabBtnVert_Left", ValueKind::Number, "0", "what stays unstretched of TabButtonVert"},
    {"Button", "TabBtnVert_Right", ValueKind::Number, "0", "at its right"},
    {"Button", "TabBtnHorz_Left", ValueKind::Number, "0", "what stays unstretched of TabButtonHorz"},
    {"Button", "TabBtnHorz_Right", ValueKind::Number, "0", "at its right"},
    {"Button", "ListViewHeaderLeft", ValueKind::Number, "0", "what stays unstretched of ListViewHeader"},
    {"Button", "ListViewHeaderRight", ValueKind::Number, "0", "at its right"},
    {"Button", "MainTabBtn_Mask", ValueKind::Text, "", "a text for clients"},
    {"Button", "MainTabBtnIntersect_Height", ValueKind::Number, "0", "how far main tabs reach into the page"},
    {"IMList", "GroupBtn_Left", ValueKind::Number, "0", "what stays unstretched of GroupBtn"},
    {"IMList", "GroupBtn_Right", ValueKind::Number, "0", "at its right"},
    {"OtherCtrl", "SliderCtrlTrack_Left", ValueKind::Number, "0",
     "what stays unstretched of SliderCtrlTrack"},
    {"OtherCtrl", "SliderCtrlTrack_Right", ValueKind::Number, "0", "at its right"},
    {"OtherCtrl", "SliderCtrlThumb_Left", ValueKind::Number, "0",
     "what stays unstretched of SliderCtrlThumb"},
    {"OtherCtrl", "SliderCtrlThumb_Right", ValueKind::Number, "0", "at its right"},
    {"OtherCtrl", "OutlookCtrlBar_Left", ValueKind::Number, "0", "what stays unstretched of OutlookCtrlBar"},
    {"OtherCtrl", "OutlookCtrlBar_Right", ValueKind::Number, "0", "at its right"},
    {"OtherCtrl", "FileTransProgressBar_Left", ValueKind::Number, "0",
     "what stays unstretched of FileTransProgressBar"},
    {"OtherCtrl", "FileTransProgressBar_Right", ValueKind::Number, "0", "at its right"},
};

} // namespace kx::skin
