// The cloud document's classes: the order of their virtual operations and the value
// behaviour of the three item classes.

#include "VirtualSlot.h"

#include "PRuntimeCloud.h"
#include "PRuntimeCloudApplicationHash.h"
#include "PRuntimeCloudDevicePluginsItem.h"
#include "PRuntimeCloudDeviceProcessItem.h"

#include <gtest/gtest.h>

#include <type_traits>
#include <utility>

using pallix::test::virtualSlot;

TEST(CloudSlots, CloudDocumentOperationsAreInTheirSlots) {
    EXPECT_EQ(virtualSlot(&PRuntimeCloud::format), 3u);
    EXPECT_EQ(virtualSlot(&PRuntimeCloud::application_advertisement_iosapp_popup), 4u);
    EXPECT_EQ(virtualSlot(&PRuntimeCloud::application_advertisement_iosapp_auto_install), 5u);
    EXPECT_EQ(virtualSlot(&PRuntimeCloud::applet_verify_guide_status), 6u);
    EXPECT_EQ(virtualSlot(&PRuntimeCloud::applet_verify_guide_pixmap), 7u);
    EXPECT_EQ(virtualSlot(&PRuntimeCloud::application_hash_cpid), 8u);
    EXPECT_EQ(virtualSlot(&PRuntimeCloud::application_hash_crash_code), 9u);
    EXPECT_EQ(virtualSlot(&PRuntimeCloud::application_hash_restore_code), 10u);
    EXPECT_EQ(virtualSlot(&PRuntimeCloud::application_hash_restore_version), 11u);
    EXPECT_EQ(virtualSlot(&PRuntimeCloud::application_hash_developer_plugin_mapping), 12u);
    EXPECT_EQ(virtualSlot(&PRuntimeCloud::cooperate_hsb_sell_status), 13u);
    EXPECT_EQ(virtualSlot(&PRuntimeCloud::cooperate_hsb_sell_text_device_info), 14u);
    EXPECT_EQ(virtualSlot(&PRuntimeCloud::cooperate_hsb_sell_text_device_verify), 15u);
    EXPECT_EQ(virtualSlot(&PRuntimeCloud::cooperate_hsb_device_authorize_ipaddress), 16u);
    EXPECT_EQ(virtualSlot(&PRuntimeCloud::cooperate_hsb_device_authorize_ipport), 17u);
    EXPECT_EQ(virtualSlot(&PRuntimeCloud::device_plugins_find), 18u);
    EXPECT_EQ(virtualSlot(&PRuntimeCloud::device_plugins_find_by_rvq), 19u);
    EXPECT_EQ(virtualSlot(&PRuntimeCloud::device_drive_version), 20u);
    EXPECT_EQ(virtualSlot(&PRuntimeCloud::device_drive_itunes_32), 21u);
    EXPECT_EQ(virtualSlot(&PRuntimeCloud::device_drive_itunes_64), 22u);
    EXPECT_EQ(virtualSlot(&PRuntimeCloud::device_process_plugins_find), 23u);
    EXPECT_EQ(virtualSlot(&PRuntimeCloud::device_process_application_find), 24u);
    EXPECT_EQ(virtualSlot(&PRuntimeCloud::version), 25u);
    EXPECT_TRUE(std::has_virtual_destructor_v<PRuntimeCloud>);
}

TEST(CloudSlots, ApplicationHashAccessorsAreInTheirSlots) {
    EXPECT_EQ(virtualSlot(&PRuntimeCloudApplicationHash::name), 3u);
    EXPECT_EQ(virtualSlot(&PRuntimeCloudApplicationHash::hash), 4u);
    EXPECT_EQ(virtualSlot(&PRuntimeCloudApplicationHash::url), 5u);
    EXPECT_TRUE(std::has_virtual_destructor_v<PRuntimeCloudApplicationHash>);
}

TEST(CloudSlots, DevicePluginsItemAccessorsAreInTheirSlots) {
    EXPECT_EQ(virtualSlot(&PRuntimeCloudDevicePluginsItem::version), 3u);
    EXPECT_EQ(virtualSlot(&PRuntimeCloudDevicePluginsItem::url), 4u);
    EXPECT_EQ(virtualSlot(&PRuntimeCloudDevicePluginsItem::hash), 5u);
    EXPECT_TRUE(std::has_virtual_destructor_v<PRuntimeCloudDevicePluginsItem>);
}

TEST(CloudSlots, DeviceProcessItemAccessorsAreInTheirSlots) {
    EXPECT_EQ(virtualSlot(&PRuntimeCloudDeviceProcessItem::startsWith), 3u);
    EXPECT_EQ(virtualSlot(&PRuntimeCloudDeviceProcessItem::contains), 4u);
    EXPECT_EQ(virtualSlot(&PRuntimeCloudDeviceProcessItem::endsWith), 5u);
    EXPECT_EQ(virtualSlot(&PRuntimeCloudDeviceProcessItem::name), 6u);
    EXPECT_TRUE(std::has_virtual_destructor_v<PRuntimeCloudDeviceProcessItem>);
}

TEST(CloudSlots, CloudDocumentIsNotCopyable) {
    EXPECT_FALSE(std::is_copy_constructible_v<PRuntimeCloud>);
    EXPECT_FALSE(std::is_copy_assignable_v<PRuntimeCloud>);
    EXPECT_TRUE(std::is_nothrow_default_constructible_v<PRuntimeCloud>);
}

TEST(CloudItems, DefaultItemsHoldEmptyText) {
    const PRuntimeCloudApplicationHash hash;
    EXPECT_TRUE(hash.name().empty());
    EXPECT_TRUE(hash.hash().empty());
    EXPECT_TRUE(hash.url().empty());
    const PRuntimeCloudDevicePluginsItem plugin;
    EXPECT_TRUE(plugin.version().empty());
    EXPECT_TRUE(plugin.url().empty());
    EXPECT_TRUE(plugin.hash().empty());
    const PRuntimeCloudDeviceProcessItem rule;
    EXPECT_TRUE(rule.startsWith().empty());
    EXPECT_TRUE(rule.contains().empty());
    EXPECT_TRUE(rule.endsWith().empty());
    EXPECT_TRUE(rule.name().empty());
}

TEST(CloudItems, ApplicationHashIsACopyableValue) {
    const PRuntimeCloudApplicationHash original("CPID", "0123", "https://x/cpid.xml");
    EXPECT_EQ(original.name(), "CPID");
    EXPECT_EQ(original.hash(), "0123");
    EXPECT_EQ(original.url(), "https://x/cpid.xml");
    const PRuntimeCloudApplicationHash copy(original);
    EXPECT_EQ(copy.name(), "CPID");
    EXPECT_EQ(copy.hash(), "0123");
    EXPECT_EQ(copy.url(), "https://x/cpid.xml");
    PRuntimeCloudApplicationHash assigned;
    assigned = original;
    EXPECT_EQ(assigned.url(), "https://x/cpid.xml");
    PRuntimeCloudApplicationHash moved(std::move(assigned));
    EXPECT_EQ(moved.hash(), "0123");
    // Each copy owns its text.
    EXPECT_NE(&copy.name(), &original.name());
    EXPECT_EQ(&original.name(), &original.name());
}

TEST(CloudItems, DevicePluginsItemIsACopyableValue) {
    const PRuntimeCloudDevicePluginsItem original("17.0", "https://x/17.zip", "abcd");
    EXPECT_EQ(original.version(), "17.0");
    EXPECT_EQ(original.url(), "https://x/17.zip");
    EXPECT_EQ(original.hash(), "abcd");
    PRuntimeCloudDevicePluginsItem assigned("1", "2", "3");
    assigned = original;
    EXPECT_EQ(assigned.version(), "17.0");
    EXPECT_EQ(assigned.url(), "https://x/17.zip");
    EXPECT_EQ(assigned.hash(), "abcd");
    PRuntimeCloudDevicePluginsItem target;
    target = std::move(assigned);
    EXPECT_EQ(target.version(), "17.0");
}

TEST(CloudItems, DeviceProcessItemIsACopyableValue) {
    const PRuntimeCloudDeviceProcessItem original("a", "b", "c", "Payload");
    EXPECT_EQ(original.startsWith(), "a");
    EXPECT_EQ(original.contains(), "b");
    EXPECT_EQ(original.endsWith(), "c");
    EXPECT_EQ(original.name(), "Payload");
    PRuntimeCloudDeviceProcessItem copy = original;
    EXPECT_EQ(copy.startsWith(), "a");
    EXPECT_EQ(copy.contains(), "b");
    EXPECT_EQ(copy.endsWith(), "c");
    EXPECT_EQ(copy.name(), "Payload");
    copy = PRuntimeCloudDeviceProcessItem();
    EXPECT_TRUE(copy.name().empty());
    EXPECT_EQ(original.name(), "Payload");
}

TEST(CloudItems, ItemsAreCopyableAndAssignable) {
    EXPECT_TRUE(std::is_copy_constructible_v<PRuntimeCloudApplicationHash>);
    EXPECT_TRUE(std::is_copy_assignable_v<PRuntimeCloudApplicationHash>);
    EXPECT_TRUE(std::is_nothrow_move_constructible_v<PRuntimeCloudApplicationHash>);
    EXPECT_TRUE(std::is_copy_constructible_v<PRuntimeCloudDevicePluginsItem>);
    EXPECT_TRUE(std::is_copy_assignable_v<PRuntimeCloudDevicePluginsItem>);
    EXPECT_TRUE(std::is_nothrow_move_constructible_v<PRuntimeCloudDevicePluginsItem>);
    EXPECT_TRUE(std::is_copy_constructible_v<PRuntimeCloudDeviceProcessItem>);
    EXPECT_TRUE(std::is_copy_assignable_v<PRuntimeCloudDeviceProcessItem>);
    EXPECT_TRUE(std::is_nothrow_move_constructible_v<PRuntimeCloudDeviceProcessItem>);
}
