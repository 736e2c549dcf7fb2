// SValue: what Assign carries over and what the readers see after the type
// changes.
#include "foundation/value.h"

#include <gtest/gtest.h>

TEST(Value, AssignCopiesTheLiveMemberButNotTheNamesAndReadersDoNotConvert) {
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
    EXPECT_EQ(target.GetInt(), -5) << "only the live member is copied, and none is converted";
    EXPECT_EQ(target.GetReal(), 0.0);
    EXPECT_EQ(source.GetInt(), 7) << "setting the text leaves the number as it stood";
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
