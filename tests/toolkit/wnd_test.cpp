// SWnd: creation and destruction, handles, the keyboard table, clicks,
// enter and leave, hot items, drag-move, scrolling, capture and drops.
#include "toolkit/wnd.h"

#include <filesystem>

#include "support/temp_dir.h"
#include "toolkit_fixture.h"

namespace {

using WndCore = ToolkitTest;

TEST_F(WndCore, CreationSendsCreateThenShowsAndDestructionGoesParentFirst) {
    std::vector<RecordingWnd::Entry> log;
    RecordingWnd top(&log, 1), child(&log, 2), grandchild(&log, 3);
    ASSERT_TRUE(Make(top, "top", Rect(10, 10, 210, 110)));
    ASSERT_TRUE(Make(child, "child", Rect(5, 5, 105, 55), top.GetHandle()));
    ASSERT_TRUE(Make(grandchild, "grandchild", Rect(5, 5, 105, 55), child.GetHandle()));
    EXPECT_EQ(top.Seen({SM_CREATE, WM_SHOWWINDOW}),
              std::vector<unsigned>({SM_CREATE, WM_SHOWWINDOW}));
    log.clear();
    HWND childHandle = child.GetHandle();
    ASSERT_TRUE(top.Destroy());
    std::vector<std::pair<int, unsigned>> destroys;
    for (const auto& entry : log) {
        if (entry.message == WM_DESTROY) {
            destroys.emplace_back(entry.name, entry.message);
        }
    }
    EXPECT_EQ(destroys, (std::vector<std::pair<int, unsigned>>{
                            {1, WM_DESTROY}, {2, WM_DESTROY}, {3, WM_DESTROY}}));
    EXPECT_EQ(top.GetHandle(), 0u);
    EXPECT_EQ(child.GetHandle(), 0u);
    EXPECT_EQ(grandchild.GetHandle(), 0u);
    EXPECT_EQ(SWnd::FromHandle(childHandle), nullptr);
    EXPECT_FALSE(top.Destroy()) << "a second destroy has nothing to do";
}

TEST_F(WndCore, RefusedCreateLeavesNoHandleAndNoObjectInTheList) {
    RecordingWnd wnd;
    wnd.refuseCreate = true;
    SRect bounds = Rect(0, 0, 50, 50);
    EXPECT_FALSE(wnd.Create("refused", WS_VISIBLE, 0, &bounds, 0));
    EXPECT_EQ(wnd.GetHandle(), 0u);
    EXPECT_EQ(wnd.Count(WM_SHOWWINDOW), 0);
    HWND handles[16];
    int count = GetThreadTargets(handles, 16);
    for (int i = 0; i < count; ++i) {
        EXPECT_NE(SWnd::FromHandle(handles[i]), &wnd);
    }
    wnd.refuseCreate = false;
    EXPECT_TRUE(wnd.Create("again", 0, 0, &bounds, 0)) << "the object can make a new window";
}

TEST_F(WndCore, CreateFailsWithAHandleOrAnUnknownParent) {
    RecordingWnd wnd, other;
    ASSERT_TRUE(Make(wnd, "one", Rect(0, 0, 50, 50), 0, 0));
    EXPECT_FALSE(Make(wnd, "two", Rect(0, 0, 50, 50), 0, 0));
    EXPECT_FALSE(Make(other, "orphan", Rect(0, 0, 50, 50), 0x7F000001u, 0));
}

TEST_F(WndCore, UnknownHandlesTakeTheDefaultPath) {
    EXPECT_EQ(SWnd::FromHandle(0), nullptr);
    EXPECT_EQ(SWnd::FromHandle(0x05ABCDEFu), nullptr);
    EXPECT_EQ(SWndProc(0x05ABCDEFu, WM_ERASEBKGND, 0, 0), 1) << "the default procedure answers";
    EXPECT_EQ(SendMessage(0x05ABCDEFu, WM_USER, 0, 0), 0);
    SWnd wnd;
    EXPECT_EQ(wnd.GetClientRect(), SRect());
    EXPECT_TRUE(wnd.GetText().IsEmpty());
    EXPECT_FALSE(wnd.Close());
}

TEST_F(WndCore, CloseDestroysByDefault) {
    RecordingWnd wnd;
    ASSERT_TRUE(Make(wnd, "closing", Rect(0, 0, 50, 50), 0, 0));
    EXPECT_TRUE(wnd.Close());
    EXPECT_EQ(wnd.GetHandle(), 0u);
}

class ShortcutWnd : public RecordingWnd {
public:
    std::vector<int> calls;
    void OnUndo() override { calls.push_back(4); }
    void OnCut() override { calls.push_back(5); }
    void OnCopy() override { calls.push_back(6); }
    void OnPaste() override { calls.push_back(7); }
    void OnDelete() override { calls.push_back(8); }
    void OnSelectAll() override { calls.push_back(9); }
    void OnFind() override { calls.push_back(10); }
    void OnReplace() override { calls.push_back(11); }
    void OnGoTo() override { calls.push_back(12); }
    void OnPrint() override { calls.push_back(13); }
    void OnEscape() override { calls.push_back(14); }
    void OnNew() override { calls.push_back(15); }
    void OnOpen() override { calls.push_back(16); }
    void OnSave() override { calls.push_back(17); }
    void OnSaveAs() override { calls.push_back(18); }
};

TEST_F(WndCore, KeyboardTableCallsEachSlotOnlyWhenItsMaskBitIsSet) {
    struct Row {
        unsigned key;
        unsigned modifiers;
        int slot;
        unsigned bit;
    };
    const unsigned C = SKeyboard::MODIFIER_CTRL, S = SKeyboard::MODIFIER_SHIFT;
    const Row rows[] = {
        {'Z', C, 4, 1},       {'X', C, 5, 2},      {'C', C, 6, 4},        {'V', C, 7, 8},
        {VK_DELETE, 0, 8, 16}, {'A', C, 9, 32},    {'F', C, 10, 64},      {'H', C, 11, 128},
        {'G', C, 12, 256},    {'P', C, 13, 512},   {VK_ESCAPE, 0, 14, 1024}, {'N', C, 15, 2048},
        {'O', C, 16, 4096},   {'S', C, 17, 8192},  {'S', C | S, 18, 16384},
    };
    ShortcutWnd wnd;
    ASSERT_TRUE(Make(wnd, "keys", Rect(0, 0, 100, 100)));
    for (const Row& row : rows) {
        wnd.calls.clear();
        wnd.SetShortcuts(true, 0x7FFF);
        platform->Key(wnd.GetHandle(), row.key, row.modifiers);
        EXPECT_EQ(wnd.calls, std::vector<int>({row.slot})) << "key " << row.key;
        wnd.calls.clear();
        wnd.SetShortcuts(true, 0x7FFF & ~row.bit);
        platform->Key(wnd.GetHandle(), row.key, row.modifiers);
        EXPECT_TRUE(wnd.calls.empty()) << "key " << row.key << " with its bit clear";
    }
    wnd.calls.clear();
    wnd.SetShortcuts(false, 0x7FFF);
    platform->Key(wnd.GetHandle(), 'Z', C);
    EXPECT_TRUE(wnd.calls.empty()) << "shortcuts disabled";
    wnd.SetShortcuts(true, 0x7FFF);
    platform->Key(wnd.GetHandle(), 'Z', 0);
    EXPECT_TRUE(wnd.calls.empty()) << "Z without Ctrl is no shortcut";
}

TEST_F(WndCore, KeysOfAChildReachTheTopWindowAsSmKey) {
    RecordingWnd top, child;
    ASSERT_TRUE(Make(top, "top", Rect(0, 0, 100, 100)));
    ASSERT_TRUE(Make(child, "child", Rect(0, 0, 100, 100), top.GetHandle()));
    SetFocus(child.GetHandle());
    platform->Key(top.GetHandle(), 'Q');
    EXPECT_EQ(top.Count(SM_KEY), 1);
    EXPECT_EQ(child.Count(WM_KEYDOWN), 1);
}

TEST_F(WndCore, TabMovesFocusWithinTheTabGroup) {
    RecordingWnd top, first, second;
    ASSERT_TRUE(Make(top, "top", Rect(0, 0, 100, 100)));
    ASSERT_TRUE(Make(first, "1", Rect(0, 0, 100, 100), top.GetHandle()));
    ASSERT_TRUE(Make(second, "2", Rect(0, 0, 100, 100), top.GetHandle()));
    first.SetTabOrder(0, 0);
    second.SetTabOrder(0, 1);
    SetFocus(first.GetHandle());
    platform->Key(top.GetHandle(), VK_TAB);
    EXPECT_EQ(GetFocus(), second.GetHandle());
    platform->Key(top.GetHandle(), VK_TAB);
    EXPECT_EQ(GetFocus(), first.GetHandle()) << "the order wraps";
}

class ClickTest : public ToolkitTest {
protected:
    void SetUp() override {
        ToolkitTest::SetUp();
        ASSERT_TRUE(Make(top, "top", Rect(100, 100, 400, 300)));
        ASSERT_TRUE(Make(left, "left", Rect(10, 10, 110, 60), top.GetHandle()));
        ASSERT_TRUE(Make(right, "right", Rect(150, 10, 250, 60), top.GetHandle()));
    }
    RecordingWnd top, left, right;
};

TEST_F(ClickTest, ClickNeedsDownAndUpOnTheSameWindow) {
    platform->Click(top.GetHandle(), 20, 20);
    EXPECT_EQ(left.Count(SM_LEFT_CLICK), 1);
    const auto& entry = left.log->back();
    EXPECT_EQ(PointParamX(entry.lParam), 10) << "the point is in the child's client area";
    platform->Press(top.GetHandle(), 20, 20);
    platform->Release(top.GetHandle(), 160, 20);
    EXPECT_EQ(left.Count(SM_LEFT_CLICK), 1);
    EXPECT_EQ(right.Count(SM_LEFT_CLICK), 0);
    platform->Press(top.GetHandle(), 160, 20, WM_RBUTTONDOWN);
    platform->Release(top.GetHandle(), 160, 20, WM_RBUTTONUP);
    EXPECT_EQ(right.Count(SM_RIGHT_CLICK), 1);
    EXPECT_EQ(right.Count(SM_LEFT_CLICK), 0);
}

TEST_F(ClickTest, LosingFocusOrMovingWithTheButtonUpForgetsThePress) {
    platform->Press(top.GetHandle(), 20, 20);
    SetFocus(right.GetHandle());
    SetFocus(left.GetHandle());
    platform->Release(top.GetHandle(), 20, 20);
    EXPECT_EQ(left.Count(SM_LEFT_CLICK), 0);
    platform->Press(top.GetHandle(), 20, 20);
    platform->MoveMouse(top.GetHandle(), 21, 21, 0);
    PlatformMouse(top.GetHandle(), WM_LBUTTONUP, 21, 21, 0);
    SHeadlessPlatform::DispatchPending();
    EXPECT_EQ(left.Count(SM_LEFT_CLICK), 0);
}

TEST_F(ClickTest, EnterAndLeaveFollowThePointer) {
    platform->MoveMouse(top.GetHandle(), 20, 20);
    platform->MoveMouse(top.GetHandle(), 30, 20);
    EXPECT_EQ(left.Count(SM_MOUSE_ENTER), 1);
    EXPECT_EQ(left.Count(SM_MOUSE_LEAVE), 0);
    platform->MoveMouse(top.GetHandle(), 160, 20);
    EXPECT_EQ(left.Count(SM_MOUSE_LEAVE), 1);
    EXPECT_EQ(right.Count(SM_MOUSE_ENTER), 1);
    PlatformMouseLeave(top.GetHandle());
    SHeadlessPlatform::DispatchPending();
    EXPECT_EQ(right.Count(SM_MOUSE_LEAVE), 1);
}

class HotWnd : public RecordingWnd {
public:
    std::vector<std::pair<char, int>> calls;
    void OnHotEnter(int, int, int, int index) override { calls.emplace_back('E', index); }
    void OnHotMove(int, int, int, int index) override { calls.emplace_back('M', index); }
    void OnHotLeave(int, int, int, int index) override { calls.emplace_back('L', index); }
};

TEST_F(WndCore, HotItemsEnterMoveAndLeaveByIndex) {
    RecordingWnd top;
    HotWnd framed;
    ASSERT_TRUE(Make(top, "top", Rect(0, 0, 300, 300)));
    ASSERT_TRUE(Make(framed, "framed", Rect(10, 10, 110, 110), top.GetHandle(),
                     WS_VISIBLE | WS_BORDER));
    framed.SetHotItems({Rect(0, 0, 50, 1), Rect(50, 0, 100, 1)});
    auto move = [&](int x, int y) {
        SendMessage(framed.GetHandle(), WM_NCMOUSEMOVE, 0, MakePointParam(x, y));
    };
    move(20, 10);  // window point (10, 0): item 0
    move(25, 10);  // item 0 again
    move(70, 10);  // item 1
    move(70, 50);  // on no item
    SendMessage(framed.GetHandle(), WM_NCMOUSELEAVE, 0, 0);
    EXPECT_EQ(framed.calls, (std::vector<std::pair<char, int>>{
                                {'E', 0}, {'M', 0}, {'L', 0}, {'E', 1}, {'L', 1}, {'E', -1},
                                {'L', -1}}));
    EXPECT_EQ(framed.GetHotIndex(), -2);
}

TEST_F(WndCore, PointerOverAFrameGivesNonClientMessages) {
    RecordingWnd top, framed;
    ASSERT_TRUE(Make(top, "top", Rect(0, 0, 300, 300)));
    ASSERT_TRUE(Make(framed, "framed", Rect(10, 10, 110, 110), top.GetHandle(),
                     WS_VISIBLE | WS_BORDER));
    framed.SetHotItems({Rect(0, 0, 100, 100)}); // asks for the frame's leave notice
    platform->MoveMouse(top.GetHandle(), 10, 50);
    EXPECT_EQ(framed.Count(WM_NCMOUSEMOVE), 1);
    EXPECT_EQ(framed.Count(WM_MOUSEMOVE), 0);
    platform->MoveMouse(top.GetHandle(), 50, 50);
    EXPECT_EQ(framed.Count(WM_MOUSEMOVE), 1);
    EXPECT_EQ(framed.Count(WM_NCMOUSELEAVE), 1);
}

class MoveRefuser : public RecordingWnd {
public:
    bool refuse = false;
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override {
        if (message == SM_MOVE_START && refuse) {
            RecordingWnd::OnMessage(message, wParam, lParam);
            return 1;
        }
        return RecordingWnd::OnMessage(message, wParam, lParam);
    }
};

TEST_F(WndCore, DragMoveFollowsThePointerUnlessRefused) {
    RecordingWnd top;
    MoveRefuser child;
    ASSERT_TRUE(Make(top, "top", Rect(0, 0, 400, 400)));
    ASSERT_TRUE(Make(child, "mover", Rect(50, 50, 150, 100), top.GetHandle()));
    child.SetMoveByDrag(true);
    platform->Press(top.GetHandle(), 60, 60);
    EXPECT_EQ(GetCapture(), child.GetHandle());
    platform->MoveMouse(top.GetHandle(), 90, 80, MK_LBUTTON);
    EXPECT_EQ(child.GetRect(), Rect(80, 70, 180, 120));
    platform->Release(top.GetHandle(), 90, 80);
    EXPECT_EQ(GetCapture(), 0u);
    EXPECT_EQ(child.Count(SM_MOVE_END), 1);
    child.refuse = true;
    platform->Press(top.GetHandle(), 90, 80);
    platform->MoveMouse(top.GetHandle(), 200, 200, MK_LBUTTON);
    platform->Release(top.GetHandle(), 200, 200);
    EXPECT_EQ(child.GetRect(), Rect(80, 70, 180, 120));
    EXPECT_EQ(child.Count(SM_MOVE_END), 1);
}

TEST_F(WndCore, ScrollCodesStepRoundToTheGridAndClamp) {
    RecordingWnd wnd;
    ASSERT_TRUE(Make(wnd, "scroll", Rect(0, 0, 100, 100), 0, WS_VSCROLL));
    wnd.SetScrollRange(1, 0, 100);
    wnd.SetScrollSteps(1, 3, 25, 5);
    struct Step {
        unsigned code;
        int thumb;
        int expected;
    };
    const Step steps[] = {
        {SB_LINEDOWN, 0, 0},       // 3 rounds down to 0: no change
        {SB_PAGEDOWN, 0, 25},      {SB_LINEDOWN, 0, 25}, // 28 rounds to 25
        {SB_PAGEDOWN, 0, 50},      {SB_THUMBTRACK, 73, 70},
        {SB_BOTTOM, 0, 100},       {SB_PAGEDOWN, 0, 100}, // clamped
        {SB_LINEUP, 0, 95},        {SB_TOP, 0, 0},
        {SB_PAGEUP, 0, 0},
    };
    for (const Step& step : steps) {
        SendMessage(wnd.GetHandle(), WM_VSCROLL,
                    step.code | (static_cast<WPARAM>(step.thumb) << 16), 0);
        EXPECT_EQ(wnd.GetScrollPosition(1), step.expected) << "code " << step.code;
    }
    std::vector<RecordingWnd::Entry> notices;
    for (const auto& entry : *wnd.log) {
        if (entry.message == SM_VSCROLLED) {
            notices.push_back(entry);
        }
    }
    ASSERT_EQ(notices.size(), 6u) << "only changes are told";
    EXPECT_EQ(notices[0].wParam & 0xFFFF, 0u);
    EXPECT_EQ(notices[0].wParam >> 16, 25u);
    SendMessage(wnd.GetHandle(), WM_HSCROLL, SB_LINEDOWN, 0);
    EXPECT_EQ(wnd.GetScrollPosition(0), 0) << "no horizontal bar of its own";
}

class CaptureClient : public RecordingWnd {};

TEST_F(WndCore, HelperWindowForwardsCaptureMovesAndTheRelease) {
    RecordingWnd top;
    CaptureClient control;
    ASSERT_TRUE(Make(top, "top", Rect(0, 0, 300, 300)));
    ASSERT_TRUE(Make(control, "control", Rect(10, 10, 50, 50), top.GetHandle()));
    SWndApp* helper = GetHelperWindow();
    ASSERT_NE(helper, nullptr);
    helper->StartCapture(control.GetHandle(), 1);
    EXPECT_EQ(GetCapture(), helper->GetHandle());
    platform->MoveMouse(top.GetHandle(), 200, 200, MK_LBUTTON);
    EXPECT_EQ(control.Count(SM_CAPTURE_MOVE), 1);
    PlatformMouse(top.GetHandle(), WM_LBUTTONUP, 200, 200, 0);
    SHeadlessPlatform::DispatchPending();
    EXPECT_EQ(control.Count(SM_CAPTURE_UP), 1);
    EXPECT_EQ(control.Count(SM_CAPTURE_LOST), 0);
    EXPECT_EQ(GetCapture(), 0u);
    helper->StartCapture(control.GetHandle(), 1);
    SetCapture(top.GetHandle());
    EXPECT_EQ(control.Count(SM_CAPTURE_LOST), 1) << "another window took the capture";
}

class DropWnd : public RecordingWnd {
public:
    std::vector<std::string> files;
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override {
        if (message == SM_DROP_FILES) {
            auto* list = reinterpret_cast<SStringArray*>(wParam);
            for (int i = 0; i < list->GetCount(); ++i) {
                files.push_back(list->GetText(i).c_str());
            }
        }
        return RecordingWnd::OnMessage(message, wParam, lParam);
    }
};

TEST_F(WndCore, DroppedFoldersEndInASeparatorAndGoToTheAcceptingWindow) {
    TempDir dir;
    std::string file = dir.Write("song.mp3", "x");
    std::string folder = dir.MakeFolder("Album");
    DropWnd top;
    RecordingWnd child;
    SRect bounds = Rect(0, 0, 200, 200);
    ASSERT_TRUE(top.Create("top", WS_VISIBLE, WS_EX_ACCEPTFILES, &bounds, 0));
    ASSERT_TRUE(Make(child, "child", Rect(10, 10, 100, 100), top.GetHandle()));
    SStringArray dropped;
    dropped.Add(file.c_str());
    dropped.Add(folder.c_str());
    PlatformDropFiles(top.GetHandle(), 20, 20, &dropped);
    EXPECT_EQ(top.files, (std::vector<std::string>{file, folder + "/"}));
}

TEST_F(WndCore, CaretWaitsForTheFocus) {
    RecordingWnd wnd;
    ASSERT_TRUE(Make(wnd, "caret", Rect(0, 0, 100, 100)));
    SetFocus(0);
    wnd.SetCaret(12, 2, 5, 5, true);
    EXPECT_FALSE(wnd.IsCaretShown());
    SetFocus(wnd.GetHandle());
    EXPECT_TRUE(wnd.IsCaretShown());
    SetFocus(0);
    EXPECT_FALSE(wnd.IsCaretShown());
}

TEST_F(WndCore, ChildrenAreFoundByTypeAndSiblingsExcludeThemselves) {
    RecordingWnd top, a, b, c;
    ASSERT_TRUE(Make(top, "top", Rect(0, 0, 100, 100)));
    ASSERT_TRUE(Make(a, "a", Rect(0, 0, 100, 100), top.GetHandle()));
    ASSERT_TRUE(Make(b, "b", Rect(0, 0, 100, 100), top.GetHandle()));
    ASSERT_TRUE(Make(c, "c", Rect(0, 0, 100, 100), a.GetHandle()));
    b.SetType(2);
    c.SetType(2);
    SArray<SWnd*> found;
    EXPECT_EQ(top.GetChildren(&found, nullptr, false, -1), 2);
    EXPECT_EQ(top.GetChildren(nullptr, nullptr, true, -1), 3);
    EXPECT_EQ(top.GetChildren(nullptr, nullptr, true, 2), 2);
    SArray<SWnd*> exclude;
    exclude.Add(&b);
    EXPECT_EQ(top.GetChildren(nullptr, &exclude, true, 2), 1);
    EXPECT_EQ(a.GetSiblings(nullptr), 1);
    SArray<SWnd*> orphans;
    EXPECT_EQ(top.GetOrphans(&orphans), 1) << "the hidden helper window does not count";
}

class DataWnd : public RecordingWnd {
public:
    std::vector<std::pair<uint32_t, std::vector<uint8_t>>> ready;
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override {
        if (message == SM_DATA_READY) {
            auto* block = reinterpret_cast<SDataBlock*>(wParam);
            ready.emplace_back(block->value, block->bytes);
        }
        return RecordingWnd::OnMessage(message, wParam, lParam);
    }
};

TEST_F(WndCore, DataBlocksTakeTheFirstFreeRowAndArriveWhenFinished) {
    DataWnd wnd;
    ASSERT_TRUE(Make(wnd, "data", Rect(0, 0, 10, 10), 0, 0));
    HWND hwnd = wnd.GetHandle();
    EXPECT_EQ(SendMessage(hwnd, SM_DATA_ALLOC, 9, 5), 1);
    EXPECT_EQ(SendMessage(hwnd, SM_DATA_ALLOC, 9, 8), 2);
    EXPECT_EQ(SendMessage(hwnd, SM_DATA_SET_WORD, 1, 0x11223344), 1);
    EXPECT_EQ(SendMessage(hwnd, SM_DATA_FINISH, 1, 42), 1);
    ASSERT_EQ(wnd.ready.size(), 1u);
    EXPECT_EQ(wnd.ready[0].first, 42u);
    EXPECT_EQ(wnd.ready[0].second.size(), 8u + 16u) << "5 pads to 8";
    EXPECT_EQ(wnd.ready[0].second[0], 0x11);
    EXPECT_EQ(wnd.ready[0].second[3], 0x44);
    EXPECT_EQ(SendMessage(hwnd, SM_DATA_ALLOC, 9, 0), 1) << "row 1 is free again";
    EXPECT_EQ(SendMessage(hwnd, SM_DATA_FINISH, 2, 0), 1);
    EXPECT_EQ(wnd.ready[1].second.size(), 12u + 16u) << "a multiple of 4 gets 4 more";
    EXPECT_EQ(SendMessage(hwnd, SM_DATA_FINISH, 2, 0), 0) << "finished rows are gone";
    EXPECT_EQ(SendMessage(hwnd, SM_DATA_SET_WORD, 0, 0), 0);
    EXPECT_EQ(SendMessage(hwnd, SM_DATA_SET_WORD, 99, 0), 0);
}

int classCalls = 0;
LRESULT CountingClass(HWND hwnd, unsigned message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_USER) {
        ++classCalls;
        return 77;
    }
    return DefWindowProc(hwnd, message, wParam, lParam);
}

TEST_F(WndCore, ControlOfARegisteredClassEndsInItsClassProcedure) {
    RecordingWnd top, control;
    SRect bounds = Rect(0, 0, 100, 100);
    ASSERT_TRUE(top.Create("top", WS_VISIBLE, 0, &bounds, 0));
    EXPECT_FALSE(control.CreateControl("NoSuchClass", "", WS_VISIBLE, 0, &bounds, &top, 5));
    ASSERT_TRUE(RegisterWindowClass("CountingClass", CountingClass));
    ASSERT_TRUE(control.CreateControl("CountingClass", "", WS_VISIBLE, 0, &bounds, &top, 5));
    EXPECT_EQ(control.GetId(), 5u);
    classCalls = 0;
    EXPECT_EQ(SendMessage(control.GetHandle(), WM_USER, 0, 0), 77);
    EXPECT_EQ(classCalls, 1);
    EXPECT_EQ(control.Count(WM_USER), 1) << "the object saw it first";
}

} // namespace
