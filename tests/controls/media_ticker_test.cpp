// The ticker's arithmetic: speeds, the far-edge start, whole-pixel steps
// and the wrap of each axis.
#include <gtest/gtest.h>

#include <limits>

#include "controls/media_ticker.h"

namespace {

// A 200 by 40 control with margins of 1 and a text of 300 by 16.
SMediaTicker::Frame Wide() {
    SMediaTicker::Frame frame;
    frame.clientWidth = 200;
    frame.clientHeight = 40;
    frame.left = frame.top = frame.right = frame.bottom = 1;
    frame.contentWidth = 300;
    frame.contentHeight = 16;
    return frame;
}

// Fitting text, the far edge, speeds in pixels a second and the horizontal
// wrap are checked on the control itself (media_ctrl_test.cpp).
TEST(MediaTicker, BothSpeedsZeroOrNoNumbersStopAndPutTheTextBack) {
    SMediaTicker ticker;
    ASSERT_TRUE(ticker.Start(-50, -20, false, nullptr, Wide(), 1000));
    EXPECT_EQ(ticker.GetSpeedY(), 0) << "the text is 16 high in 38: no vertical speed";
    ASSERT_TRUE(ticker.Step(1100, Wide()));
    EXPECT_FALSE(ticker.Start(0, 0, true, nullptr, Wide(), 1200));
    EXPECT_EQ(ticker.GetOffsetX(), 0);
    EXPECT_FALSE(ticker.Step(1300, Wide())) << "a stopped ticker does not move";
    double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(
        ticker.Start(nan, std::numeric_limits<double>::infinity(), true, nullptr, Wide(), 0));
}

TEST(MediaTicker, ALoopingTickerStartsAtTheFarEdgeUnlessGivenAStart) {
    SMediaTicker down, placed, still;
    ASSERT_TRUE(down.Start(0, -10, true, nullptr, Wide(), 1000));
    EXPECT_TRUE(down.vertical);
    EXPECT_EQ(down.GetOffsetY(), 38);
    EXPECT_EQ(down.GetOffsetX(), 0);
    SPoint start{-5, 3};
    ASSERT_TRUE(placed.Start(-50, 0, false, &start, Wide(), 1000));
    EXPECT_EQ(placed.GetOffsetX(), -5);
    EXPECT_EQ(placed.GetOffsetY(), 3);
    still.loop = false;
    ASSERT_TRUE(still.Start(-50, 0, false, nullptr, Wide(), 1000));
    EXPECT_EQ(still.GetOffsetX(), 0);
}

TEST(MediaTicker, StepsRepaintOnlyWhenAWholePixelIsCrossed) {
    SMediaTicker ticker;
    ticker.loop = false;
    SPoint start{0, 0};
    ASSERT_TRUE(ticker.Start(50, 0, true, &start, Wide(), 1000));
    EXPECT_FALSE(ticker.Step(1010, Wide())) << "half a pixel";
    EXPECT_TRUE(ticker.Step(1020, Wide()));
    EXPECT_EQ(ticker.GetOffsetX(), 1);
    EXPECT_FALSE(ticker.Step(1020, Wide())) << "no time passed";
    EXPECT_TRUE(ticker.Step(2020, Wide()));
    EXPECT_EQ(ticker.GetOffsetX(), 51) << "the exact offset keeps the fractions";
}

TEST(MediaTicker, AVerticalTextWrapsWhenItHasLeftUnlessItDoesNotLoop) {
    SMediaTicker down, gone, far;
    ASSERT_TRUE(down.Start(0, -1000, true, nullptr, Wide(), 0));
    ASSERT_TRUE(down.Step(53, Wide()));
    EXPECT_EQ(down.GetOffsetY(), -15) << "16 - 15 is not below the top margin";
    ASSERT_TRUE(down.Step(54, Wide()));
    EXPECT_EQ(down.GetOffsetY(), 39) << "one margin lower than it first started";

    gone.loop = far.loop = false;
    ASSERT_TRUE(gone.Start(-1000, 0, false, nullptr, Wide(), 0));
    ASSERT_TRUE(gone.Step(1000, Wide()));
    EXPECT_EQ(gone.GetOffsetX(), -1000);
    ASSERT_TRUE(far.Start(-1000000, 0, true, nullptr, Wide(), 0));
    ASSERT_TRUE(far.Step(10000000, Wide()));
    EXPECT_EQ(far.GetOffsetX(), -1000000000) << "held at the limit, far from overflow";
}

} // namespace
