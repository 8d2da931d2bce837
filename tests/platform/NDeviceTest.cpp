#include "EDEVICE_WIFI_TYPE.h"
#include "NDeviceInfoFactory.h"
#include "NDeviceInfoRecovery.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

TEST(NDeviceInfoRecovery, DefaultIsZeroAndSettersStore) {
    NDeviceInfoRecovery info;
    EXPECT_EQ(info.cpid(), 0u);
    EXPECT_EQ(info.bdid(), 0u);
    info.setCpid(0x8101);
    info.setBdid(0x14);
    EXPECT_EQ(info.cpid(), 0x8101u);
    EXPECT_EQ(info.bdid(), 0x14u);
}

TEST(NDeviceInfoFactory, EmptyDoesNotExist) {
    NDeviceInfoFactory info;
    EXPECT_FALSE(info.exist());
    info.append("SerialNumber", NByteArray("F2L", 3));
    EXPECT_TRUE(info.exist());
}

TEST(NDeviceInfoFactory, KeepsOrderAndReplacesInPlace) {
    NDeviceInfoFactory info;
    info.append("b", NByteArray("1", 1));
    info.append("a", NByteArray("2", 1));
    info.append("b", NByteArray("3", 1));
    std::vector<std::string> seen;
    info.traverse([&](const NString& key, const NByteArray& value) {
        seen.push_back(key.toStdString() + "=" + value.toStdString());
    });
    EXPECT_EQ(seen, (std::vector<std::string>{"b=3", "a=2"}));
    EXPECT_EQ(info.value("a"), NByteArray("2", 1));
    EXPECT_TRUE(info.value("c").empty());
}

TEST(EDEVICE_WIFI_TYPE, ValuesRunFromZeroToFour) {
    EXPECT_EQ(static_cast<int>(EDEVICE_WIFI_TYPE_UNKNOWN), 0);
    EXPECT_EQ(static_cast<int>(EDEVICE_WIFI_TYPE_HIGH_TEMPERATURE), 1);
    EXPECT_EQ(static_cast<int>(EDEVICE_WIFI_TYPE_MEDIUM_TEMPERATURE), 2);
    EXPECT_EQ(static_cast<int>(EDEVICE_WIFI_TYPE_LOW_TEMPERATURE), 3);
    EXPECT_EQ(static_cast<int>(EDEVICE_WIFI_TYPE_ENCRYPTED), 4);
}
