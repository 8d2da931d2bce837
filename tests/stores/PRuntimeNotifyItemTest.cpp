#include "VirtualSlot.h"

#include "PallixRuntime.h"

#include <gtest/gtest.h>

#include <climits>
#include <type_traits>

using pallix::test::virtualSlot;

namespace {

PRuntimeNotifyItem everyFieldSet() {
    PRuntimeNotifyItem item;
    item.setID(ULLONG_MAX);
    item.setIsSystem(true);
    item.setTitle("Firmware 17.2 is out");
    item.setURL("https://example.invalid/firmware?model=iPhone15,2&lang=en");
    item.setIsPopup(true);
    item.setTimestamp(LLONG_MIN);
    item.setUserID(42);
    item.setAlreadyRead(true);
    item.setAlreadyPopup(true);
    item.setRemove(true);
    return item;
}

void expectEveryFieldSet(const PRuntimeNotifyItem& item) {
    EXPECT_EQ(item.id(), ULLONG_MAX);
    EXPECT_TRUE(item.isSystem());
    EXPECT_EQ(item.title(), NString("Firmware 17.2 is out"));
    EXPECT_EQ(item.url(), NString("https://example.invalid/firmware?model=iPhone15,2&lang=en"));
    EXPECT_TRUE(item.isPopup());
    EXPECT_EQ(item.timestamp(), LLONG_MIN);
    EXPECT_EQ(item.userID(), 42u);
    EXPECT_TRUE(item.isAlreadyRead());
    EXPECT_TRUE(item.isAlreadyPopup());
    EXPECT_TRUE(item.isRemove());
}

} // namespace

TEST(NotifyItem, VirtualOperationsAreInTheirSlots) {
    EXPECT_EQ(virtualSlot(&PRuntimeNotifyItem::setID), 3u);
    EXPECT_EQ(virtualSlot(&PRuntimeNotifyItem::setIsSystem), 4u);
    EXPECT_EQ(virtualSlot(&PRuntimeNotifyItem::setTitle), 5u);
    EXPECT_EQ(virtualSlot(&PRuntimeNotifyItem::setURL), 6u);
    EXPECT_EQ(virtualSlot(&PRuntimeNotifyItem::setIsPopup), 7u);
    EXPECT_EQ(virtualSlot(&PRuntimeNotifyItem::setTimestamp), 8u);
    EXPECT_EQ(virtualSlot(&PRuntimeNotifyItem::setUserID), 9u);
    EXPECT_EQ(virtualSlot(&PRuntimeNotifyItem::setAlreadyRead), 10u);
    EXPECT_EQ(virtualSlot(&PRuntimeNotifyItem::setAlreadyPopup), 11u);
    EXPECT_EQ(virtualSlot(&PRuntimeNotifyItem::setRemove), 12u);
    EXPECT_EQ(virtualSlot(&PRuntimeNotifyItem::id), 13u);
    EXPECT_EQ(virtualSlot(&PRuntimeNotifyItem::isSystem), 14u);
    EXPECT_EQ(virtualSlot(&PRuntimeNotifyItem::title), 15u);
    EXPECT_EQ(virtualSlot(&PRuntimeNotifyItem::url), 16u);
    EXPECT_EQ(virtualSlot(&PRuntimeNotifyItem::isPopup), 17u);
    EXPECT_EQ(virtualSlot(&PRuntimeNotifyItem::timestamp), 18u);
    EXPECT_EQ(virtualSlot(&PRuntimeNotifyItem::userID), 19u);
    EXPECT_EQ(virtualSlot(&PRuntimeNotifyItem::isAlreadyRead), 20u);
    EXPECT_EQ(virtualSlot(&PRuntimeNotifyItem::isAlreadyPopup), 21u);
    EXPECT_EQ(virtualSlot(&PRuntimeNotifyItem::isRemove), 22u);
}

TEST(NotifyItem, IsAPolymorphicCopyableValue) {
    EXPECT_TRUE(std::has_virtual_destructor_v<PRuntimeNotifyItem>);
    EXPECT_TRUE(std::is_nothrow_copy_constructible_v<PRuntimeNotifyItem>);
    EXPECT_TRUE(std::is_nothrow_copy_assignable_v<PRuntimeNotifyItem>);
    EXPECT_TRUE(std::is_nothrow_default_constructible_v<PRuntimeNotifyItem>);
}

TEST(NotifyItem, DefaultItemHasZeroIdsEmptyTextsAndNoFlags) {
    const PRuntimeNotifyItem item;
    EXPECT_EQ(item.id(), 0u);
    EXPECT_FALSE(item.isSystem());
    EXPECT_TRUE(item.title().empty());
    EXPECT_TRUE(item.url().empty());
    EXPECT_FALSE(item.isPopup());
    EXPECT_EQ(item.timestamp(), 0);
    EXPECT_EQ(item.userID(), 0u);
    EXPECT_FALSE(item.isAlreadyRead());
    EXPECT_FALSE(item.isAlreadyPopup());
    EXPECT_FALSE(item.isRemove());
}

TEST(NotifyItem, EachSetterStoresItsOwnFieldOnly) {
    PRuntimeNotifyItem item;
    item.setAlreadyPopup(true);
    EXPECT_TRUE(item.isAlreadyPopup());
    EXPECT_FALSE(item.isAlreadyRead());
    EXPECT_FALSE(item.isPopup());
    item.setAlreadyRead(true);
    item.setAlreadyPopup(false);
    EXPECT_TRUE(item.isAlreadyRead());
    EXPECT_FALSE(item.isAlreadyPopup());
    item.setTitle("title");
    EXPECT_EQ(item.title(), NString("title"));
    EXPECT_TRUE(item.url().empty());
    item.setID(7);
    EXPECT_EQ(item.id(), 7u);
    EXPECT_EQ(item.userID(), 0u);
}

TEST(NotifyItem, SettersAndGettersKeepEveryField) {
    expectEveryFieldSet(everyFieldSet());
}

TEST(NotifyItem, CopyConstructionCopiesEveryFieldIncludingIsSystem) {
    const PRuntimeNotifyItem original = everyFieldSet();
    const PRuntimeNotifyItem copy(original);
    expectEveryFieldSet(copy);
}

TEST(NotifyItem, AssignmentCopiesEveryFieldAndLeavesTheSourceAlone) {
    PRuntimeNotifyItem source = everyFieldSet();
    PRuntimeNotifyItem target;
    target.setTitle("old");
    target = source;
    expectEveryFieldSet(target);
    target.setTitle("changed");
    target.setIsSystem(false);
    EXPECT_EQ(source.title(), NString("Firmware 17.2 is out"));
    EXPECT_TRUE(source.isSystem());
}

TEST(NotifyItem, SelfAssignmentKeepsTheItem) {
    PRuntimeNotifyItem item = everyFieldSet();
    PRuntimeNotifyItem& alias = item;
    item = alias;
    expectEveryFieldSet(item);
}

TEST(NotifyItem, GettersOfTextReturnIndependentCopies) {
    PRuntimeNotifyItem item;
    item.setURL("https://example.invalid/a");
    NString url = item.url();
    url += "/changed";
    EXPECT_EQ(item.url(), NString("https://example.invalid/a"));
}
