#include "NByteArray.h"

#include <gtest/gtest.h>

#include <string>

TEST(NByteArray, DefaultIsEmpty) {
    const NByteArray bytes;
    EXPECT_TRUE(bytes.empty());
    EXPECT_EQ(bytes.size(), 0u);
}

TEST(NByteArray, HoldsAnyBytesIncludingNul) {
    const char raw[] = {'a', '\0', '\xff', 'b'};
    const NByteArray bytes(raw, sizeof raw);
    ASSERT_EQ(bytes.size(), 4u);
    EXPECT_EQ(bytes.data()[1], '\0');
    EXPECT_EQ(static_cast<unsigned char>(bytes.data()[2]), 0xFFu);
}

TEST(NByteArray, ComparesContent) {
    EXPECT_EQ(NByteArray("abc", 3), NByteArray(std::string("abc")));
    EXPECT_NE(NByteArray("abc", 3), NByteArray("abc", 2));
    EXPECT_NE(NByteArray("a\0", 2), NByteArray("a", 1));
}
