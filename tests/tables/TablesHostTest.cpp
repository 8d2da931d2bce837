// The tables as a host application subclasses them: overrides written from the documented
// signatures, without noexcept specifiers, are the ones the tables call. And an exception
// escaping inside a table's operation, such as one thrown by a caller's callback, ends the
// process.

#include "EndsTheProcess.h"
#include "TableFiles.h"

#include "NDeviceInfoRecovery.h"
#include "PRuntimeCpid.h"
#include "PRuntimeCrashCode.h"
#include "PRuntimePluginMapping.h"
#include "PRuntimeRestoreError.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

using pallix::test::sampleTable;

namespace {

// Sees every load and every row that a load appends.
class RecordingCpid : public PRuntimeCpid {
public:
    bool format(const NString& path) override {
        ++formats;
        return PRuntimeCpid::format(path);
    }
    void append(const PRuntimeInfoCpid& row) override {
        modes.emplace_back(row.mode().data());
        PRuntimeCpid::append(row);
    }

    int formats = 0;
    std::vector<std::string> modes;
};

// Answers every key with a row of its own, whatever the file says.
class FixedCrashCode : public PRuntimeCrashCode {
public:
    void find(const NString& key,
              const std::function<void(const PRuntimeInfoCrash&)>& callback) const override {
        callback(PRuntimeInfoCrash(key, "Answered by the host.", "None."));
    }
};

NDeviceInfoRecovery device(unsigned int cpid, unsigned int bdid) {
    NDeviceInfoRecovery recovery;
    recovery.setCpid(cpid);
    recovery.setBdid(bdid);
    return recovery;
}

} // namespace

TEST(TablesHost, FormatAndTheAppendsItMakesReachTheOverrides) {
    RecordingCpid host;
    PRuntimeCpid& table = host;
    ASSERT_TRUE(table.format(NString(sampleTable("cpid.xml").c_str())));
    EXPECT_EQ(host.formats, 1);
    ASSERT_FALSE(host.modes.empty());
    // The rows the override saw are the rows the table holds, in file order.
    PRuntimeInfoCpid row;
    ASSERT_TRUE(table.find(device(0x8920, 0x00), row));
    EXPECT_EQ(host.modes.front(), std::string(row.mode().data()));
}

TEST(TablesHost, CrashLookupReachesTheOverride) {
    FixedCrashCode host;
    const PRuntimeCrashCode& table = host;
    std::string reason;
    table.find("anything", [&](const PRuntimeInfoCrash& row) { reason = row.reason().data(); });
    EXPECT_EQ(reason, "Answered by the host.");
}

TEST(TablesHost, EmptyCallbackOfCrashTraverseEndsTheProcess) {
    PRuntimeCrashCode table;
    table.append(PRuntimeInfoCrash("AMRestore", "r", "s"));
    // The wrapper's bad-call exception is raised inside the operation, which it cannot leave.
    EXPECT_EXIT(table.traverse({}), ::testing::KilledBySignal(SIGABRT), "bad_function_call");
}

TEST(TablesHost, ThrowingCallbacksEndTheProcess) {
    PRuntimeCrashCode crash;
    crash.append(PRuntimeInfoCrash("AMRestore", "r", "s"));
    EXPECT_ENDS_THE_PROCESS(crash.traverse([](const PRuntimeInfoCrash&) { throw 1; }));
    EXPECT_ENDS_THE_PROCESS(crash.find("AMRestore", [](const PRuntimeInfoCrash&) { throw 2; }));

    PRuntimeCpid cpid;
    cpid.append(PRuntimeInfoCpid("8920", "00", "iPhone 3GS", "GSM", "iPhone2,1", false));
    EXPECT_ENDS_THE_PROCESS(
        cpid.find(device(0x8920, 0x00), [](const PRuntimeInfoCpid&) { throw 3; }));

    PRuntimeRestoreError restore;
    restore.append(PRuntimeInfoRestoreError(4013, "d", "s"));
    EXPECT_ENDS_THE_PROCESS(restore.find(4013, [](const PRuntimeInfoRestoreError&) { throw 4; }));
}

TEST(TablesHost, ThrowingMappingCallbackEndsTheProcess) {
    PRuntimePluginMapping mapping;
    ASSERT_TRUE(mapping.format(NString(sampleTable("plugin-mapping.xml").c_str())));
    NString plugin;
    ASSERT_TRUE(mapping.find("15.0", plugin));
    EXPECT_ENDS_THE_PROCESS(mapping.find("15.0", [](const NString&) { throw 5; }));
}
