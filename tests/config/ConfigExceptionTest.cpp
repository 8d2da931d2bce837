// An exception that escapes inside a configuration operation ends the process: it neither
// reaches the caller nor is swallowed half-way through the operation.

#include "AllocationProbe.h"
#include "ConfigTestSupport.h"
#include "EndsTheProcess.h"

#include <stdexcept>

using namespace pallix::test;

namespace {

class ConfigExceptionTest : public ConfigTest {
protected:
    void SetUp() override {
        ConfigTest::SetUp();
        config()->customBackupAppend("/first");
        config()->customBackupAppend("/second");
        config()->fileCollectAppend("/file", false);
        config()->virtualLocationAppend(1, 2, "here");
        config()->locationCollectAppend(3, 4, "there");
    }
};

// A host's configuration whose save fails in a way it reports by throwing.
class ThrowingSaveConfig : public PRuntimeConfig {
public:
    void save() override { throw std::runtime_error("the disk is full"); }
};

} // namespace

TEST_F(ConfigExceptionTest, TraversalsVisitEveryElementWhenTheCallbackReturns) {
    int visits = 0;
    config()->customBackupTraverse([&](const NString&) { ++visits; });
    config()->fileCollectTraverse([&](const NString&, bool) { return ++visits > 0; });
    config()->virtualLocationTraverse([&](double, double, const NString&) { ++visits; });
    config()->locationCollectTraverse([&](double, double, const NString&) { ++visits; });
    EXPECT_EQ(visits, 5);
}

TEST_F(ConfigExceptionTest, ThrowingBackupCallbackEndsTheProcess) {
    EXPECT_ENDS_THE_PROCESS(config()->customBackupTraverse([](const NString&) { throw 1; }));
}

TEST_F(ConfigExceptionTest, ThrowingFavouriteCallbackEndsTheProcess) {
    EXPECT_ENDS_THE_PROCESS(
        config()->fileCollectTraverse([](const NString&, bool) -> bool { throw 2; }));
}

TEST_F(ConfigExceptionTest, ThrowingPlaceCallbacksEndTheProcess) {
    EXPECT_ENDS_THE_PROCESS(
        config()->virtualLocationTraverse([](double, double, const NString&) { throw 3; }));
    EXPECT_ENDS_THE_PROCESS(
        config()->locationCollectTraverse([](double, double, const NString&) { throw 4; }));
}

TEST_F(ConfigExceptionTest, OverrideThatThrowsEndsTheProcessInsideTheSetter) {
    ThrowingSaveConfig host;
    EXPECT_ENDS_THE_PROCESS(host.setSettingStatus("WiFiConnect", true));
    EXPECT_ENDS_THE_PROCESS(host.customBackupAppend("/third"));
    EXPECT_ENDS_THE_PROCESS(host.release());
}

TEST_F(ConfigExceptionTest, AllocationFailureInGetSettingStatusEndsTheProcess) {
    // Without the failure the unknown name reads as false and is recorded.
    EXPECT_FALSE(config()->getSettingStatus("ANameLongEnoughToNeedMemoryOfItsOwn"));
    PRuntimeConfig* const configuration = config();
    const NString name("AnotherNameLongEnoughToNeedMemoryOfItsOwn");
    EXPECT_ENDS_THE_PROCESS({
        failAllocation(0);
        configuration->getSettingStatus(name);
    });
}

TEST_F(ConfigExceptionTest, AllocationFailureInInitializeEndsTheProcess) {
    writeCurrent(R"(<?xml version="1.0"?><Nevor><LastSkin VALUE="A skin name long enough to
        need memory of its own"/><CustomBackup><Item VALUE="/a directory long enough to need
        memory"/></CustomBackup></Nevor>)");
    PRuntimeConfig* const configuration = config();
    for (const long allowed : {0L, 3L, 10L}) {
        EXPECT_ENDS_THE_PROCESS({
            failAllocation(allowed);
            configuration->initialize();
        }) << "after "
           << allowed << " allocations";
    }
}
