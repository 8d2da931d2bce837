// An exception thrown by a caller's traversal callback ends the process: the stores call their
// callbacks inside their operations, which nothing may leave by exception.

#include "EndsTheProcess.h"
#include "NotifyPortbindTestSupport.h"

#include "PRuntimeFactory.h"
#include "PRuntimeNotify.h"
#include "PRuntimePortbind.h"
#include "PRuntimeRestoreCustomFirmware.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>

using pallix::test::ConfigDirectory;

TEST(StoresException, ThrowingNotificationCallbackEndsTheProcess) {
    ConfigDirectory directory;
    PRuntimeNotify store;
    PRuntimeNotifyItem item;
    item.setTitle("Welcome");
    store.append(7, item);
    int visits = 0;
    store.traverse([&](unsigned long long, const PRuntimeNotifyItem&) { ++visits; });
    EXPECT_EQ(visits, 1);
    EXPECT_ENDS_THE_PROCESS(
        store.traverse([](unsigned long long, const PRuntimeNotifyItem&) { throw 1; }));
}

TEST(StoresException, ThrowingPortBindingCallbackEndsTheProcess) {
    ConfigDirectory directory;
    PRuntimePortbind store;
    store.append("8080", "80");
    EXPECT_ENDS_THE_PROCESS(store.traverse([](const NString&, const NString&) { throw 2; }));
}

TEST(StoresException, ThrowingFactoryCallbackEndsTheProcess) {
    ConfigDirectory directory;
    PRuntimeFactory store;
    NDeviceInfoFactory info;
    info.append("Colour", NByteArray(std::string("Black")));
    store.append(0x1234, info);
    EXPECT_ENDS_THE_PROCESS(
        store.traverse([](unsigned long long, const NDeviceInfoFactory&) { throw 3; }));
}

TEST(StoresException, ThrowingCustomFirmwareCallbackEndsTheProcess) {
    ConfigDirectory directory;
    const std::string local = directory.file("/firmware.ipsw");
    std::ofstream(local) << "firmware";
    PRuntimeRestoreCustomFirmware store;
    store.append("https://example.invalid/firmware.ipsw", NString(local.c_str()));
    NString found;
    ASSERT_TRUE(store.find("https://example.invalid/firmware.ipsw", found));
    EXPECT_ENDS_THE_PROCESS(
        store.find("https://example.invalid/firmware.ipsw", [](const NString&) { throw 4; }));
}
