#include "toolkit_fixture.h"

namespace {

using KeyState = ToolkitTest;

TEST_F(KeyState, AKeyIsHeldFromItsDownToItsUp) {
    RecordingWnd top;
    ASSERT_TRUE(Make(top, "top", Rect(0, 0, 100, 100), 0, 0));
    EXPECT_FALSE(IsKeyHeld(VK_ESCAPE));
    PlatformKey(top.GetHandle(), WM_KEYDOWN, VK_ESCAPE);
    EXPECT_TRUE(IsKeyHeld(VK_ESCAPE));
    EXPECT_FALSE(IsKeyHeld(VK_RETURN));
    PlatformKey(top.GetHandle(), WM_KEYUP, VK_ESCAPE);
    EXPECT_FALSE(IsKeyHeld(VK_ESCAPE));
    // A scripted key press leaves nothing held.
    platform->Key(top.GetHandle(), VK_RETURN);
    EXPECT_FALSE(IsKeyHeld(VK_RETURN));
    // Characters and codes beyond the table are no keys.
    PlatformKey(top.GetHandle(), WM_CHAR, 'a');
    PlatformKey(top.GetHandle(), WM_KEYDOWN, 5000);
    EXPECT_FALSE(IsKeyHeld('a'));
    EXPECT_FALSE(IsKeyHeld(5000));
    top.Destroy();
}

TEST_F(KeyState, LosingTheFocusReleasesEveryKey) {
    RecordingWnd top;
    ASSERT_TRUE(Make(top, "top", Rect(0, 0, 100, 100), 0, 0));
    PlatformKey(top.GetHandle(), WM_SYSKEYDOWN, VK_CONTROL);
    EXPECT_TRUE(IsKeyHeld(VK_CONTROL));
    PlatformFocus(top.GetHandle(), false);
    EXPECT_FALSE(IsKeyHeld(VK_CONTROL));
    top.Destroy();
}

} // namespace
