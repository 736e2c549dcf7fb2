// SMediaCtrl as a window on the headless platform: what it paints, the
// notifications its parent receives, links and their default action, the
// button's clicks and the ticker on the fake clock.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "controls/media_ctrl.h"
#include "foundation/file.h"
#include "foundation/network.h"
#include "support/pixels.h"
#include "toolkit/draw.h"
#include "toolkit/notification.h"
#include "toolkit/sys_colors.h"
#include "toolkit/toolkit_fixture.h"

namespace {

// The parent: records notifications (the mouse ones by their code), and
// claims links when told to.
class Parent : public SWnd {
public:
    std::vector<unsigned> codes;
    std::vector<SPoint> points;
    std::vector<std::string> links;
    SWnd* from = nullptr;
    LRESULT claimLinks = 0;

    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override {
        SNotification note(message, wParam, lParam);
        if (!note.IsNotification()) {
            return SWnd::OnMessage(message, wParam, lParam);
        }
        from = note.ControlAs<SMediaCtrl>();
        codes.push_back(note.Is(SN_MEDIA_MOUSE) ? note.MouseCode() : message);
        points.push_back(note.Point());
        if (note.Text() != nullptr) {
            links.push_back(note.Text());
        }
        return note.Is(SN_MEDIA_LINK_CLICKED) ? claimLinks : 0;
    }
};

std::vector<std::string> opened; // what the replaced launcher was given
bool RecordLaunch(const char* address) {
    opened.push_back(address);
    return true;
}

class MediaCtrlTest : public ToolkitTest {
protected:
    void SetUp() override {
        ToolkitTest::SetUp();
        opened.clear();
        SetUrlLauncher(RecordLaunch);
        SRect bounds{0, 0, 320, 200};
        ASSERT_TRUE(parent.Create("parent", WS_VISIBLE, 0, &bounds, 0));
        parent.SetBackColor(0xFFFFFF);
    }
    void TearDown() override {
        control.Destroy();
        parent.Destroy();
        SetUrlLauncher(nullptr);
        ToolkitTest::TearDown();
    }
    // The control at (10, 10) in the parent; marked-up texts at the top left.
    void Make(const char* text, SRect rect = SRect{10, 10, 310, 60}, bool markup = false) {
        ASSERT_TRUE(control.Create(text, WS_VISIBLE, 0, &rect, parent.GetHandle()));
        if (markup) {
            control.SetBackColor(0xFFFFFF);
            control.SetMarkup(true);
            control.SetAlign(MEDIA_ALIGN_LEFT | MEDIA_ALIGN_TOP);
        }
    }
    SImage Shot() {
        SImage shot;
        EXPECT_TRUE(platform->Snapshot(parent.GetHandle(), &shot));
        return shot;
    }
    uint32_t At(int x, int y) { return Shot().GetPixel(x, y) & 0xFFFFFF; }
    SHeadlessPlatform::Surface Surface() {
        SHeadlessPlatform::Surface surface;
        EXPECT_TRUE(platform->GetSurface(parent.GetHandle(), &surface));
        return surface;
    }
    // Runs the fake clock on by milliseconds.
    static void Advance(uint64_t milliseconds) {
        SHeadlessPlatform::AdvanceClock(milliseconds);
        SHeadlessPlatform::DispatchPending();
    }
    Parent parent;
    SMediaCtrl control;
};

TEST_F(MediaCtrlTest, DefaultsAndSettingsThatClampOrChangeNothing) {
    Make("Plain label");
    EXPECT_EQ(control.GetBackColor(), GetSysColor(SYS_COLOR_BTNFACE));
    EXPECT_EQ(control.GetTextColor(), 0xFE000000u | GetSysColor(SYS_COLOR_WINDOWTEXT));
    EXPECT_EQ(control.GetLinkColor(), 0xFE000000u | GetSysColor(SYS_COLOR_HIGHLIGHT));
    EXPECT_GT(control.GetContentSize().width, 20) << "the title is measured at creation";
    EXPECT_EQ(control.GetInnerRect(), (SRect{1, 1, 299, 49}));
    control.SetMargins(-3, 4, -1, 2);
    EXPECT_EQ(control.GetInnerRect(), (SRect{0, 4, 300, 48}));
    control.SetMargins(200, 0, 200, 0);
    EXPECT_EQ(control.GetInnerRect().Width(), 0) << "a negative inner width counts as 0";
    control.SetAlign(0xFF);
    EXPECT_EQ(control.GetAlign(), 0x33u) << "only the alignment bits are kept";
    auto frames = Surface().frameRequests;
    control.SetAlign(0x33);
    control.SetWrapping(false);
    control.SetTrimming(true);
    control.SetMarkup(false);
    control.SetTextColor(control.GetTextColor());
    EXPECT_EQ(Surface().frameRequests, frames) << "unchanged values ask for no frame";
}

TEST_F(MediaCtrlTest, BoldAndColourMarksDrawHeavierTextInTheChosenColours) {
    Make("MMMMMMMM\r\nMMMMMMMM");
    control.SetBackColor(0xFFFFFF);
    control.SetAlign(MEDIA_ALIGN_LEFT | MEDIA_ALIGN_TOP);
    control.SetTextColor(0x000000);
    SImage plain = Shot();
    control.SetMarkup(true);
    control.SetText("<B>MMMMMMMM</B>\r\n<#FF0000>MMMMMMMM</#>");
    SImage marked = Shot();
    SRect first{11, 11, 309, 11 + static_cast<int>(control.GetLines()[0].height)};
    EXPECT_GT(CountNear(marked, first, 0), CountNear(plain, first, 0) * 5 / 4)
        << "bold strokes are wider";
    SRect second{11, first.bottom, 309, 59};
    EXPECT_GT(CountNear(marked, second, 0xFF0000), 30) << "the second line is red";
    EXPECT_EQ(CountNear(plain, second, 0xFF0000), 0);
}

TEST_F(MediaCtrlTest, LinksOpenMailOrTheDesktopUnlessTheParentClaimsThem) {
    SHeadlessPlatform::UseFakeClock(true);
    Make("", SRect{10, 10, 310, 60}, true);
    control.SetText("Write to <LINK>someone@example.org</LINK> or see "
                    "<LINK>http://example.org/</LINK>");
    Shot();
    ASSERT_EQ(control.GetLinkCount(), 2) << "links are known once painted";
    EXPECT_EQ(control.GetLinkText(0), "someone@example.org");
    SRect mail = control.GetLinkRect(0);
    SRect web = control.GetLinkRect(1);
    EXPECT_GT(mail.Width(), 50);
    EXPECT_GE(web.left, mail.right) << "the second link follows the first";

    platform->MoveMouse(parent.GetHandle(), 10 + web.left + 2, 10 + web.top + 2);
    EXPECT_EQ(Surface().cursor, CURSOR_HAND);
    platform->MoveMouse(parent.GetHandle(), 10 + web.right + 20, 10 + web.top + 2);
    EXPECT_EQ(Surface().cursor, CURSOR_ARROW);

    platform->Click(parent.GetHandle(), 10 + mail.left + 3, 10 + mail.top + 3);
    platform->Click(parent.GetHandle(), 10 + web.left + 3, 10 + web.top + 3);
    EXPECT_EQ(opened,
              (std::vector<std::string>{"mailto:someone@example.org", "http://example.org/"}))
        << "the launcher is replaced: nothing is really opened";
    ASSERT_GE(parent.codes.size(), 2u);
    EXPECT_EQ(parent.codes[0], SN_MEDIA_LINK_CLICKED);
    EXPECT_EQ(parent.from, &control);
    EXPECT_EQ(parent.codes[1], MOUSE_DOWN | MOUSE_LEFT) << "the press goes on to the parent";
    EXPECT_EQ(parent.points[1], (SPoint{mail.left + 3, mail.top + 3}));

    parent.claimLinks = 1;
    Advance(1000); // no double click
    platform->Click(parent.GetHandle(), 10 + web.left + 3, 10 + web.top + 3);
    EXPECT_EQ(opened.size(), 2u) << "a claimed link is not opened";
    platform->Click(parent.GetHandle(), 10 + web.right + 40, 10 + web.top + 3);
    EXPECT_EQ(parent.links, (std::vector<std::string>{"someone@example.org", "http://example.org/",
                                                      "http://example.org/"}))
        << "a press beside the links is no link click";
}

TEST_F(MediaCtrlTest, OnlyAnEnabledButtonNotifiesItsClickBeforeTheRelease) {
    SHeadlessPlatform::UseFakeClock(true);
    Make("Play");
    platform->Click(parent.GetHandle(), 50, 30);
    EXPECT_EQ(parent.codes, (std::vector<unsigned>{0x09, 0x21, 0x11})) << "a label is no button";
    control.SetButton(true);
    parent.codes.clear();
    platform->Click(parent.GetHandle(), 50, 30);
    EXPECT_EQ(parent.codes, (std::vector<unsigned>{0x41, 0x11}))
        << "a second press at once is a double click, and no click";
    parent.codes.clear();
    Advance(1000);
    platform->Click(parent.GetHandle(), 50, 30);
    EXPECT_EQ(parent.codes,
              (std::vector<unsigned>{MOUSE_DOWN | MOUSE_LEFT, SN_MEDIA_BUTTON_CLICKED,
                                     MOUSE_CLICK | MOUSE_LEFT, MOUSE_UP | MOUSE_LEFT}));
    EXPECT_EQ(parent.points[2], (SPoint{40, 20})) << "in the control's client coordinates";
    parent.codes.clear();
    platform->Press(parent.GetHandle(), 50, 30, WM_RBUTTONDOWN);
    platform->Release(parent.GetHandle(), 50, 30, WM_RBUTTONUP);
    EXPECT_EQ(parent.codes, (std::vector<unsigned>{0x0C, 0x24, 0x14})) << "the right button";
    parent.codes.clear();
    control.Enable(false);
    SendMessage(control.GetHandle(), SM_LEFT_CLICK, 0, MakePointParam(5, 5));
    EXPECT_EQ(parent.codes, (std::vector<unsigned>{0x21})) << "disabled";
}

// The button's skins and frames in their states: media_ctrl_xvfb.cpp and
// MediaFrame in media_layout_test.cpp.

TEST_F(MediaCtrlTest, PicturesFillTheInnerRectangleOrComeFromTheArchive) {
    Make("");
    control.SetBackColor(0xFFFFFF);
    control.SetMargins(5, 5, 5, 5);
    SImage picture;
    picture.Create(4, 4, PIXEL_FORMAT_32ARGB);
    picture.Fill(0xFFFF0000u);
    picture.drawMode = DRAW_STRETCH;
    control.SetImage(&picture);
    SImage shot = Shot();
    EXPECT_EQ(shot.GetPixel(16, 16) & 0xFFFFFF, 0xFF0000u);
    EXPECT_EQ(shot.GetPixel(303, 53) & 0xFFFFFF, 0xFF0000u);
    EXPECT_EQ(shot.GetPixel(12, 12) & 0xFFFFFF, 0xFFFFFFu) << "the margin stays clear";
    control.SetImage(nullptr);
    EXPECT_EQ(At(16, 16), 0xFFFFFFu);

    // An image mark reads "image\<name>" from the archive.
    control.SetMarkup(true);
    control.SetAlign(0);
    picture.Create(16, 16, PIXEL_FORMAT_32ARGB);
    picture.Fill(0xFF00C000u);
    SFileMem png;
    ASSERT_TRUE(picture.Save(&png, IMAGE_PNG));
    std::string bytes(png.GetData(), png.GetSize());
    control.SetImageArchive([bytes](const char* entry, SFileMem* file) {
        int size = static_cast<int>(bytes.size());
        return std::string(entry) == "image\\dot" && file->Write(bytes.data(), size) == size;
    });
    control.SetText("<IMG>dot</IMG><IMG>none</IMG>");
    EXPECT_EQ(control.GetContentSize().height, 16);
    EXPECT_EQ(At(15 + 8, 15 + 8), 0x00C000u);
    EXPECT_EQ(At(15 + 8, 15 + 17), 0xFFFFFFu) << "at its own size";
}

TEST_F(MediaCtrlTest, TheTickerMovesOnTheClockIsDrawnAtItsOffsetAndWraps) {
    SHeadlessPlatform::UseFakeClock(true);
    Make("A title much too long to stand in this narrow control at once", SRect{10, 10, 110, 40});
    control.SetMargins(0, 0, 0, 0);
    control.SetBackColor(0xFFFFFF);
    control.SetTextColor(0x000000);
    control.SetAlign(MEDIA_ALIGN_RIGHT | MEDIA_ALIGN_MIDDLE);
    int width = control.GetContentSize().width;
    ASSERT_GT(width, 100);
    control.SetAutoScroll(-100, 0);
    ASSERT_TRUE(control.IsAutoScrollOn());
    EXPECT_EQ(control.GetScrollOffset().x, 100) << "it starts at the far edge";
    for (int i = 0; i < 10; ++i) {
        Advance(20);
    }
    EXPECT_EQ(control.GetScrollOffset().x, 80) << "100 pixels a second for 200 ms";
    int column = FirstColumn(Shot(), SRect{10, 10, 110, 40}, 0);
    EXPECT_GE(column, 10 + 80);
    EXPECT_LE(column, 10 + 80 + 3) << "drawn at its offset, aligned left while scrolling";
    Advance(static_cast<uint64_t>(width + 80) * 10);
    EXPECT_EQ(control.GetScrollOffset().x, -width) << "its last pixel is still in";
    Advance(MEDIA_TICKER_PERIOD);
    EXPECT_EQ(control.GetScrollOffset().x, 100) << "wrapped to the far edge";

    SWnd* base = &control; // the text reaches the control through the base class too
    base->SetText("Short");
    EXPECT_FALSE(control.IsAutoScrollOn()) << "a new text stops the ticker";
    EXPECT_EQ(control.GetScrollOffset().x, 0);
    EXPECT_LT(control.GetContentSize().width, width / 4) << "and is laid out at once";
    control.SetAutoScroll(-100, 0);
    EXPECT_FALSE(control.IsAutoScrollOn()) << "a text that fits stands still";
    control.SetAutoScroll(-100, 0, true);
    EXPECT_TRUE(control.IsAutoScrollOn()) << "unless forced";
    control.SetAutoScroll(0, 0);
    EXPECT_FALSE(control.IsAutoScrollOn());
    EXPECT_EQ(control.GetScrollOffset().x, 0);
}

TEST_F(MediaCtrlTest, TrailingBlanksCountInTheMeasuredWidth) {
    Make("ab", SRect{10, 10, 310, 60}, true);
    int bare = control.GetContentSize().width;
    control.SetText("ab    ");
    EXPECT_GT(control.GetContentSize().width, bare + 4);
    control.SetText("<B>ab    </B>x");
    ASSERT_EQ(control.GetLines()[0].texts.size(), 2u);
    EXPECT_GE(control.GetLines()[0].texts[1].x, bare + 4) << "the next run starts after the blanks";
}

} // namespace
