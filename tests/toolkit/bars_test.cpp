// The bars on the headless platform: toolbar clicks become WM_COMMAND,
// check buttons toggle, disabled buttons and separators take no clicks,
// the hovered button's text is the tool tip, a definition makes the
// buttons, the disabled image is not the normal one; status bar parts
// follow the bar's width; the control bar places its bands and tells its
// height.
#include <memory>
#include <string>
#include <vector>

#include "foundation/file.h"
#include "foundation/image.h"
#include "toolkit/bar_ctrls.h"
#include "toolkit/notification.h"
#include "toolkit/toolbar_ctrl.h"
#include "toolkit_fixture.h"

namespace {

class CommandParent : public SWnd {
public:
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override {
        if (message == WM_COMMAND) {
            commands.push_back(static_cast<int>(wParam & 0xFFFF));
        }
        SNotification note(message, wParam, lParam);
        if (message == SN_STATUS_BAR_MOUSE && note.Mouse() != nullptr) {
            statusMice.push_back(*note.Mouse());
        }
        if (message == SN_CONTROL_BAR_HEIGHT) {
            heights.push_back(static_cast<int>(lParam));
        }
        return SWnd::OnMessage(message, wParam, lParam);
    }
    std::vector<int> commands;
    std::vector<int> heights;
    std::vector<SMouseEvent> statusMice;
};

SImage Picture(uint32_t argb) {
    SImage image;
    image.Create(16, 16, PIXEL_FORMAT_32ARGB);
    image.Fill(argb);
    return image;
}

class BarsTest : public ToolkitTest {
protected:
    void SetUp() override {
        ToolkitTest::SetUp();
        ASSERT_TRUE(Make(top, "top", Rect(100, 100, 600, 400)));
        ASSERT_TRUE(Make(bar, "", Rect(0, 0, 500, 30), top.GetHandle()));
        int image = bar.AddImage(Picture(0xFF3070C0u));
        ASSERT_EQ(image, 0);
        bar.AddButton(101, image, "Play");
        bar.AddSeparator();
        bar.AddButton(102, -1, "Shuffle", TOOLBAR_STATE_ENABLED,
                      TOOLBAR_BUTTON_STYLE | TOOLBAR_BUTTON_CHECK);
        bar.AddButton(103, image, "Stop", TOOLBAR_STATE_DISABLED);
    }
    SPoint Centre(int index) const {
        SRect rect = bar.GetButtonRect(index);
        SRect place = bar.GetRect();
        return SPoint{place.left + (rect.left + rect.right) / 2,
                      place.top + (rect.top + rect.bottom) / 2};
    }
    void ClickButton(int index) {
        SPoint point = Centre(index);
        platform->Click(top.GetHandle(), point.x, point.y);
    }
    CommandParent top;
    SToolBarCtrl bar;
};

TEST_F(BarsTest, ClicksSendTheCommandOfEnabledButtonsOnly) {
    struct Case {
        int index;
        int command; // 0: none
    };
    const Case cases[] = {{0, 101}, {1, 0}, {2, 102}, {3, 0}};
    for (const Case& c : cases) {
        top.commands.clear();
        ClickButton(c.index);
        std::vector<int> expected;
        if (c.command != 0) {
            expected.push_back(c.command);
        }
        EXPECT_EQ(top.commands, expected) << "button " << c.index;
    }
    // Enabled by ID, the fourth now answers; disabled again it does not.
    EXPECT_TRUE(bar.EnableButton(103, true));
    top.commands.clear();
    ClickButton(3);
    EXPECT_EQ(top.commands, std::vector<int>{103});
    bar.EnableButton(103, false);
    top.commands.clear();
    ClickButton(3);
    EXPECT_TRUE(top.commands.empty());
    EXPECT_FALSE(bar.EnableButton(999, true));
    // The whole bar disabled: nothing.
    bar.Enable(false);
    ClickButton(0);
    EXPECT_TRUE(top.commands.empty());
}

TEST_F(BarsTest, PressOnOneButtonReleasedOnAnotherIsNoClick) {
    SPoint from = Centre(0), to = Centre(2);
    platform->Press(top.GetHandle(), from.x, from.y);
    platform->Release(top.GetHandle(), to.x, to.y);
    EXPECT_TRUE(top.commands.empty());
    EXPECT_FALSE(bar.IsButtonChecked(102));
}

TEST_F(BarsTest, CheckButtonsToggleAndPlainOnesDoNot) {
    const bool expected[] = {true, false, true};
    for (bool state : expected) {
        ClickButton(2);
        EXPECT_EQ(bar.IsButtonChecked(102), state);
    }
    ClickButton(0);
    EXPECT_FALSE(bar.IsButtonChecked(101));
    EXPECT_TRUE(bar.CheckButton(101, true)); // by code, any button
    EXPECT_TRUE(bar.IsButtonChecked(101));
}

TEST_F(BarsTest, TheHoveredButtonsTextIsTheToolTip) {
    struct Case {
        int index;
        const char* tip;
    };
    const Case cases[] = {{0, "Play"}, {1, ""}, {2, "Shuffle"}, {3, "Stop"}};
    for (const Case& c : cases) {
        SPoint point = Centre(c.index);
        platform->MoveMouse(top.GetHandle(), point.x, point.y);
        EXPECT_EQ(bar.GetHotButton(), c.index);
        EXPECT_STREQ(bar.GetToolTipText().c_str(), c.tip) << "button " << c.index;
    }
    SRect place = bar.GetRect();
    platform->MoveMouse(top.GetHandle(), place.left + 2, place.bottom + 40);
    EXPECT_EQ(bar.GetHotButton(), -1);
}

TEST(DisabledImage, IsGreyFadedAndKeepsTheSize) {
    SImage normal = Picture(0xFFE02010u);
    SImage disabled;
    ASSERT_TRUE(MakeDisabledImage(normal, &disabled));
    ASSERT_EQ(disabled.GetWidth(), 16);
    ASSERT_EQ(disabled.GetHeight(), 16);
    uint32_t pixel = disabled.GetPixel(3, 3);
    EXPECT_NE(pixel, normal.GetPixel(3, 3));
    EXPECT_EQ((pixel >> 16) & 0xFF, (pixel >> 8) & 0xFF) << "grey";
    EXPECT_EQ((pixel >> 8) & 0xFF, pixel & 0xFF) << "grey";
    EXPECT_LT(pixel >> 24, 0xFFu) << "faded";
    // A transparent pixel stays transparent; an empty picture gives nothing.
    SImage clear = Picture(0x00000000u);
    ASSERT_TRUE(MakeDisabledImage(clear, &disabled));
    EXPECT_EQ(disabled.GetPixel(0, 0) >> 24, 0u);
    EXPECT_FALSE(MakeDisabledImage(SImage(), &disabled));
}

TEST_F(BarsTest, ADefinitionMakesTheButtonsWithTheirImages) {
    SToolbarDefinition definition;
    definition.width = 24;
    definition.height = 24;
    auto record = [](int id, const char* image, bool separator, bool disabled) {
        SToolbarButtonRecord r;
        r.id = id;
        r.image = image;
        r.separator = separator;
        r.disabled = disabled;
        r.text = "t";
        return r;
    };
    definition.buttons = {record(7, "a.png", false, false), record(0, "", true, false),
                          record(-4, "missing.png", false, true)};
    bar.SetDefinition(definition, [](const SString& name, SImage* image) {
        if (name != SString("a.png")) {
            return false;
        }
        *image = Picture(0xFF00FF00u);
        return true;
    });
    ASSERT_EQ(bar.GetButtonCount(), 3);
    EXPECT_EQ(bar.GetImageWidth(), 24);
    ASSERT_NE(bar.GetImage(0), nullptr);
    EXPECT_EQ(bar.GetImage(0)->GetWidth(), 24) << "scaled to the bar's size";
    EXPECT_EQ(bar.GetImage(1), nullptr) << "the missing picture leaves no image";
    EXPECT_TRUE(bar.IsSeparator(1));
    EXPECT_TRUE(bar.IsButtonEnabled(7));
    EXPECT_FALSE(bar.IsButtonEnabled(-4));
    ClickButton(0);
    EXPECT_EQ(top.commands, std::vector<int>{7});
}

TEST_F(BarsTest, ADefinitionFileMakesTheBarOrLeavesItEmpty) {
    auto memory = [](const std::string& bytes) {
        auto file = std::make_unique<SFileMem>();
        file->Reset(0);
        file->Write(bytes.data(), static_cast<int>(bytes.size()));
        file->Rewind();
        return file;
    };
    const std::string body = "[]\r\nwidth=16\r\nheight=16\r\ncount=3\r\n[0]\r\nname=PLAY\r\n"
                             "text=Play\r\n[1]\r\nseparator=1\r\n[2]\r\nname=X\r\ntext=X\r\n";
    struct Case {
        std::string bytes;
        int buttons;
    };
    const Case cases[] = {
        {"TAVORA TOOLBAR 1.0.0.0\r\n" + body, 3},
        {"TAVORA TOOLBAR 9.0.0.0\r\n" + body, 0}, // a wrong first line
        {"TAVORA TOOLBAR 1.0.0.0\r\n[]\r\ncount=0\r\n", 0},
    };
    for (const Case& c : cases) {
        auto file = memory(c.bytes);
        bar.LoadDefinition(
            file.get(), [](const SString& name) { return name == SString("PLAY") ? 40 : 0; },
            nullptr);
        EXPECT_EQ(bar.GetButtonCount(), c.buttons);
    }
    EXPECT_FALSE(bar.LoadDefinition(nullptr, nullptr, nullptr));
    auto file = memory(cases[0].bytes);
    ASSERT_TRUE(bar.LoadDefinition(
        file.get(), [](const SString& name) { return name == SString("PLAY") ? 40 : 0; }, nullptr));
    // The third button has neither callback ID nor its own: -2 less its index.
    EXPECT_EQ(bar.GetButtonId(0), 40);
    EXPECT_EQ(bar.GetButtonId(2), -4);
    ClickButton(2);
    EXPECT_EQ(top.commands, std::vector<int>{0xFFFC}) << "the ID's low word";
}

TEST_F(BarsTest, StatusPartsFollowTheBarsWidth) {
    SStatusBarCtrl status;
    ASSERT_TRUE(Make(status, "", Rect(0, 270, 500, 292), top.GetHandle()));
    status.SetParts({100, -1, 80});
    struct Case {
        int width;
        SRect parts[3];
    };
    const Case cases[] = {
        {500, {Rect(0, 0, 100, 22), Rect(100, 0, 420, 22), Rect(420, 0, 500, 22)}},
        {300, {Rect(0, 0, 100, 22), Rect(100, 0, 220, 22), Rect(220, 0, 300, 22)}},
        // Too narrow: the rest is empty and the last part is cut.
        {150, {Rect(0, 0, 100, 22), Rect(100, 0, 100, 22), Rect(100, 0, 150, 22)}},
    };
    for (const Case& c : cases) {
        status.MoveWindow(Rect(0, 270, c.width, 292));
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(status.GetPartRect(i), c.parts[i]) << "width " << c.width << " part " << i;
        }
    }
    EXPECT_TRUE(status.SetText(1, "12 tracks"));
    EXPECT_STREQ(status.GetText(1).c_str(), "12 tracks");
    EXPECT_FALSE(status.SetText(3, "x"));
    EXPECT_FALSE(status.SetPartWidth(-1, 5));
    // Its mouse events reach the parent, in the bar's own coordinates.
    platform->Click(top.GetHandle(), 30, 280);
    ASSERT_FALSE(top.statusMice.empty());
    EXPECT_EQ(top.statusMice.front().code, MOUSE_DOWN | MOUSE_LEFT);
    EXPECT_EQ(top.statusMice.front().client, (SPoint{30, 10}));
    // Two parts sharing the rest, with the grip's corner kept free.
    SStatusBarCtrl grip;
    ASSERT_TRUE(
        Make(grip, "", Rect(0, 240, 201, 262), top.GetHandle(), WS_VISIBLE | STATUS_SIZE_GRIP));
    grip.SetParts({-1, -1});
    EXPECT_EQ(grip.GetPartRect(0), Rect(0, 0, 93, 22));
    EXPECT_EQ(grip.GetPartRect(1), Rect(93, 0, 187, 22));
}

TEST_F(BarsTest, ControlBarWrapsBandsAndTellsItsHeight) {
    SControlBarCtrl controlBar;
    ASSERT_TRUE(Make(controlBar, "", Rect(0, 40, 300, 80), top.GetHandle()));
    SWnd one, two;
    ASSERT_TRUE(Make(one, "", Rect(0, 0, 10, 24), controlBar.GetHandle()));
    ASSERT_TRUE(Make(two, "", Rect(0, 0, 10, 30), controlBar.GetHandle()));
    controlBar.AddBand(&one, 120);
    controlBar.AddBand(&two, 100);
    EXPECT_EQ(controlBar.GetBandRect(0).top, controlBar.GetBandRect(1).top) << "one row";
    int oneRow = controlBar.GetIdealHeight();
    EXPECT_EQ(one.GetRect().Width(), 120);
    EXPECT_EQ(two.GetRect().Height(), 30);
    controlBar.MoveWindow(Rect(0, 40, 200, 80));
    EXPECT_GT(controlBar.GetBandRect(1).top, controlBar.GetBandRect(0).top) << "wrapped";
    EXPECT_GT(controlBar.GetIdealHeight(), oneRow);
    ASSERT_FALSE(top.heights.empty());
    EXPECT_EQ(top.heights.back(), controlBar.GetIdealHeight());
    EXPECT_EQ(controlBar.AddBand(nullptr, 10), -1);
    EXPECT_TRUE(controlBar.RemoveBand(1));
    EXPECT_FALSE(controlBar.RemoveBand(5));
    EXPECT_EQ(controlBar.GetIdealHeight(), oneRow - 6) << "the taller band left";
}

} // namespace

namespace {

// A parent that empties the toolbar when told of the release.
class ClearingParent : public SWnd {
public:
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override {
        SNotification note(message, wParam, lParam);
        if (message == SN_TOOLBAR_MOUSE && note.Mouse() != nullptr &&
            note.Mouse()->code == (MOUSE_UP | MOUSE_LEFT)) {
            bar->RemoveAllButtons();
        }
        commands += message == WM_COMMAND ? 1 : 0;
        return SWnd::OnMessage(message, wParam, lParam);
    }
    SToolBarCtrl* bar = nullptr;
    int commands = 0;
};

TEST_F(ToolkitTest, ToolbarEmptiedByItsParentOnTheReleaseSendsNoCommand) {
    ClearingParent parent;
    SToolBarCtrl bar;
    parent.bar = &bar;
    ASSERT_TRUE(Make(parent, "top", Rect(100, 100, 400, 300)));
    ASSERT_TRUE(Make(bar, "", Rect(0, 0, 300, 30), parent.GetHandle()));
    bar.AddButton(1, -1, "One");
    SRect rect = bar.GetButtonRect(0);
    platform->Click(parent.GetHandle(), rect.left + 5, rect.top + 5);
    EXPECT_EQ(bar.GetButtonCount(), 0);
    EXPECT_EQ(parent.commands, 0);
}

} // namespace
