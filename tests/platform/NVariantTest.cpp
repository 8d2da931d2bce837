#include "NVariant.h"

#include <gtest/gtest.h>

TEST(NVariant, DefaultIsNull) {
    const NVariant value;
    EXPECT_TRUE(value.isNull());
    EXPECT_EQ(value.type(), NVariant::Null);
    EXPECT_EQ(value, NVariant());
}

TEST(NVariant, KeepsTheKindItWasBuiltFrom) {
    EXPECT_EQ(NVariant(true).type(), NVariant::Bool);
    EXPECT_EQ(NVariant(7).type(), NVariant::Int);
    EXPECT_EQ(NVariant(7LL).type(), NVariant::LongLong);
    EXPECT_EQ(NVariant(7ULL).type(), NVariant::ULongLong);
    EXPECT_EQ(NVariant(7.5).type(), NVariant::Double);
    EXPECT_EQ(NVariant("text").type(), NVariant::String);
    EXPECT_EQ(NVariant(NString("text")).type(), NVariant::String);
    EXPECT_EQ(NVariant(NByteArray("b", 1)).type(), NVariant::Bytes);
}

TEST(NVariant, EqualOnlyWithTheSameKindAndValue) {
    EXPECT_EQ(NVariant(7), NVariant(7));
    EXPECT_NE(NVariant(7), NVariant(7LL));
    EXPECT_NE(NVariant(7), NVariant(8));
    EXPECT_EQ(NVariant("a"), NVariant(NString("a")));
    EXPECT_NE(NVariant("a"), NVariant(NByteArray("a", 1)));
}

TEST(NVariant, ConvertsBetweenNumericKinds) {
    EXPECT_EQ(NVariant(3.9).toInt(), 3);
    EXPECT_EQ(NVariant(5).toDouble(), 5.0);
    EXPECT_EQ(NVariant(-1LL).toLongLong(), -1);
    EXPECT_EQ(NVariant(18446744073709551615ULL).toULongLong(), 18446744073709551615ULL);
    EXPECT_TRUE(NVariant(2).toBool());
    EXPECT_FALSE(NVariant(0).toBool(true));
}

TEST(NVariant, OtherKindsGiveTheDefault) {
    EXPECT_EQ(NVariant("12").toInt(-1), -1);
    EXPECT_EQ(NVariant().toDouble(2.5), 2.5);
    EXPECT_TRUE(NVariant().toBool(true));
    EXPECT_EQ(NVariant(12).toString(), NString());
    EXPECT_EQ(NVariant(12).toBytes(), NByteArray());
}

TEST(NVariant, TextAndBytesComeBack) {
    EXPECT_EQ(NVariant("héllo").toString(), NString("héllo"));
    EXPECT_EQ(NVariant(NByteArray("\0x", 2)).toBytes(), NByteArray("\0x", 2));
}
