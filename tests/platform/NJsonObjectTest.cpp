#include "NJsonObject.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

NByteArray text(const std::string& value) {
    return NByteArray(value);
}

std::vector<std::string> namesOf(const NJsonObject& object) {
    std::vector<std::string> names;
    object.traverse([&](const NString& name) { names.push_back(name.toStdString()); });
    return names;
}

} // namespace

TEST(NJsonObject, EmptyObjectExists) {
    const NJsonObject object;
    EXPECT_TRUE(object.exist());
    EXPECT_EQ(object.size(), 0u);
    EXPECT_EQ(object.toString(), NString("{}"));
}

TEST(NJsonObject, OnlyAnObjectTextGivesAnExistingObject) {
    EXPECT_TRUE(NJsonObject(text("{\"a\":\"b\"}")).exist());
    EXPECT_FALSE(NJsonObject(text("[1,2]")).exist());
    EXPECT_FALSE(NJsonObject(text("\"text\"")).exist());
    EXPECT_FALSE(NJsonObject(text("{\"a\":")).exist());
    EXPECT_FALSE(NJsonObject(text("")).exist());
    EXPECT_EQ(NJsonObject(text("[")).toString(), NString("{}"));
}

TEST(NJsonObject, BytesTravelAsBase64) {
    NJsonObject object;
    const NByteArray raw("\0\x01\xfe\xff"
                         "abc",
                         7);
    object.append("SerialNumber", raw);
    EXPECT_EQ(object.toBytes("SerialNumber"), raw);
    const NJsonObject reread(NByteArray(object.toString().toStdString()));
    EXPECT_EQ(reread.toText("SerialNumber"), NString("AAH+/2FiYw=="));
    EXPECT_EQ(reread.toBytes("SerialNumber"), raw);
}

TEST(NJsonObject, BadBase64OrOtherKindsGiveNoBytes) {
    const NJsonObject object(text("{\"a\":\"***\",\"b\":5,\"c\":{}}"));
    EXPECT_TRUE(object.toBytes("a").empty());
    EXPECT_TRUE(object.toBytes("b").empty());
    EXPECT_TRUE(object.toBytes("c").empty());
    EXPECT_TRUE(object.toBytes("missing").empty());
    EXPECT_EQ(object.toText("b"), NString());
}

TEST(NJsonObject, NestedObjectsAndMemberOrder) {
    NJsonObject inner;
    inner.append("Model", NString("Zeta 9 — 国行"));
    NJsonObject outer;
    outer.append("00000000000000FF", inner);
    outer.append("0000000000000001", NJsonObject());
    EXPECT_EQ(namesOf(outer), (std::vector<std::string>{"00000000000000FF", "0000000000000001"}));
    EXPECT_TRUE(outer.toObject("00000000000000FF").exist());
    EXPECT_EQ(outer.toObject("00000000000000FF").toText("Model"), NString("Zeta 9 — 国行"));
    EXPECT_FALSE(outer.toObject("missing").exist());
    EXPECT_TRUE(outer.contains("0000000000000001"));
    EXPECT_FALSE(outer.contains("0000000000000002"));
}

TEST(NJsonObject, AppendingAnExistingNameReplacesItInPlace) {
    NJsonObject object;
    object.append("a", NString("1"));
    object.append("b", NString("2"));
    object.append("a", NString("3"));
    EXPECT_EQ(namesOf(object), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(object.toText("a"), NString("3"));
}

TEST(NJsonObject, CopiesAreIndependent) {
    NJsonObject first;
    first.append("a", NString("1"));
    NJsonObject second(first);
    second.append("b", NString("2"));
    EXPECT_EQ(first.size(), 1u);
    EXPECT_EQ(second.size(), 2u);
    NJsonObject moved(std::move(second));
    EXPECT_EQ(moved.size(), 2u);
    first = moved;
    EXPECT_EQ(first.size(), 2u);
}
