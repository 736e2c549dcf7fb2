// Anchoring: the arithmetic of each bit when the parent grows.
#include "toolkit_fixture.h"

namespace {

struct AnchorCase {
    unsigned bits;
    SRect expected; // the child's rectangle after the parent grew by 40 x 20
};

class Anchoring : public ToolkitTest, public ::testing::WithParamInterface<AnchorCase> {};

TEST_P(Anchoring, ParentGrowthMovesTheEdgesTheBitsName) {
    RecordingWnd top, child;
    ASSERT_TRUE(Make(top, "top", Rect(0, 0, 200, 100)));
    ASSERT_TRUE(Make(child, "child", Rect(10, 10, 50, 30), top.GetHandle()));
    child.SetAnchor(GetParam().bits);
    top.SetSize(240, 120);
    EXPECT_EQ(child.GetRect(), GetParam().expected) << "bits " << GetParam().bits;
    EXPECT_EQ(top.Count(SM_CHILD_ANCHORED), GetParam().bits != 0 ? 1 : 0);
}

INSTANTIATE_TEST_SUITE_P(
    EachBit, Anchoring,
    ::testing::Values(AnchorCase{0, Rect(10, 10, 50, 30)},
                      AnchorCase{1, Rect(30, 10, 70, 30)},       // centre: both by dx / 2
                      AnchorCase{1 | 8, Rect(20, 10, 60, 30)},   // halved: dx / 4
                      AnchorCase{2, Rect(50, 10, 50, 30)},       // left edge alone
                      AnchorCase{2 | 4, Rect(50, 10, 90, 30)},   // both: the width stays
                      AnchorCase{4, Rect(10, 10, 90, 30)},       // right edge: grows
                      AnchorCase{4 | 8, Rect(10, 10, 70, 30)},   // halved
                      AnchorCase{2 | 8, Rect(30, 10, 50, 30)},
                      AnchorCase{16, Rect(10, 20, 50, 40)},      // centre down: dy / 2
                      AnchorCase{16 | 128, Rect(10, 15, 50, 35)},
                      AnchorCase{32, Rect(10, 30, 50, 30)},
                      AnchorCase{32 | 64, Rect(10, 30, 50, 50)},
                      AnchorCase{64, Rect(10, 10, 50, 50)},
                      AnchorCase{64 | 128, Rect(10, 10, 50, 40)},
                      AnchorCase{32 | 128, Rect(10, 20, 50, 30)},
                      AnchorCase{4 | 64, Rect(10, 10, 90, 50)}));

TEST_F(ToolkitTest, AnchoringIsMeasuredFromWhenItWasSetNotFromTheLastStep) {
    RecordingWnd top, child;
    ASSERT_TRUE(Make(top, "top", Rect(0, 0, 200, 100)));
    ASSERT_TRUE(Make(child, "child", Rect(10, 10, 50, 30), top.GetHandle()));
    child.SetAnchor(1);
    top.SetSize(203, 100);
    top.SetSize(206, 100);
    EXPECT_EQ(child.GetRect(), Rect(13, 10, 53, 30)) << "6 / 2, not 3 / 2 twice";
    top.SetSize(190, 100);
    EXPECT_EQ(child.GetRect(), Rect(5, 10, 45, 30)) << "shrinking moves back";
}

} // namespace
