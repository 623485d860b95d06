// The five sets of what a skin is drawn with, each loaded by itself.

#include "KXSkinResManager.h"
#include "tests/skin/SkinTree.h"

using namespace test;
using testing::Each, testing::ElementsAre;
using Texts = std::vector<std::string>;

namespace {

struct Sets : testing::Test
{
    Sets()
    {
        for (const std::string& name : SkinFiles())
            dir.Write(name.substr(name.rfind('/') + 1), SkinFile(name));
    }
    void Bmp(const std::string& name, int cx, int cy) { dir.Write(name + ".bmp", BmpFile(cx, cy)); }
    // Loads a set from the files written and an INI text, given with a space between its lines.
    template <class Res>
    void Load(Res& res, std::string ini = "")
    {
        std::ranges::replace(ini, ' ', '\n');
        dir.Write("Skin.ini", ini);
        EXPECT_EQ(res.LoadRes(dir.Win("") + "\\", dir.Win("Skin.ini")), 1);
    }
    template <class Res>
    void LoadNothing(Res& res)
    {
        EXPECT_EQ(res.LoadRes(dir.Win("none\\"), dir.Win("none\\Skin.ini")), 1);
    }

    const GdiPlus gdiPlus;
    NoLeak noLeak;
    const TempDir dir;
};

std::string Text(const SIZE& size)
{
    return std::to_string(size.cx) + "x" + std::to_string(size.cy);
}

std::string Text(HICON hIcon)
{
    SIZE size;
    return GetIconSize(hIcon, &size) ? Text(size) : "none";
}

std::string Text(const std::vector<CPoint>& points)
{
    std::string text;
    for (const CPoint& pt : points)
        text += (text.empty() ? "" : " ") + std::to_string(pt.x) + "," + std::to_string(pt.y);
    return text;
}

// The lengths of a bitmap's fixed ends, as a fill copies them: "3,4 across" or "3,4 down"; "" if it is empty.
std::string Text(CKXBitmap& bitmap)
{
    constexpr int side = 300;
    const Paper paper(side, side);
    std::vector<KXHost::CopyRecord> copies;
    KXHost::SetCopyObserver([&](const KXHost::CopyRecord& copy) { copies.push_back(copy); });
    bitmap.DrawFill(CDC::FromHandle(paper), CRect(0, 0, side, side), 0);
    KXHost::SetCopyObserver({});
    if (copies.empty()) return "";
    const auto &first = copies[copies.size() - 2], &last = copies.back();
    return last.y == 0 ? std::to_string(first.cx) + "," + std::to_string(last.cx) + " across"
                       : std::to_string(first.cy) + "," + std::to_string(last.cy) + " down";
}

template <class... Values>
Texts All(Values&&... values)
{
    return {Text(values)...};
}

std::vector<int> Values(const CKXSkinWndRes& r)
{
    return {r.m_nDrawType,       r.m_bAutoAlign,       r.m_nMinBtnOffset, r.m_nMaxBtnOffset,
            r.m_nCloseBtnOffset, r.m_nMinBtnTop,       r.m_nMaxBtnTop,    r.m_nCloseBtnTop,
            r.m_nBtnSpace,       r.m_nSysMenuTop,      r.m_nSysMenuLeft,  r.m_nTitleTextTop,
            r.m_nTitleTextLeft,  r.m_bAlwaysShowMinBtn};
}

std::vector<COLORREF> Colors(const CKXSkinWndRes& r)
{
    return {r.m_clrBack, r.m_clrText, r.m_clrTitle, r.m_clrTitleAlt, r.m_clrBkg};
}

constexpr char szWndIni[] =
    "[COLOR] BackColor=1,2,3 TextColor=4,5,6 TitleColor=7,8,9 [Background] BackColor=10,11,12 "
    "[RoundCorner] CornerPath1=1,1 CornerPath2=2,2|2,3 CornerPath3=3,3 CornerPath4=4,4 CornerMask1=m1 "
    "CornerMask2=m2 CornerMask3=m3 CornerMask4=m4 [Border] DrawType=7 Title_Left_Width=31 "
    "Title_Right_Width=32 Left_Top_Height=33 Left_Bottom_Height=34 Right_Top_Height=35 "
    "Right_Bottom_Height=36 Bottom_Left_Width=37 Bottom_Right_Width=38 [SysButton] AutoAlign=FALSE "
    "MinButton_Offset=11 MaxButton_Offset=12 CloseButton_Offset=-13 MinButton_Top=14 MaxButton_Top=15 "
    "CloseButton_Top=16 Button_Space=17 SysMenu_Top=18 SysMenu_Left=19 TitleText_Top=20 TitleText_Left=21 "
    "AlwaysShowMinButton=True";

TEST_F(Sets, WindowReadsEveryKey)
{
    CKXSkinWndRes res;
    EXPECT_THAT(Values(res), Each(0));
    EXPECT_THAT(Colors(res), Each(0u));
    Load(res, szWndIni);
    EXPECT_THAT(Values(res), ElementsAre(7, 0, 11, 12, -13, 14, 15, 16, 17, 18, 19, 20, 21, 1));
    EXPECT_THAT(Colors(res), ElementsAre(0x030201, 0x060504, 0x090807, 0x090807, 0x0C0B0A));
    EXPECT_THAT(All(res.m_vecCornerPath1, res.m_vecCornerPath2, res.m_vecCornerPath3, res.m_vecCornerPath4),
                ElementsAre("1,1", "2,2 2,3", "3,3", "4,4"));
    EXPECT_THAT(res.m_strCornerMask, ElementsAre(CString("m1"), CString("m2"), CString("m3"), CString("m4")));
    EXPECT_THAT(All(res.m_bmpTitle, res.m_bmpLeft, res.m_bmpRight, res.m_bmpBottom),
                ElementsAre("31,32 across", "33,34 down", "35,36 down", "37,38 across"));
}

TEST_F(Sets, WindowMeasuresOneStateAndKeepsTheFrameBefore)
{
    CKXSkinWndRes res;
    const auto frame = [&] {
        return std::vector{res.m_nLeftWidth,      res.m_nRightWidth,     res.m_nTitleHeight,
                           res.m_nBottomHeight,   res.m_nOldLeftWidth,   res.m_nOldRightWidth,
                           res.m_nOldTitleHeight, res.m_nOldBottomHeight};
    };
    Bmp("Frame_Title", 300, 200);
    Bmp("Frame_Bottom", 300, 11); // half a row is left over
    Bmp("Frame_MinBtn", 160, 20);
    Load(res);
    EXPECT_THAT(frame(), ElementsAre(12, 12, 100, 5, 0, 0, 0, 0));
    EXPECT_THAT(All(res.m_sizeMinBtn, res.m_sizeMaxBtn, res.m_sizeCloseBtn),
                ElementsAre("20x20", "3x10", "3x10"));
    EXPECT_EQ(res.m_bmpRestoreBtn.GetMultiState(), 8);
    EXPECT_EQ(res.m_bmpRestoreBtn.IsHorzMultiState(), 1);
    Bmp("Frame_Left", 8, 4);
    Load(res);
    EXPECT_THAT(frame(), ElementsAre(4, 12, 100, 5, 12, 12, 100, 5));
}

TEST_F(Sets, WindowKeepsNothingOfTheSkinBeforeButTheScrollBar)
{
    CKXSkinWndRes res;
    Load(res, szWndIni);
    const HGDIOBJ hScrollBar = res.m_bmpScrollBar.GetSafeHandle();
    const int nHandles = KXHost::LiveHandles();
    LoadNothing(res);
    EXPECT_THAT(Values(res), ElementsAre(0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0));
    EXPECT_THAT(Colors(res), ElementsAre(0xFFFFFF, 0, 0xFFFFFF, 0xFF00FF, 0xFFFFFF));
    EXPECT_TRUE(res.m_vecCornerPath2.empty());
    EXPECT_EQ(res.m_strCornerMask[0], "");
    EXPECT_EQ(res.m_bmpTitle.GetHBITMAP(), nullptr);
    EXPECT_EQ(res.m_nTitleHeight, 0);
    EXPECT_EQ(Text(res.m_sizeCloseBtn), "0x0");
    EXPECT_NE(hScrollBar, nullptr);
    EXPECT_EQ(res.m_bmpScrollBar.GetSafeHandle(), hScrollBar);
    Bmp("ScrollBar", 5, 6);
    Load(res);
    BITMAP record{};
    res.m_bmpScrollBar.GetBitmap(&record);
    EXPECT_EQ(record.bmWidth, 5);
    EXPECT_EQ(KXHost::LiveHandles(), nHandles); // the old one has ended
}

TEST_F(Sets, WindowLoadsTheBackgroundOfItsTypeAlone)
{
    CKXSkinWndRes res;
    const auto load = [&](const std::string& type) {
        Load(res,
             "[Background] BkgType=" + type +
                 " Bkg_bmp_Left=1 Bkg_bmp_Right=2 BkgTop_bmp_Left=3 BkgTop_bmp_Right=4 BkgMid_bmp_Left=5 "
                 "BkgMid_bmp_Right=6 BkgBtm_bmp_Left=7 BkgBtm_bmp_Right=8");
        return Texts{std::to_string(res.m_nBkgType), Text(res.m_bmpBkg), Text(res.m_bmpBkgTop),
                     Text(res.m_bmpBkgMid), Text(res.m_bmpBkgBtm)};
    };
    Bmp("WndBkg", 20, 21);
    Bmp("WndBkg_Btm", 20, 24);
    EXPECT_THAT(load("ColorFill"), ElementsAre("1", "", "", "", ""));
    EXPECT_THAT(load("singlebmp"), ElementsAre("2", "1,2 across", "", "", ""));
    EXPECT_THAT(load("MultiBMP"), ElementsAre("3", "1,2 across", "3,4 across", "5,6 across", "7,8 across"));
    for (const char* type : {"", "default", "multi", "singlebmp2"}) // what another type left stays
        EXPECT_THAT(load(type), ElementsAre("0", "1,2 across", "3,4 across", "5,6 across", "7,8 across"));
    EXPECT_THAT((std::vector{res.m_nBkgTopHeight, res.m_nBkgBtmHeight}), ElementsAre(10, 24));
}

TEST_F(Sets, WindowReadsThePointsOfAPath)
{
    const char* const cases[][2] = {
        {"0,5|1,3|3,1|5,0", "0,5 1,3 3,1 5,0"},
        {"1,2||3,4|", "1,2 3,4"},
        {"5", ""},
        {"", ""},
        {"|||", ""},
        {",5|1,2", "1,2"},
        {"a,b", "0,0"},
        {" +1x,-2 y|3,4,5|6,", "1,-2 3,4 6,0"},
        {"99999999999999999999,-99999999999", "2147483647,-2147483648"},
    };
    for (const auto& [path, expected] : cases) {
        std::vector<CPoint> points{{9, 9}};
        CString strPath = path;
        CKXSkinWndRes().ParsePathPoint(strPath, points);
        EXPECT_EQ(Text(points), expected) << path;
    }
}

TEST_F(Sets, ButtonsAreLoadedMeasuredAndFilled)
{
    CKXSkinBtnRes res;
    const auto sizes = [&] {
        return All(res.m_sizePushButton, res.m_sizeCheckBox, res.m_sizeRadioButton, res.m_sizeSpinButton,
                   res.m_sizeComboButton, res.m_sizeTabBtnVert, res.m_sizeTabBtnHorz, res.m_sizeMainTabBtn,
                   res.m_sizeListViewHeader);
    };
    const auto flags = [&] {
        return std::vector{res.m_bPushButton, res.m_bCheckBox, res.m_bRadioButton, res.m_bSpinButton,
                           res.m_bComboButton};
    };
    EXPECT_THAT(flags(), Each(0));
    EXPECT_THAT(sizes(), Each("0x0"));
    int cy = 0;
    for (const char* name : {"PushButton", "CheckBox", "RadioButton", "SpinButton", "ComboButton",
                             "TabButtonVert", "TabButtonHorz", "MainTabButton", "ListViewHeader"})
        Bmp(name, 156, ++cy);
    Load(res, "[Button] PushButton_Left=1 PushButton_Right=2 TabBtnVert_Left=3 TabBtnVert_Right=4 "
              "TabBtnHorz_Left=5 TabBtnHorz_Right=6 ListViewHeaderLeft=7 ListViewHeaderRight=8 "
              "ListViewHeader_Left=50 MainTabBtn_Mask=0,1|2,3 MainTabBtnIntersect_Height=9");
    EXPECT_THAT(flags(), Each(1));
    EXPECT_EQ(res.m_bmpPushButton.IsHorzMultiState(), 1);
    EXPECT_THAT(sizes(), ElementsAre("31x1", "13x2", "19x3", "19x4", "39x5", "39x6", "39x7", "39x8", "39x9"));
    EXPECT_THAT(All(res.m_bmpPushButton, res.m_bmpTabBtnVert, res.m_bmpTabBtnHorz, res.m_bmpListViewHeader),
                ElementsAre("1,2 across", "3,4 across", "5,6 across", "7,8 across"));
    EXPECT_EQ(res.m_strMainTabBtnMask, "0,1|2,3");
    EXPECT_EQ(res.m_nMainTabBtnIntersectHeight, 9);
    dir.Write("PushButton.bmp", "BM");
    dir.Write("ListViewHeader.bmp", "");
    Load(res);
    EXPECT_THAT(flags(), ElementsAre(0, 1, 1, 1, 1));
    EXPECT_THAT(sizes(), ElementsAre("0x0", "13x2", "19x3", "19x4", "39x5", "39x6", "39x7", "39x8", "0x0"));
    EXPECT_EQ(res.m_bmpPushButton.GetHBITMAP(), nullptr);
    EXPECT_EQ(res.m_strMainTabBtnMask, "");
    EXPECT_EQ(res.m_nMainTabBtnIntersectHeight, 0);
    EXPECT_EQ(res.m_bUseMaskColor, 1);
    EXPECT_EQ(res.m_clrMask, 0xFF00FFu);
}

TEST_F(Sets, ListHasButtonsAndIconsOfItsSize)
{
    CKXSkinIMListRes res;
    EXPECT_THAT(All(res.m_sizeGroupBtn, res.m_hNormalIcon), ElementsAre("0x0", "none"));
    Bmp("GroupBtn", 90, 20);
    dir.Write("Normal.ico", Ico({IconImage(32), IconImage(16)}));
    Load(res, "[IMList] GroupBtn_Left=3 GroupBtn_Right=4");
    EXPECT_THAT(
        All(res.m_sizeGroupBtn, res.m_sizeTeamBtn, res.m_bmpGroupBtn, res.m_hNormalIcon, res.m_hExpandIcon),
        ElementsAre("30x20", "8x10", "3,4 across", "16x16", "16x16"));
    const HICON hNormal = res.m_hNormalIcon;
    LoadNothing(res);
    EXPECT_THAT(All(hNormal, res.m_sizeGroupBtn), ElementsAre("none", "0x0"));
    EXPECT_EQ(res.m_hNormalIcon, nullptr);
    EXPECT_EQ(res.m_hExpandIcon, nullptr);
}

// A set is loaded anew while its copy lives, and what they shared ends once, with the copy.
TEST_F(Sets, ACopyKeepsTheImagesOfItsMoment)
{
    CKXSkinIMListRes res;
    Load(res, "[IMList] GroupBtn_Left=3");
    const HICON hFirst = res.m_hNormalIcon;
    auto copy = std::make_unique<CKXSkinIMListRes>();
    *copy = CKXSkinIMListRes(res);
    Bmp("GroupBtn", 33, 5);
    Load(res);
    EXPECT_EQ(copy->m_hNormalIcon, hFirst);
    EXPECT_THAT(All(hFirst, copy->m_bmpGroupBtn, res.m_hNormalIcon, res.m_bmpGroupBtn),
                ElementsAre("16x16", "3,0 across", "16x16", "0,0 across"));
    copy.reset();
    EXPECT_THAT(All(hFirst, res.m_hNormalIcon), ElementsAre("none", "16x16"));
}

TEST_F(Sets, OtherControlsHaveFillsStatesAndImages)
{
    CKXSkinOtherRes res;
    const auto images = [&] {
        return All(res.m_imgFileSend.GetImageSize(), res.m_imgFileReceive.GetImageSize());
    };
    Load(res, "[OtherCtrl] SliderCtrlTrack_Left=1 SliderCtrlTrack_Right=2 SliderCtrlThumb_Left=3 "
              "SliderCtrlThumb_Right=4 OutlookCtrlBar_Left=5 OutlookCtrlBar_Right=6 "
              "FileTransProgressBar_Left=7 FileTransProgressBar_Right=8");
    EXPECT_THAT(All(res.m_bmpSliderTrack, res.m_bmpSliderThumb, res.m_bmpOutlookBar,
                    res.m_bmpFileTransProgress, res.m_sizeOutlookBar),
                ElementsAre("1,2 across", "3,4 across", "5,6 across", "7,8 across", "8x10"));
    EXPECT_EQ(res.m_bmpFileTransProgress.GetMultiState(), 2);
    EXPECT_NE(res.m_bmpMenuIconChecked.GetHBITMAP(), nullptr);
    EXPECT_THAT(images(), Each("1x2"));
    for (int n = 0; n < 2; ++n) {
        res.UnLoadRes();
        EXPECT_EQ(res.m_imgFileSend.IsValid(), 0);
        EXPECT_EQ(res.m_imgFileReceive.IsValid(), 0);
    }
    Load(res);
    EXPECT_THAT(images(), Each("1x2"));
    LoadNothing(res);
    EXPECT_EQ(res.m_imgFileSend.IsValid(), 0);
    EXPECT_EQ(res.m_imgFileReceive.IsValid(), 0);
    EXPECT_EQ(Text(res.m_sizeOutlookBar), "0x0");
}

TEST_F(Sets, ColorsComeByNameOrByDefault)
{
    CKXSkinColorDef def;
    const auto colors = [&] {
        return std::vector{def.m_clrMainTabClient,   def.m_clrMainTabBkg,       def.m_clrMainTabBorderLine,
                           def.m_clrTabBorderLine,   def.m_clrCommonBorderLine, def.m_clrControlBarBk1,
                           def.m_clrControlBarBk2,   def.m_clrMenuBorderNormal, def.m_clrMenuBorderSelect,
                           def.m_clrMenuBorderPress, def.m_clrMenuSelectBk,     def.m_clrPopMenuBk,
                           def.m_clrPopMenuLeftBk,   def.m_clrPopMenuSelBk,     def.m_clrPopMenuSelBorder,
                           def.m_clrFileTransHotBk1, def.m_clrFileTransHotBk2};
    };
    EXPECT_THAT(colors(), Each(0u));
    std::string ini = "[COLOR]\n";
    std::vector<COLORREF> expected;
    for (const std::string& name :
         Words("MainTabClient MainTabBkg MainTabBorderLine TabBorderLine CommonBorderLine ControlBarBk1 "
               "ControlBarBk2 MenuBorderNormal MenuBorderSelect MenuBorderPress MenuSelectBk PopMenuBk "
               "PopMenuLeftBk PopMenuSelBk PopMenuSelBorder FileTransHotBk1 FileTransHotBk2")) {
        expected.push_back(static_cast<COLORREF>(expected.size() + 1));
        ini += name + "=RGB(" + std::to_string(expected.back()) + ",0,0)\n";
    }
    dir.Write("Skin.ini", ini);
    def.ReadColors(dir.Win("Skin.ini"));
    EXPECT_EQ(colors(), expected);
    def.ReadColors(dir.Win("none.ini"));
    constexpr COLORREF W = 0xFFFFFF, B = 0xFF0000;
    EXPECT_THAT(colors(), ElementsAre(W, W, B, B, B, W, B, B, B, B, B, B, B, B, B, 0xFFC8C8, B));
}

} // namespace
