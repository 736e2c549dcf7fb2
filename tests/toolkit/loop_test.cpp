// The loop: both modes of RunLoop, the modal pump and WM_QUIT, timers of
// windows on the fake clock, dialogs, input flushing, the command line and
// the instance count.
#include <unistd.h>

#include "toolkit_fixture.h"

namespace {

using Loop = ToolkitTest;

TEST_F(Loop, RunLoopReturnsAfterOneFetchWhenQuitIsQueued) {
    RecordingWnd wnd;
    ASSERT_TRUE(Make(wnd, "w", Rect(0, 0, 10, 10), 0, 0));
    PostQuitMessage(4);
    PostMessage(wnd.GetHandle(), WM_USER, 0, 0);
    bool run = true;
    EXPECT_EQ(RunLoop(&run, nullptr, nullptr), 4);
    EXPECT_EQ(wnd.Count(WM_USER), 0) << "the message behind WM_QUIT was not fetched";
}

struct IdleState {
    int idleCalls = 0;
};

void CountIdle(void* argument) {
    auto* state = static_cast<IdleState*>(argument);
    if (++state->idleCalls == 3) {
        PostQuitMessage(0);
    }
}

TEST_F(Loop, ClearingTheRunFlagMovesTheLoopToPollingWithIdle) {
    bool run = true;
    class Switcher : public RecordingWnd {
    public:
        bool* run = nullptr;
        LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override {
            if (message == WM_USER) {
                *run = false;
            }
            return RecordingWnd::OnMessage(message, wParam, lParam);
        }
    } wnd;
    wnd.run = &run;
    ASSERT_TRUE(Make(wnd, "w", Rect(0, 0, 10, 10), 0, 0));
    PostMessage(wnd.GetHandle(), WM_USER, 0, 0);
    PostMessage(wnd.GetHandle(), WM_USER + 1, 0, 0);
    IdleState state;
    EXPECT_EQ(RunLoop(&run, CountIdle, &state), 0);
    EXPECT_EQ(state.idleCalls, 3) << "idle runs once the queue is empty";
    EXPECT_EQ(wnd.Count(WM_USER + 1), 1) << "queued messages come before idle";
}

TEST_F(Loop, QuitDuringAModalRunEndsItAndTheOuterLoop) {
    RecordingWnd dialog;
    ASSERT_TRUE(Make(dialog, "dialog", Rect(0, 0, 10, 10)));
    dialog.SetModal(true);
    dialog.modalResult = 7;
    PostQuitMessage(9);
    bool run = true;
    EXPECT_EQ(RunModalLoop(&dialog, &run, nullptr, nullptr), 7);
    EXPECT_TRUE(dialog.IsModal()) << "the run ended on WM_QUIT, not by the window";
    SMessage message;
    ASSERT_TRUE(PeekMessage(&message, false));
    EXPECT_EQ(message.message, WM_QUIT) << "WM_QUIT is posted again for the outer loop";
    EXPECT_EQ(message.wParam, 9u);
    EXPECT_EQ(RunLoop(&run, nullptr, nullptr), 9);
}

TEST_F(Loop, ModalRunTurnsEnterAndEscapeIntoOkAndCancel) {
    // Enter's SM_OK is taken without ending the run, so that Escape comes.
    class Dialog : public RecordingWnd {
    public:
        LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override {
            if (message == SM_OK) {
                log->push_back(Entry{name, message, wParam, lParam});
                return 0;
            }
            if (message == SM_CANCEL) {
                modalResult = 2;
                SetModal(false);
            }
            return RecordingWnd::OnMessage(message, wParam, lParam);
        }
    } dialog;
    ASSERT_TRUE(Make(dialog, "dialog", Rect(0, 0, 10, 10)));
    dialog.SetModal(true);
    PlatformKey(dialog.GetHandle(), WM_KEYDOWN, VK_RETURN);
    PlatformKey(dialog.GetHandle(), WM_KEYDOWN, VK_ESCAPE);
    bool run = true;
    EXPECT_EQ(RunModalLoop(&dialog, &run, nullptr, nullptr), 2);
    EXPECT_EQ(dialog.Count(SM_OK), 1);
    EXPECT_EQ(dialog.Count(SM_CANCEL), 1);
    EXPECT_EQ(dialog.log->at(dialog.log->size() - 1).message, WM_KEYDOWN)
        << "the key is dispatched after the notice";
}

bool takeNothing(HWND, SMessage*) {
    return false;
}

TEST_F(Loop, ADestroyedDialogHandleDoesNoHarm) {
    RecordingWnd dialog, other;
    ASSERT_TRUE(Make(dialog, "dialog", Rect(0, 0, 10, 10), 0, 0));
    ASSERT_TRUE(Make(other, "other", Rect(0, 0, 10, 10), 0, 0));
    SetDialogMessageHook(takeNothing);
    EXPECT_EQ(AddDialogHandle(dialog.GetHandle()), 0);
    EXPECT_EQ(AddDialogHandle(dialog.GetHandle()), 0) << "listed once";
    dialog.Destroy();
    PostMessage(other.GetHandle(), WM_USER, 0, 0);
    PostQuitMessage(0);
    bool run = true;
    RunLoop(&run, nullptr, nullptr);
    EXPECT_EQ(other.Count(WM_USER), 1);
    SetDialogMessageHook(nullptr);
}

TEST_F(Loop, WindowTimersFireOnTheFakeClockAndStopWithTheWindow) {
    SHeadlessPlatform::UseFakeClock(true);
    RecordingWnd wnd;
    ASSERT_TRUE(Make(wnd, "w", Rect(0, 0, 10, 10), 0, 0));
    ASSERT_TRUE(SetTimer(wnd.GetHandle(), 150, 20));
    SHeadlessPlatform::DispatchPending();
    EXPECT_EQ(wnd.Count(WM_TIMER), 0);
    SHeadlessPlatform::AdvanceClock(20);
    SHeadlessPlatform::DispatchPending();
    EXPECT_EQ(wnd.Count(WM_TIMER), 1);
    SHeadlessPlatform::AdvanceClock(45);
    SHeadlessPlatform::DispatchPending();
    EXPECT_EQ(wnd.Count(WM_TIMER), 2) << "a late timer fires once, not once per period";
    HWND handle = wnd.GetHandle();
    wnd.Destroy();
    SHeadlessPlatform::AdvanceClock(100);
    EXPECT_EQ(SHeadlessPlatform::DispatchPending(), 0);
    EXPECT_FALSE(SetTimer(handle, 1, 10));
}

TEST_F(Loop, FlushInputDropsOnlyInput) {
    RecordingWnd wnd;
    ASSERT_TRUE(Make(wnd, "w", Rect(0, 0, 50, 50)));
    PlatformMouse(wnd.GetHandle(), WM_LBUTTONDOWN, 5, 5, MK_LBUTTON);
    PlatformKey(wnd.GetHandle(), WM_KEYDOWN, 'A');
    PostMessage(wnd.GetHandle(), WM_USER, 0, 0);
    FlushInput();
    SHeadlessPlatform::DispatchPending();
    EXPECT_EQ(wnd.Count(WM_LBUTTONDOWN), 0);
    EXPECT_EQ(wnd.Count(WM_KEYDOWN), 0);
    EXPECT_EQ(wnd.Count(WM_USER), 1);
}

TEST_F(Loop, CommandLineArgumentsCountFromTheFirstAfterTheProgram) {
    SStringArray arguments;
    arguments.Add("/HIDE");
    arguments.Add("\"/music/A folder/\"");
    SetCommandLineArguments(&arguments);
    EXPECT_EQ(GetCommandLineArgument(0, true), "/HIDE");
    EXPECT_EQ(GetCommandLineArgument(1, true), "/music/A folder/");
    EXPECT_EQ(GetCommandLineArgument(1, false), "\"/music/A folder/\"");
    EXPECT_TRUE(GetCommandLineArgument(2, true).IsEmpty());
    EXPECT_TRUE(GetCommandLineArgument(-1, true).IsEmpty());
    SStringArray none;
    SetCommandLineArguments(&none);
    EXPECT_TRUE(GetCommandLineArgument(0, true).IsEmpty());
    SetCommandLineArguments(nullptr);
}

TEST_F(Loop, InstanceCountFindsThisProcessInAnyLetterCase) {
    SString path = GetProgramPath();
    ASSERT_FALSE(path.IsEmpty());
    // Other processes of this test program come and go while ctest runs
    // tests side by side, so each count is only known to include this one.
    EXPECT_GE(CountProgramInstances(nullptr), 1);
    EXPECT_GE(CountProgramInstances(path.c_str()), 1);
    EXPECT_GE(CountProgramInstances(path.Upper().c_str()), 1);
    EXPECT_EQ(CountProgramInstances("/no/such/program"), 0);
    EXPECT_EQ(GetProcessId(), static_cast<unsigned>(getpid()));
}

TEST_F(Loop, ToolkitStartGivesTheFoundationAWorkAreaAndModifiers) {
    platform->SetWorkArea(Rect(0, 30, 1000, 700));
    SRect area;
    EXPECT_TRUE(GetWorkArea(&area));
    EXPECT_EQ(area, Rect(0, 30, 1000, 700));
    platform->SetModifiers(SKeyboard::MODIFIER_CTRL);
    EXPECT_EQ(SKeyboard::GetModifiers(), SKeyboard::MODIFIER_CTRL);
    ToolkitEnd();
    EXPECT_FALSE(GetWorkArea(&area)) << "without the toolkit there is no screen";
    EXPECT_EQ(SKeyboard::GetModifiers(), 0u);
    ASSERT_TRUE(ToolkitStart(nullptr, SW_SHOW, false, false, false));
}

} // namespace
