// SMediaCtrl as a window on the headless platform: what it paints, the
// notifications its parent receives, links and their default action, the
// button's states and the ticker on the fake clock.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "controls/media_ctrl.h"
#include "foundation/color.h"
#include "foundation/file.h"
#include "foundation/network.h"
#include "toolkit/draw.h"
#include "toolkit/sys_colors.h"
#include "toolkit/toolkit_fixture.h"

namespace {

// The parent: records notifications, and claims links when told to.
class Parent : public SWnd {
public:
    struct Note {
        unsigned message;
        SWnd* from;
        unsigned code;
        SPoint client;
        std::string text;
    };
    std::vector<Note> notes;
    LRESULT claimLinks = 0;

    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override {
        if (message == SN_MEDIA_MOUSE) {
            const SMouseEvent* event = reinterpret_cast<const SMouseEvent*>(lParam);
            notes.push_back(
                Note{message, reinterpret_cast<SWnd*>(wParam), event->code, event->client, ""});
            return 0;
        }
        if (message == SN_MEDIA_BUTTON_CLICKED) {
            notes.push_back(Note{message, reinterpret_cast<SWnd*>(wParam), 0, SPoint{}, ""});
            return 0;
        }
        if (message == SN_MEDIA_LINK_CLICKED) {
            notes.push_back(Note{message, reinterpret_cast<SWnd*>(wParam), 0, SPoint{},
                                 reinterpret_cast<const char*>(lParam)});
            return claimLinks;
        }
        return SWnd::OnMessage(message, wParam, lParam);
    }
    std::vector<unsigned> Codes() const {
        std::vector<unsigned> codes;
        for (const Note& note : notes) {
            codes.push_back(note.message == SN_MEDIA_MOUSE ? note.code : note.message);
        }
        return codes;
    }
};

std::vector<std::string>& Opened() {
    static std::vector<std::string> opened;
    return opened;
}

bool RecordLaunch(const char* address) {
    Opened().push_back(address);
    return true;
}

class MediaCtrlTest : public ToolkitTest {
protected:
    void SetUp() override {
        ToolkitTest::SetUp();
        Opened().clear();
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
    void Make(const char* text, SRect rect = SRect{10, 10, 310, 60}) {
        ASSERT_TRUE(control.Create(text, WS_VISIBLE, 0, &rect, parent.GetHandle()));
    }
    SImage Shot() {
        SImage shot;
        EXPECT_TRUE(platform->Snapshot(parent.GetHandle(), &shot));
        return shot;
    }
    // Pixels of the snapshot within rect (parent coordinates) that are
    // close to rgb (0xRRGGBB).
    static int Count(const SImage& shot, const SRect& rect, uint32_t rgb, int tolerance = 60) {
        int count = 0;
        for (int y = rect.top; y < rect.bottom; ++y) {
            for (int x = rect.left; x < rect.right; ++x) {
                uint32_t pixel = shot.GetPixel(x, y);
                int dr =
                    static_cast<int>((pixel >> 16) & 0xFF) - static_cast<int>((rgb >> 16) & 0xFF);
                int dg =
                    static_cast<int>((pixel >> 8) & 0xFF) - static_cast<int>((rgb >> 8) & 0xFF);
                int db = static_cast<int>(pixel & 0xFF) - static_cast<int>(rgb & 0xFF);
                count += std::abs(dr) + std::abs(dg) + std::abs(db) <= tolerance ? 1 : 0;
            }
        }
        return count;
    }
    // The leftmost column of rect holding a pixel close to rgb, -1 for none.
    static int FirstColumn(const SImage& shot, const SRect& rect, uint32_t rgb) {
        for (int x = rect.left; x < rect.right; ++x) {
            if (Count(shot, SRect{x, rect.top, x + 1, rect.bottom}, rgb) > 0) {
                return x;
            }
        }
        return -1;
    }
    Parent parent;
    SMediaCtrl control;
};

TEST_F(MediaCtrlTest, ANewControlTakesTheButtonFaceAndTheSystemTextColours) {
    Make("Plain label");
    EXPECT_EQ(control.GetBackColor(), GetSysColor(SYS_COLOR_BTNFACE));
    EXPECT_EQ(control.GetTextColor(), 0xFE000000u | GetSysColor(SYS_COLOR_WINDOWTEXT));
    EXPECT_EQ(control.GetLinkColor(), 0xFE000000u | GetSysColor(SYS_COLOR_HIGHLIGHT));
    EXPECT_EQ(control.GetAlign(), MEDIA_ALIGN_MIDDLE);
    EXPECT_GT(control.GetContentSize().width, 20) << "the title is measured at creation";
    EXPECT_EQ(control.GetInnerRect(), (SRect{1, 1, 299, 49}));
}

TEST_F(MediaCtrlTest, SettingsClampAndUnchangedValuesAskForNoFrame) {
    Make("x");
    control.SetMargins(-3, 4, -1, 2);
    EXPECT_EQ(control.GetInnerRect(), (SRect{0, 4, 300, 48}));
    control.SetMargins(200, 0, 200, 0);
    EXPECT_EQ(control.GetInnerRect().Width(), 0) << "a negative inner width counts as 0";
    control.SetAlign(0xFF);
    EXPECT_EQ(control.GetAlign(), 0x33u) << "only the alignment bits are kept";
    SHeadlessPlatform::Surface before, after;
    ASSERT_TRUE(platform->GetSurface(parent.GetHandle(), &before));
    control.SetAlign(0x33);
    control.SetWrapping(false);
    control.SetTrimming(true);
    control.SetMarkup(false);
    control.SetTextColor(control.GetTextColor());
    ASSERT_TRUE(platform->GetSurface(parent.GetHandle(), &after));
    EXPECT_EQ(after.frameRequests, before.frameRequests);
}

TEST_F(MediaCtrlTest, BoldMarksDrawHeavierTextInTheChosenColours) {
    Make("");
    control.SetBackColor(0xFFFFFF);
    control.SetAlign(MEDIA_ALIGN_LEFT | MEDIA_ALIGN_TOP);
    control.SetTextColor(0x000000);
    control.SetText("MMMMMMMM\r\nMMMMMMMM");
    SImage plain = Shot();
    control.SetMarkup(true);
    control.SetText("<B>MMMMMMMM</B>\r\n<#FF0000>MMMMMMMM</#>");
    SImage marked = Shot();
    SRect firstLine{11, 11, 309, 11 + static_cast<int>(control.GetLines()[0].height)};
    EXPECT_GT(Count(marked, firstLine, 0x000000), Count(plain, firstLine, 0x000000) * 5 / 4)
        << "bold strokes are wider";
    SRect secondLine{11, firstLine.bottom, 309, 59};
    EXPECT_GT(Count(marked, secondLine, 0xFF0000), 30) << "the second line is red";
    EXPECT_EQ(Count(plain, secondLine, 0xFF0000), 0);
}

TEST_F(MediaCtrlTest, LinksOpenMailOrTheDesktopUnlessTheParentClaimsThem) {
    Make("");
    control.SetMarkup(true);
    control.SetAlign(MEDIA_ALIGN_LEFT | MEDIA_ALIGN_TOP);
    control.SetText("Write to <LINK>someone@example.org</LINK> or see "
                    "<LINK>http://example.org/</LINK>");
    Shot();
    ASSERT_EQ(control.GetLinkCount(), 2) << "links are known once painted";
    EXPECT_EQ(control.GetLinkText(0), "someone@example.org");
    SRect mail = control.GetLinkRect(0);
    SRect web = control.GetLinkRect(1);
    EXPECT_GT(mail.Width(), 50);
    EXPECT_GE(web.left, mail.right) << "the second link follows the first";

    platform->Press(parent.GetHandle(), 10 + mail.left + 3, 10 + mail.top + 3);
    platform->Release(parent.GetHandle(), 10 + mail.left + 3, 10 + mail.top + 3);
    platform->Click(parent.GetHandle(), 10 + web.left + 3, 10 + web.top + 3);
    EXPECT_EQ(Opened(),
              (std::vector<std::string>{"mailto:someone@example.org", "http://example.org/"}));
    ASSERT_GE(parent.notes.size(), 2u);
    EXPECT_EQ(parent.notes[0].message, SN_MEDIA_LINK_CLICKED);
    EXPECT_EQ(parent.notes[0].text, "someone@example.org");
    EXPECT_EQ(parent.notes[0].from, &control);
    EXPECT_EQ(parent.notes[1].code, MOUSE_DOWN | MOUSE_LEFT)
        << "the press goes on to the mouse notification";
    EXPECT_EQ(parent.notes[1].client, (SPoint{mail.left + 3, mail.top + 3}));

    parent.claimLinks = 1;
    platform->Click(parent.GetHandle(), 10 + web.left + 3, 10 + web.top + 3);
    EXPECT_EQ(Opened().size(), 2u) << "a claimed link is not opened";
    platform->Click(parent.GetHandle(), 10 + web.right + 40, 10 + web.top + 3);
    int linkNotes = 0;
    for (const auto& note : parent.notes) {
        linkNotes += note.message == SN_MEDIA_LINK_CLICKED ? 1 : 0;
    }
    EXPECT_EQ(linkNotes, 3) << "a press beside the links is no link click";
}

TEST_F(MediaCtrlTest, TheHandShowsOverLinksOnly) {
    Make("");
    control.SetMarkup(true);
    control.SetAlign(0);
    control.SetText("<LINK>http://example.org/</LINK>");
    Shot();
    ASSERT_EQ(control.GetLinkCount(), 1);
    SRect link = control.GetLinkRect(0);
    SHeadlessPlatform::Surface surface;
    platform->MoveMouse(parent.GetHandle(), 10 + link.left + 2, 10 + link.top + 2);
    ASSERT_TRUE(platform->GetSurface(parent.GetHandle(), &surface));
    EXPECT_EQ(surface.cursor, CURSOR_HAND);
    platform->MoveMouse(parent.GetHandle(), 10 + link.right + 20, 10 + link.top + 2);
    ASSERT_TRUE(platform->GetSurface(parent.GetHandle(), &surface));
    EXPECT_EQ(surface.cursor, CURSOR_ARROW);
}

TEST_F(MediaCtrlTest, AButtonNotifiesItsClickAndEveryMouseEvent) {
    Make("Play");
    control.SetButton(true);
    platform->Click(parent.GetHandle(), 50, 30);
    // The click is made as the button goes up, before the release itself.
    EXPECT_EQ(parent.Codes(),
              (std::vector<unsigned>{MOUSE_DOWN | MOUSE_LEFT, SN_MEDIA_BUTTON_CLICKED,
                                     MOUSE_CLICK | MOUSE_LEFT, MOUSE_UP | MOUSE_LEFT}));
    EXPECT_EQ(parent.notes[2].client, (SPoint{40, 20}));
    parent.notes.clear();
    platform->Press(parent.GetHandle(), 50, 30, WM_RBUTTONDOWN);
    platform->Release(parent.GetHandle(), 50, 30, WM_RBUTTONUP);
    EXPECT_EQ(parent.Codes(), (std::vector<unsigned>{0x0C, 0x24, 0x14})) << "no button click";
}

TEST_F(MediaCtrlTest, OnlyAnEnabledClickableControlIsAButton) {
    Make("Label");
    platform->Click(parent.GetHandle(), 50, 30);
    EXPECT_EQ(parent.Codes(), (std::vector<unsigned>{0x09, 0x21, 0x11})) << "a label is no button";
    parent.notes.clear();
    control.SetButton(true);
    control.Enable(false);
    SendMessage(control.GetHandle(), SM_LEFT_CLICK, 0, MakePointParam(5, 5));
    EXPECT_EQ(parent.Codes(), (std::vector<unsigned>{0x21}));
}

TEST_F(MediaCtrlTest, HoverAndPressShowInTheFrameAndTheSkin) {
    Make("Play");
    control.SetButton(true);
    SImage skins[4];
    const uint32_t colors[4] = {0xFF3050A0u, 0xFF50A0F0u, 0xFF203070u, 0xFF909090u};
    for (int i = 0; i < 4; ++i) {
        skins[i].Create(8, 8, PIXEL_FORMAT_32ARGB);
        skins[i].Fill(colors[i]);
        skins[i].drawMode = DRAW_STRETCH;
    }
    control.SetSkin(&skins[0], &skins[1], &skins[2], &skins[3]);
    EXPECT_EQ(control.GetFrameState(), MEDIA_FRAME_NONE);
    EXPECT_EQ(Shot().GetPixel(15, 15) & 0xFFFFFF, colors[0] & 0xFFFFFF);

    platform->MoveMouse(parent.GetHandle(), 50, 30);
    EXPECT_EQ(control.GetFrameState(), MEDIA_FRAME_RAISED);
    SImage hot = Shot();
    EXPECT_EQ(hot.GetPixel(15, 15) & 0xFFFFFF, colors[1] & 0xFFFFFF);
    EXPECT_EQ(hot.GetPixel(10, 30) & 0xFFFFFF, 0xFFFFFFu) << "raised: a white left edge";
    EXPECT_EQ(hot.GetPixel(309, 30) & 0xFFFFFF, 0xA0A0A0u) << "and a grey right edge";

    platform->Press(parent.GetHandle(), 50, 30);
    EXPECT_EQ(control.GetFrameState(), MEDIA_FRAME_SUNKEN);
    SImage down = Shot();
    EXPECT_EQ(down.GetPixel(15, 15) & 0xFFFFFF, colors[2] & 0xFFFFFF);
    EXPECT_EQ(down.GetPixel(10, 30) & 0xFFFFFF, 0xA0A0A0u) << "sunken: the colours swap";
    platform->Release(parent.GetHandle(), 50, 30);

    control.Enable(false);
    EXPECT_EQ(control.GetFrameState(), MEDIA_FRAME_NONE) << "disabled, though hovered";
    EXPECT_EQ(Shot().GetPixel(15, 15) & 0xFFFFFF, colors[3] & 0xFFFFFF);
    control.Enable(true);
    control.SetChecked(true);
    platform->MoveMouse(parent.GetHandle(), 200, 150);
    EXPECT_EQ(control.GetFrameState(), MEDIA_FRAME_SUNKEN) << "checked stays down";
    EXPECT_EQ(Shot().GetPixel(15, 15) & 0xFFFFFF, colors[2] & 0xFFFFFF);
}

TEST_F(MediaCtrlTest, ThePictureFillsTheInnerRectangleByItsDrawMode) {
    Make("");
    control.SetBackColor(0xFFFFFF);
    control.SetMargins(5, 5, 5, 5);
    SImage red;
    red.Create(4, 4, PIXEL_FORMAT_32ARGB);
    red.Fill(0xFFFF0000u);
    red.drawMode = DRAW_STRETCH;
    control.SetImage(&red);
    SImage shot = Shot();
    EXPECT_EQ(shot.GetPixel(16, 16) & 0xFFFFFF, 0xFF0000u);
    EXPECT_EQ(shot.GetPixel(303, 53) & 0xFFFFFF, 0xFF0000u);
    EXPECT_EQ(shot.GetPixel(12, 12) & 0xFFFFFF, 0xFFFFFFu) << "the margin stays clear";
    control.SetImage(nullptr);
    EXPECT_EQ(Shot().GetPixel(16, 16) & 0xFFFFFF, 0xFFFFFFu);
}

TEST_F(MediaCtrlTest, ImageMarksDrawPicturesFromTheArchive) {
    Make("");
    control.SetBackColor(0xFFFFFF);
    control.SetMarkup(true);
    control.SetAlign(0);
    SImage green;
    green.Create(16, 16, PIXEL_FORMAT_32ARGB);
    green.Fill(0xFF00C000u);
    SFileMem png;
    ASSERT_TRUE(green.Save(&png, IMAGE_PNG));
    std::string bytes(png.GetData(), png.GetSize());
    control.SetImageArchive([bytes](const char* entry, SFileMem* file) {
        return std::string(entry) == "image\\dot" &&
               file->Write(bytes.data(), static_cast<int>(bytes.size())) ==
                   static_cast<int>(bytes.size());
    });
    control.SetText("<IMG>dot</IMG><IMG>none</IMG>");
    ASSERT_EQ(control.GetLines()[0].texts.size(), 2u);
    EXPECT_NE(control.GetLines()[0].texts[0].image, nullptr);
    EXPECT_EQ(control.GetContentSize().height, 16);
    SImage shot = Shot();
    EXPECT_EQ(shot.GetPixel(11 + 8, 11 + 8) & 0xFFFFFF, 0x00C000u);
    EXPECT_EQ(control.GetLines()[0].texts[1].image, nullptr) << "drawn as its name";
}

TEST_F(MediaCtrlTest, TheTickerMovesOnTheClockAndWrapsAround) {
    SHeadlessPlatform::UseFakeClock(true);
    Make("A title much too long to stand in this narrow control at once", SRect{10, 10, 110, 40});
    control.SetMargins(0, 0, 0, 0);
    int width = control.GetContentSize().width;
    ASSERT_GT(width, 100);
    control.SetAutoScroll(-100, 0);
    ASSERT_TRUE(control.IsAutoScrollOn());
    EXPECT_EQ(control.GetScrollOffset().x, 100) << "it starts at the far edge";
    for (int i = 0; i < 10; ++i) {
        SHeadlessPlatform::AdvanceClock(20);
        SHeadlessPlatform::DispatchPending();
    }
    EXPECT_EQ(control.GetScrollOffset().x, 80) << "100 pixels a second for 200 ms";
    SHeadlessPlatform::AdvanceClock(static_cast<uint64_t>(width + 80) * 10);
    SHeadlessPlatform::DispatchPending();
    EXPECT_EQ(control.GetScrollOffset().x, -width) << "its last pixel is still in";
    SHeadlessPlatform::AdvanceClock(MEDIA_TICKER_PERIOD);
    SHeadlessPlatform::DispatchPending();
    EXPECT_EQ(control.GetScrollOffset().x, 100) << "wrapped to the far edge";

    control.SetText("Short");
    EXPECT_FALSE(control.IsAutoScrollOn()) << "a new text stops the ticker";
    EXPECT_EQ(control.GetScrollOffset().x, 0);
    control.SetAutoScroll(-100, 0);
    EXPECT_FALSE(control.IsAutoScrollOn()) << "a text that fits stands still";
    control.SetAutoScroll(-100, 0, true);
    EXPECT_TRUE(control.IsAutoScrollOn());
    control.SetAutoScroll(0, 0);
    EXPECT_FALSE(control.IsAutoScrollOn());
    EXPECT_EQ(control.GetScrollOffset().x, 0);
}

TEST_F(MediaCtrlTest, AScrolledTextIsDrawnAtItsOffset) {
    SHeadlessPlatform::UseFakeClock(true);
    Make("The quick brown fox jumps over the lazy dog, and back again", SRect{10, 10, 210, 40});
    control.SetBackColor(0xFFFFFF);
    control.SetTextColor(0x000000);
    control.SetAlign(MEDIA_ALIGN_RIGHT | MEDIA_ALIGN_MIDDLE);
    control.SetAutoScroll(-50, 0);
    SRect strip{10, 10, 210, 40};
    ASSERT_TRUE(control.IsAutoScrollOn());
    int start = FirstColumn(Shot(), strip, 0x000000);
    EXPECT_TRUE(start == -1 || start >= 10 + 1 + 198)
        << "at the start the text waits at the right edge";
    SHeadlessPlatform::AdvanceClock(1000);
    SHeadlessPlatform::DispatchPending();
    int column = FirstColumn(Shot(), strip, 0x000000);
    EXPECT_GE(column, 10 + 1 + 148);
    EXPECT_LE(column, 10 + 1 + 148 + 3) << "50 pixels in a second, aligned left while scrolling";
}

TEST_F(MediaCtrlTest, TrailingBlanksCountInTheMeasuredWidth) {
    Make("ab");
    control.SetMarkup(true);
    int bare = control.GetContentSize().width;
    control.SetText("ab    ");
    EXPECT_GT(control.GetContentSize().width, bare + 4);
    control.SetText("<B>ab    </B>x");
    ASSERT_EQ(control.GetLines()[0].texts.size(), 2u);
    EXPECT_GE(control.GetLines()[0].texts[1].x, bare + 4) << "the next run starts after the blanks";
}

} // namespace
