// SValue: what Assign carries over and what the readers see after the type
// changes.
#include "foundation/value.h"

#include <gtest/gtest.h>

TEST(Value, AssignCopiesTheLiveMemberButNotTheNames) {
    SValue source;
    source.name = "source";
    source.text2 = "second";
    source.SetInt(7);
    source.SetText("live");
    SValue target;
    target.name = "target";
    target.SetInt(-5);
    target.Assign(source);
    EXPECT_EQ(target.GetType(), SValue::TYPE_TEXT);
    EXPECT_EQ(target.GetText(), "live");
    EXPECT_EQ(target.GetInt(), -5) << "only the live member is copied";
    EXPECT_EQ(target.name, "target");
    EXPECT_TRUE(target.text2.IsEmpty());
}

TEST(Value, AssignCarriesEachType) {
    SValue real;
    real.SetReal(2.5);
    SValue wide;
    wide.SetWide(u"\u00e9t\u00e9");
    SValue big;
    big.SetInt(INT64_C(1) << 40);
    SValue target;
    target.Assign(real);
    EXPECT_EQ(target.GetType(), SValue::TYPE_REAL);
    EXPECT_EQ(target.GetReal(), 2.5);
    target.Assign(wide);
    EXPECT_EQ(target.GetType(), SValue::TYPE_WIDE);
    EXPECT_EQ(target.GetWide().ToString(), "\xc3\xa9t\xc3\xa9");
    target.Assign(big);
    EXPECT_EQ(target.GetInt(), INT64_C(1) << 40);
    target.Assign(target);
    EXPECT_EQ(target.GetInt(), INT64_C(1) << 40);
}

TEST(Value, ReadersSeeTheMembersAsTheyStand) {
    SValue value;
    value.SetInt(42);
    value.SetText("text");
    EXPECT_EQ(value.GetType(), SValue::TYPE_TEXT);
    EXPECT_EQ(value.GetText(), "text");
    EXPECT_EQ(value.GetInt(), 42) << "no conversion between members";
    EXPECT_EQ(value.GetReal(), 0.0);
}
