// The clipboard's private blocks (SetFile, GetFile) and typed keys
// (PressKey) on the headless platform.
#include <cstring>

#include "foundation/file.h"
#include "toolkit/draw.h"
#include "toolkit_fixture.h"

namespace {

using ClipboardBlocks = ToolkitTest;

SFileMem MemoryWith(const char* text) {
    SFileMem file;
    file.Write(text, static_cast<int>(strlen(text)));
    file.Rewind();
    return file;
}

SString Content(const SFileMem& file) {
    SString text;
    text.Assign(file.GetData(), file.GetSize());
    return text;
}

TEST_F(ClipboardBlocks, BlockIsTheCountTheBytesAndAZero) {
    SFileMem source = MemoryWith("hello world");
    source.Seek(6);
    SClipboard clipboard;
    ASSERT_TRUE(clipboard.SetFile(&source, 3));
    EXPECT_EQ(source.GetPosition(), 9) << "the bytes are read from the source";
    std::vector<uint8_t> block;
    ASSERT_TRUE(platform->GetClipboardData(CLIPBOARD_BLOCK_FORMAT, &block));
    ASSERT_EQ(block.size(), 8u) << "count + 5 bytes";
    EXPECT_EQ(block[0], 3);
    EXPECT_EQ(block[1] | block[2] | block[3], 0);
    EXPECT_EQ(std::string(block.begin() + 4, block.begin() + 7), "wor");
    EXPECT_EQ(block[7], 0);
}

TEST_F(ClipboardBlocks, RoundTripWritesAtTheTargetsPosition) {
    SFileMem source = MemoryWith("0123456789");
    source.Seek(4);
    SClipboard clipboard;
    ASSERT_TRUE(clipboard.SetFile(&source, -1)) << "-1 takes all that remains";
    SFileMem target = MemoryWith("abcdefghijkl");
    target.Seek(2);
    ASSERT_TRUE(clipboard.GetFile(&target));
    EXPECT_EQ(Content(target), "ab456789ijkl");
    EXPECT_EQ(target.GetPosition(), 8);
    SFileMem again;
    ASSERT_TRUE(clipboard.GetFile(&again)) << "the block stays on the clipboard";
    EXPECT_EQ(Content(again), "456789");
}

TEST_F(ClipboardBlocks, CountBeyondWhatRemainsIsRefusedAndChangesNothing) {
    SClipboard clipboard;
    ASSERT_TRUE(clipboard.SetText("kept"));
    SFileMem source = MemoryWith("abc");
    source.Seek(1);
    EXPECT_FALSE(clipboard.SetFile(&source, 3));
    EXPECT_FALSE(clipboard.SetFile(&source, -2));
    EXPECT_FALSE(clipboard.SetFile(nullptr, 1));
    EXPECT_EQ(source.GetPosition(), 1);
    EXPECT_EQ(clipboard.GetText(), "kept");
    EXPECT_TRUE(clipboard.SetFile(&source, 2)) << "exactly what remains is fine";
}

TEST_F(ClipboardBlocks, EmptyBlockRoundTripsToNothing) {
    SFileMem source = MemoryWith("abc");
    source.SeekEnd();
    SClipboard clipboard;
    ASSERT_TRUE(clipboard.SetFile(&source, -1));
    std::vector<uint8_t> block;
    ASSERT_TRUE(platform->GetClipboardData(CLIPBOARD_BLOCK_FORMAT, &block));
    EXPECT_EQ(block.size(), 5u);
    SFileMem target = MemoryWith("xyz");
    EXPECT_TRUE(clipboard.GetFile(&target));
    EXPECT_EQ(Content(target), "xyz");
}

TEST_F(ClipboardBlocks, DamagedOrMissingBlocksGiveFalseAndWriteNothing) {
    SClipboard clipboard;
    SFileMem target = MemoryWith("xyz");
    ASSERT_TRUE(clipboard.SetText("text only"));
    EXPECT_FALSE(clipboard.GetFile(&target)) << "text is no block";
    // A count that runs past the block's end.
    ASSERT_TRUE(platform->SetClipboardData(CLIPBOARD_BLOCK_FORMAT, {9, 0, 0, 0, 'a', 'b', 0}));
    EXPECT_FALSE(clipboard.GetFile(&target));
    // Shorter than a count and its zero byte.
    ASSERT_TRUE(platform->SetClipboardData(CLIPBOARD_BLOCK_FORMAT, {0, 0, 0}));
    EXPECT_FALSE(clipboard.GetFile(&target));
    // A count with the top bit set must not wrap into a small size.
    ASSERT_TRUE(platform->SetClipboardData(CLIPBOARD_BLOCK_FORMAT, {1, 0, 0, 0x80, 'a', 0}));
    EXPECT_FALSE(clipboard.GetFile(&target));
    // Another program's format is not ours.
    ASSERT_TRUE(platform->SetClipboardData("image/png", {1, 0, 0, 0, 'a', 0}));
    EXPECT_FALSE(clipboard.GetFile(&target));
    EXPECT_FALSE(clipboard.GetFile(nullptr));
    EXPECT_EQ(Content(target), "xyz");
}

TEST_F(ClipboardBlocks, TextAndBlockReplaceEachOther) {
    SClipboard clipboard;
    SFileMem source = MemoryWith("data");
    ASSERT_TRUE(clipboard.SetFile(&source, -1));
    EXPECT_EQ(clipboard.GetText(), "") << "the block emptied the text";
    ASSERT_TRUE(clipboard.SetText("words"));
    SFileMem target;
    EXPECT_FALSE(clipboard.GetFile(&target)) << "the text emptied the block";
    EXPECT_EQ(clipboard.GetText(), "words");
}

using TypedKeys = ToolkitTest;

TEST_F(TypedKeys, PressKeyReachesTheFocusWindowDownThenUpOrNothingWithoutFocus) {
    RecordingWnd top, child;
    ASSERT_TRUE(Make(top, "top", Rect(0, 0, 200, 200)));
    ASSERT_TRUE(Make(child, "child", Rect(10, 10, 50, 50), top.GetHandle()));
    SetFocus(child.GetHandle());
    EXPECT_TRUE(PressKey(0x7F));
    SHeadlessPlatform::DispatchPending();
    EXPECT_EQ(child.Seen({WM_KEYDOWN, WM_KEYUP}), (std::vector<unsigned>{WM_KEYDOWN, WM_KEYUP}));
    for (const RecordingWnd::Entry& entry : child.ownLog) {
        if (entry.message == WM_KEYDOWN || entry.message == WM_KEYUP) {
            EXPECT_EQ(entry.wParam, 0x7Fu);
        }
    }
    EXPECT_EQ(top.Count(SM_KEY), 1) << "the top window hears of the child's key";
    EXPECT_EQ(platform->GetPressedKeys(), (std::vector<unsigned>{0x7F}));
    // Without a focus window the key is typed into nothing.
    SetFocus(0);
    EXPECT_TRUE(PressKey('A'));
    SHeadlessPlatform::DispatchPending();
    EXPECT_EQ(top.Count(WM_KEYDOWN) + child.Count(WM_KEYDOWN), 1);
    EXPECT_EQ(platform->GetPressedKeys(), (std::vector<unsigned>{0x7F, 'A'}));
}

} // namespace
