#include "NString.h"

#include <gtest/gtest.h>

#include <string>

TEST(NString, DefaultIsEmptyAndDoesNotExist) {
    const NString text;
    EXPECT_TRUE(text.empty());
    EXPECT_FALSE(text.exist());
    EXPECT_EQ(text.size(), 0u);
    EXPECT_STREQ(text.data(), "");
}

TEST(NString, NullPointerGivesTheEmptyText) {
    const NString text(static_cast<const char*>(nullptr));
    EXPECT_TRUE(text.empty());
    EXPECT_EQ(NString(nullptr, 4), NString());
}

TEST(NString, KeepsUtf8BytesAsGiven) {
    const NString text("Grüße 你好");
    EXPECT_EQ(text.size(), std::string("Grüße 你好").size());
    EXPECT_TRUE(text.exist());
    EXPECT_EQ(text, NString(std::string("Grüße 你好")));
}

TEST(NString, SizedConstructionKeepsEmbeddedNul) {
    const NString text("a\0b", 3);
    EXPECT_EQ(text.size(), 3u);
    EXPECT_NE(text, NString("a"));
}

TEST(NString, FormatsLikePrintf) {
    EXPECT_EQ(NString::format("%016llX", 0xABCDEFull), NString("0000000000ABCDEF"));
    EXPECT_EQ(NString::format("%04X/%02X", 0x8101u, 0x4u), NString("8101/04"));
    EXPECT_EQ(NString::format("%s-%d", "x", -3), NString("x--3"));
    EXPECT_EQ(NString::format("%s", ""), NString());
}

TEST(NString, FormatsLongTexts) {
    const std::string longText(5000, 'q');
    EXPECT_EQ(NString::format("<%s>", longText.c_str()).size(), 5002u);
}

TEST(NString, ComparesByteWiseWhichOrdersByCodePoint) {
    EXPECT_TRUE(NString("a") < NString("b"));
    EXPECT_TRUE(NString("Z") < NString("a"));
    EXPECT_TRUE(NString("z") < NString("é"));
    EXPECT_TRUE(NString("é") < NString("你"));
    EXPECT_FALSE(NString("a") < NString("a"));
    EXPECT_TRUE(NString("abc") == "abc");
    EXPECT_TRUE(NString("abc") != "abd");
}

TEST(NString, Concatenates) {
    EXPECT_EQ(NString("ab") + NString("cd"), NString("abcd"));
    EXPECT_EQ(NString("ab") + "cd", NString("abcd"));
    EXPECT_EQ("ab" + NString("cd"), NString("abcd"));
    NString text("x");
    text += "y";
    text += NString("z");
    text += static_cast<const char*>(nullptr);
    EXPECT_EQ(text, NString("xyz"));
}

TEST(NString, StartsContainsEndsCaseSensitive) {
    const NString text("AMRestore failed");
    EXPECT_TRUE(text.startsWith("AMRe"));
    EXPECT_FALSE(text.startsWith("amre"));
    EXPECT_TRUE(text.contains("Restore"));
    EXPECT_FALSE(text.contains("restore"));
    EXPECT_TRUE(text.endsWith("failed"));
    EXPECT_FALSE(text.endsWith("FAILED"));
    EXPECT_TRUE(text.startsWith(""));
    EXPECT_TRUE(text.contains(""));
    EXPECT_TRUE(text.endsWith(""));
    EXPECT_FALSE(NString("ab").endsWith("abc"));
    EXPECT_FALSE(NString("ab").startsWith("abc"));
}

TEST(NString, CaseInsensitiveFormsFoldLatinGreekAndCyrillic) {
    EXPECT_TRUE(NString("AMRestore").contains("amrESTORE", NString::CaseInsensitive));
    EXPECT_TRUE(NString("ÄÖÜ-Straße").startsWith("äöü", NString::CaseInsensitive));
    EXPECT_TRUE(NString("ΑΒΓ").endsWith("βγ", NString::CaseInsensitive));
    EXPECT_TRUE(NString("ОШИБКА восстановления").contains("ошибка", NString::CaseInsensitive));
    EXPECT_FALSE(NString("abc").contains("abd", NString::CaseInsensitive));
}

TEST(NString, FoldCaseKeepsOtherScriptsAndInvalidBytes) {
    EXPECT_EQ(NString("你好ABC").foldCase(), NString("你好abc"));
    const NString invalid("\xff\xfe"
                          "A",
                          3);
    EXPECT_EQ(invalid.foldCase(), NString("\xff\xfe"
                                          "a",
                                          3));
    EXPECT_EQ(NString("ÉCOLE").foldCase(), NString("école"));
}
