// The modal run of a window: what it disables and gives back, how it ends
// (EndModal, closing, Enter and Escape, WM_QUIT, a refused start), and
// what survives it.
#include "toolkit/platform/events.h"
#include "toolkit_fixture.h"

namespace {

// Answers SM_MODAL_START with refuse.
class ModalWnd : public RecordingWnd {
public:
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override {
        if (message == SM_MODAL_START) {
            RecordingWnd::OnMessage(message, wParam, lParam);
            return refuse;
        }
        return RecordingWnd::OnMessage(message, wParam, lParam);
    }
    LRESULT refuse = 0;
};

class Modal : public ToolkitTest {
protected:
    void SetUp() override {
        ToolkitTest::SetUp();
        ASSERT_TRUE(Make(owner, "owner", Rect(0, 0, 400, 300)));
        ASSERT_TRUE(Make(ownerChild, "child", Rect(10, 10, 50, 50), owner.GetHandle()));
        ASSERT_TRUE(Make(steps, "steps", Rect(0, 0, 10, 10), 0, 0));
        dialog.SetOwner(owner.GetHandle());
        ASSERT_TRUE(Make(dialog, "dialog", Rect(50, 50, 250, 150), 0, 0));
    }
    RecordingWnd owner, ownerChild;
    Stepper steps;
    ModalWnd dialog;
};

TEST_F(Modal, TheWaysARunEnds) {
    struct Case {
        const char* what;
        std::function<void(ModalWnd&)> during;
        int result;
        bool visibleAfter;
    };
    const Case cases[] = {
        {"closed from the title bar: cancelled, and the window survives hidden",
         [](ModalWnd& d) { PostMessage(d.GetHandle(), WM_CLOSE, 0, 0); }, -1, false},
        {"Enter", [](ModalWnd& d) { PlatformKey(d.GetHandle(), WM_KEYDOWN, VK_RETURN); }, 0, false},
        {"Escape", [](ModalWnd& d) { PlatformKey(d.GetHandle(), WM_KEYDOWN, VK_ESCAPE); }, -1,
         false},
        {"a second EndModal leaves the first result",
         [](ModalWnd& d) {
             d.EndModal(5);
             d.EndModal(7);
         },
         5, false},
    };
    for (const Case& c : cases) {
        ModalWnd& d = dialog;
        steps.Post([&] { c.during(d); });
        EXPECT_EQ(dialog.DoModal(), c.result) << c.what;
        EXPECT_NE(dialog.GetHandle(), 0) << c.what;
        EXPECT_EQ(dialog.IsVisible(), c.visibleAfter) << c.what;
        EXPECT_FALSE(dialog.IsModal()) << c.what;
        EXPECT_TRUE(owner.IsEnabled()) << c.what;
    }
}

TEST_F(Modal, TheOwnerWaitsDuringTheRunAndADisabledWindowStaysDisabled) {
    RecordingWnd other;
    ASSERT_TRUE(Make(other, "other", Rect(0, 0, 50, 50)));
    other.Enable(false);
    bool ownerDuring = true, childDuring = false;
    steps.Post([&] {
        ownerDuring = owner.IsEnabled();
        childDuring = ownerChild.IsEnabled();
        dialog.EndModal(3);
    });
    EXPECT_EQ(dialog.DoModal(0, 0, true, false, true), 3);
    EXPECT_FALSE(ownerDuring);
    EXPECT_TRUE(childDuring) << "a child follows its top-level window and keeps its own state";
    EXPECT_TRUE(owner.IsEnabled());
    EXPECT_FALSE(other.IsEnabled()) << "disabled before the run, disabled after";
}

TEST_F(Modal, ARunOverTheThreadSparesOwnedWindowsWhenAsked) {
    RecordingWnd owned, free;
    owned.SetOwner(owner.GetHandle());
    ASSERT_TRUE(Make(owned, "owned", Rect(0, 0, 50, 50)));
    ASSERT_TRUE(Make(free, "free", Rect(0, 0, 50, 50)));
    bool ownedDuring = false, freeDuring = true;
    steps.Post([&] {
        ownedDuring = owned.IsEnabled();
        freeDuring = free.IsEnabled();
        dialog.EndModal(0);
    });
    dialog.DoModal(0, 0, true, true, true);
    EXPECT_TRUE(ownedDuring) << "its owner is shown";
    EXPECT_FALSE(freeDuring);
    EXPECT_TRUE(free.IsEnabled());
}

TEST_F(Modal, ARefusedStartEndsAtOnceWithEverythingEnabled) {
    dialog.refuse = 1;
    dialog.modalResult = 9;
    EXPECT_EQ(dialog.DoModal(11, 22), 0);
    ASSERT_EQ(dialog.Count(SM_MODAL_START), 1);
    for (const auto& entry : *dialog.log) {
        if (entry.message == SM_MODAL_START) {
            EXPECT_EQ(entry.wParam, 11u);
            EXPECT_EQ(entry.lParam, 22);
        }
    }
    EXPECT_FALSE(dialog.IsModal());
    EXPECT_FALSE(dialog.IsVisible()) << "a refused run shows nothing";
    EXPECT_TRUE(owner.IsEnabled());
}

TEST_F(Modal, EnterWithTheEnterKeyOffGoesOnToTheWindowAndDoesNotEnd) {
    dialog.enterKey = false;
    PlatformKey(dialog.GetHandle(), WM_KEYDOWN, VK_RETURN);
    steps.Post([&] { dialog.EndModal(4); });
    EXPECT_EQ(dialog.DoModal(), 4);
    EXPECT_EQ(dialog.Count(SM_OK), 0);
    EXPECT_EQ(dialog.Count(WM_KEYDOWN), 1);
}

TEST_F(Modal, QuitDuringARunEndsItTheOuterLoopToo) {
    steps.Post([] { PostQuitMessage(6); });
    dialog.DoModal();
    EXPECT_FALSE(dialog.IsModal());
    EXPECT_TRUE(owner.IsEnabled());
    bool run = true;
    EXPECT_EQ(RunLoop(&run, nullptr, nullptr), 6);
}

TEST_F(Modal, AChildWindowHasNoRun) {
    RecordingWnd child;
    ASSERT_TRUE(Make(child, "child", Rect(0, 0, 10, 10), owner.GetHandle()));
    child.modalResult = 8;
    EXPECT_EQ(child.DoModal(), 0);
    EXPECT_EQ(child.Count(SM_MODAL_START), 0);
    EXPECT_TRUE(owner.IsEnabled());
}

TEST_F(Modal, AWindowDestroyedDuringItsRunEndsTheRun) {
    steps.Post([&] { dialog.Destroy(); });
    EXPECT_EQ(dialog.DoModal(), 0);
    EXPECT_EQ(dialog.GetHandle(), 0);
    EXPECT_TRUE(owner.IsEnabled());
}

} // namespace
