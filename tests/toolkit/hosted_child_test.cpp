// A platform widget hosted over a toolkit window, as the headless platform
// records it: it follows its owner's place, visibility and focus, and goes
// with the owner or the top-level window.
#include "toolkit/hosted_child.h"

#include "toolkit/toolkit_fixture.h"

namespace {

class HostedChildTest : public ToolkitTest {
protected:
    SHeadlessPlatform::HostedChild Record(const SWnd& owner) {
        SHeadlessPlatform::HostedChild child;
        EXPECT_TRUE(platform->GetHostedChild(owner.GetHandle(), &child));
        return child;
    }
    int widget = 0; // any address stands for the widget headless
};

TEST_F(HostedChildTest, FollowsTheOwnerAndItsParents) {
    RecordingWnd top;
    RecordingWnd panel;
    RecordingWnd owner;
    ASSERT_TRUE(Make(top, "top", Rect(100, 100, 500, 400)));
    ASSERT_TRUE(Make(panel, "", Rect(10, 20, 310, 220), top.GetHandle()));
    ASSERT_TRUE(Make(owner, "", Rect(5, 5, 105, 55), panel.GetHandle()));
    SHostedChild hosted;
    ASSERT_TRUE(hosted.Attach(&owner, &widget));
    SHeadlessPlatform::HostedChild child = Record(owner);
    EXPECT_EQ(child.top, top.GetHandle());
    EXPECT_EQ(child.widget, &widget);
    SRect topWindow = top.GetWindowRect();
    SRect client = owner.GetClientRect();
    owner.ClientToScreen(&client);
    EXPECT_EQ(child.rect, (SRect{client.left - topWindow.left, client.top - topWindow.top,
                                 client.right - topWindow.left, client.bottom - topWindow.top}));
    EXPECT_EQ(child.rect.Width(), 100);
    EXPECT_TRUE(child.visible);

    // A parent moves: the next frame places the widget again.
    panel.MoveWindow(Rect(40, 60, 340, 260));
    platform->PresentFrame(top.GetHandle());
    EXPECT_EQ(Record(owner).rect.left, child.rect.left + 30);
    EXPECT_EQ(Record(owner).rect.top, child.rect.top + 40);
    int moves = Record(owner).moves;
    platform->PresentFrame(top.GetHandle());
    owner.Invalidate();
    platform->PresentFrame(top.GetHandle());
    EXPECT_EQ(Record(owner).moves, moves); // no move without a change

    // Hidden with a parent, shown again; focus in and out.
    panel.Show(SW_HIDE);
    platform->PresentFrame(top.GetHandle());
    EXPECT_FALSE(Record(owner).visible);
    panel.Show(SW_SHOW);
    platform->PresentFrame(top.GetHandle());
    EXPECT_TRUE(Record(owner).visible);
    hosted.Focus(true);
    EXPECT_TRUE(Record(owner).focused);
    hosted.Focus(false);
    EXPECT_FALSE(Record(owner).focused);

    hosted.Detach();
    SHeadlessPlatform::HostedChild gone;
    EXPECT_FALSE(platform->GetHostedChild(owner.GetHandle(), &gone));
    EXPECT_FALSE(hosted.IsAttached());
}

TEST_F(HostedChildTest, RefusedWithoutAWindowAndGoneWithTheSurface) {
    RecordingWnd loose;
    SHostedChild hosted;
    EXPECT_FALSE(hosted.Attach(&loose, &widget)); // no handle
    EXPECT_FALSE(hosted.Attach(nullptr, &widget));

    RecordingWnd top;
    RecordingWnd owner;
    ASSERT_TRUE(Make(top, "top", Rect(0, 0, 200, 200)));
    ASSERT_TRUE(Make(owner, "", Rect(0, 0, 50, 50), top.GetHandle()));
    EXPECT_FALSE(hosted.Attach(&owner, nullptr));
    ASSERT_TRUE(hosted.Attach(&owner, &widget));
    HWND ownerHandle = owner.GetHandle();
    top.Destroy();
    SHeadlessPlatform::HostedChild gone;
    EXPECT_FALSE(platform->GetHostedChild(ownerHandle, &gone));
    hosted.Detach(); // safe after the surface went
}

// The keys pressed while the child has the keyboard: the edges of the
// function keys, the page's moving keys turned into shortcuts by Ctrl or
// Alt, and keys that look alike (Tab, Backspace, Enter) left to the child.
TEST(HostedKeyRoute, FunctionKeysAreTheWindowsMovingKeysThePagesTheRestEither) {
    struct Case {
        unsigned key;
        bool ctrl;
        bool alt;
        SHostedKey route;
    };
    const Case cases[] = {
        {VK_F1, false, false, SHostedKey::WINDOW},
        {VK_F12, false, false, SHostedKey::WINDOW},
        {VK_F5, true, false, SHostedKey::WINDOW},
        {VK_F1 - 1, false, false, SHostedKey::EITHER},  // past the ends of F1..F12
        {VK_F12 + 1, false, false, SHostedKey::EITHER}, // F13
        {VK_ESCAPE, false, false, SHostedKey::WINDOW},
        {VK_ESCAPE, false, true, SHostedKey::WINDOW},
        {VK_SPACE, false, false, SHostedKey::CHILD},
        {VK_PRIOR, false, false, SHostedKey::CHILD},
        {VK_NEXT, false, false, SHostedKey::CHILD},
        {VK_HOME, false, false, SHostedKey::CHILD},
        {VK_END, false, false, SHostedKey::CHILD},
        {VK_LEFT, false, false, SHostedKey::CHILD},
        {VK_DOWN, false, false, SHostedKey::CHILD},
        {VK_SPACE, true, false, SHostedKey::EITHER},
        {VK_HOME, false, true, SHostedKey::EITHER},
        {VK_TAB, false, false, SHostedKey::EITHER},
        {VK_BACK, false, false, SHostedKey::EITHER},
        {VK_RETURN, false, false, SHostedKey::EITHER},
        {'A', true, false, SHostedKey::EITHER},
        {'C', true, false, SHostedKey::EITHER},
        {0, false, false, SHostedKey::EITHER}, // a key without a code
    };
    for (const Case& c : cases) {
        EXPECT_EQ(RouteHostedKey(c.key, c.ctrl, c.alt), c.route)
            << "key " << c.key << " ctrl " << c.ctrl << " alt " << c.alt;
    }
}

} // namespace
