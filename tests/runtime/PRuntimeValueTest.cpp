#include "VirtualSlot.h"

#include "PallixRuntime.h"

#include <gtest/gtest.h>

#include <climits>

using pallix::test::virtualSlot;

namespace {

EPALLIX_RUNTIME_VALUE key(std::int32_t value) {
    return static_cast<EPALLIX_RUNTIME_VALUE>(value);
}

} // namespace

TEST(RuntimeValue, FindOnMissingKeyReturnsTheCallersDefaultObject) {
    PRuntimeValue store;
    const NVariant fallback("fallback");
    const NVariant& found = store.find(key(7), fallback);
    EXPECT_EQ(&found, &fallback);
}

TEST(RuntimeValue, FindOnPresentKeyReturnsAReferenceIntoTheStore) {
    PRuntimeValue store;
    store.set(key(7), NVariant(12));
    const NVariant fallback;
    const NVariant& found = store.find(key(7), fallback);
    EXPECT_NE(&found, &fallback);
    EXPECT_EQ(found, NVariant(12));
    // The same entry is found again: the reference points into the store.
    EXPECT_EQ(&store.find(key(7), fallback), &found);
}

TEST(RuntimeValue, SetTwiceKeepsOneEntryWithTheSecondValue) {
    PRuntimeValue store;
    store.set(key(3), NVariant("first"));
    store.set(key(3), NVariant("second"));
    const NVariant fallback;
    EXPECT_EQ(store.find(key(3), fallback), NVariant("second"));
    EXPECT_EQ(store.take(key(3), fallback), NVariant("second"));
    // One entry only: after taking it, the key is absent.
    EXPECT_EQ(&store.find(key(3), fallback), &fallback);
}

TEST(RuntimeValue, TakeReturnsTheValueOnceThenTheDefault) {
    PRuntimeValue store;
    store.set(key(1), NVariant(3.5));
    const NVariant fallback(false);
    EXPECT_EQ(store.take(key(1), fallback), NVariant(3.5));
    EXPECT_EQ(store.take(key(1), fallback), fallback);
}

TEST(RuntimeValue, TakeOnMissingKeyChangesNothing) {
    PRuntimeValue store;
    store.set(key(2), NVariant(5));
    const NVariant fallback("none");
    EXPECT_EQ(store.take(key(9), fallback), NVariant("none"));
    EXPECT_EQ(store.find(key(2), fallback), NVariant(5));
}

TEST(RuntimeValue, RemoveErasesAndIgnoresMissingKeys) {
    PRuntimeValue store;
    store.remove(key(4));
    store.set(key(4), NVariant(1));
    store.set(key(5), NVariant(2));
    store.remove(key(4));
    const NVariant fallback;
    EXPECT_EQ(&store.find(key(4), fallback), &fallback);
    EXPECT_EQ(store.find(key(5), fallback), NVariant(2));
}

TEST(RuntimeValue, AcceptsEveryValueOfTheKeyType) {
    PRuntimeValue store;
    store.set(key(INT32_MIN), NVariant("min"));
    store.set(key(0), NVariant("zero"));
    store.set(key(INT32_MAX), NVariant("max"));
    const NVariant fallback;
    EXPECT_EQ(store.find(key(INT32_MIN), fallback), NVariant("min"));
    EXPECT_EQ(store.find(key(0), fallback), NVariant("zero"));
    EXPECT_EQ(store.find(key(INT32_MAX), fallback), NVariant("max"));
}

TEST(RuntimeValue, StoresCopiesOfEveryKindOfValue) {
    PRuntimeValue store;
    const NVariant values[] = {NVariant(),
                               NVariant(true),
                               NVariant(-3),
                               NVariant(-4000000000LL),
                               NVariant(18000000000000000000ULL),
                               NVariant(0.25),
                               NVariant("text"),
                               NVariant(NString("größe")),
                               NVariant(NByteArray("a\0b", 3))};
    std::int32_t k = 0;
    for (const NVariant& value : values) {
        store.set(key(k++), value);
    }
    k = 0;
    const NVariant fallback(12345);
    for (const NVariant& value : values) {
        EXPECT_EQ(store.find(key(k++), fallback), value);
    }
}

TEST(RuntimeValue, VirtualOperationsKeepTheirSlots) {
    EXPECT_EQ(virtualSlot(&PRuntimeValue::set), 3u);
    EXPECT_EQ(virtualSlot(&PRuntimeValue::find), 4u);
    EXPECT_EQ(virtualSlot(&PRuntimeValue::take), 5u);
    EXPECT_EQ(virtualSlot(&PRuntimeValue::remove), 6u);
}
