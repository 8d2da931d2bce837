// A table path that leads to something other than a file (a FIFO, a link to one, a directory,
// a device) reads like a missing table, at once: format() gives false and empties the table.

#include "NonRegularFiles.h"
#include "TableFiles.h"
#include "TemporaryDirectory.h"

#include "PallixRuntime.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <functional>
#include <string>
#include <vector>

using pallix::test::BlockingAlarm;
using pallix::test::makeFifo;
using pallix::test::sampleTable;
using pallix::test::TemporaryDirectory;

namespace {

// One table: its sample, and a way to read a path into a fresh table and tell whether the
// table then holds any row.
struct Table {
    const char* name;
    const char* sample;
    // Formats `first`, then `second`, into one table; gives format()'s second result and
    // whether rows remain.
    std::function<std::pair<bool, bool>(const std::string& first, const std::string& second)>
        formatTwice;
};

template <typename Component, typename HasRows>
Table table(const char* name, const char* sample, HasRows hasRows) {
    return Table{name, sample, [hasRows](const std::string& first, const std::string& second) {
                     Component component;
                     EXPECT_TRUE(component.format(NString(first)));
                     EXPECT_TRUE(hasRows(component)) << "the sample gave no rows";
                     const bool result = component.format(NString(second));
                     return std::make_pair(result, hasRows(component));
                 }};
}

std::vector<Table> tables() {
    return {
        table<PRuntimeCpid>("cpid", "cpid.xml",
                            [](PRuntimeCpid& cpid) {
                                PRuntimeInfoCpid row;
                                return cpid.find(NDeviceInfoRecovery(0x8930, 0x06), row);
                            }),
        table<PRuntimeCrashCode>("crash", "crash.xml",
                                 [](PRuntimeCrashCode& crash) {
                                     int rows = 0;
                                     crash.traverse([&rows](const PRuntimeInfoCrash&) { ++rows; });
                                     return rows > 0;
                                 }),
        table<PRuntimeRestoreError>("restore_error", "restore-error.xml",
                                    [](PRuntimeRestoreError& errors) {
                                        bool found = false;
                                        errors.find(-35, [&found](const PRuntimeInfoRestoreError&) {
                                            found = true;
                                        });
                                        return found;
                                    }),
        table<PRuntimePluginMapping>("plugin_mapping", "plugin-mapping.xml",
                                     [](PRuntimePluginMapping& mapping) {
                                         NString version;
                                         return mapping.find(NString("13.7"), version);
                                     }),
    };
}

class TableNonRegularFiles : public ::testing::TestWithParam<Table> {
protected:
    std::pair<bool, bool> formatSampleThen(const std::string& path) const {
        BlockingAlarm alarm;
        return GetParam().formatTwice(sampleTable(GetParam().sample), path);
    }

    TemporaryDirectory directory{"pallix-tables"};
};

std::string nameOf(const ::testing::TestParamInfo<Table>& info) {
    return info.param.name;
}

} // namespace

TEST_P(TableNonRegularFiles, AFifoReadsAsAMissingTableAtOnce) {
    const std::string fifo = directory.file("table.xml");
    ASSERT_TRUE(makeFifo(fifo));
    EXPECT_EQ(formatSampleThen(fifo), std::make_pair(false, false));
}

TEST_P(TableNonRegularFiles, ALinkToAFifoReadsAsAMissingTableAtOnce) {
    const std::string fifo = directory.file("fifo");
    const std::string link = directory.file("table.xml");
    ASSERT_TRUE(makeFifo(fifo));
    ASSERT_EQ(::symlink(fifo.c_str(), link.c_str()), 0);
    EXPECT_EQ(formatSampleThen(link), std::make_pair(false, false));
}

TEST_P(TableNonRegularFiles, ADirectoryOrADeviceReadsAsAMissingTable) {
    EXPECT_EQ(formatSampleThen(directory.path()), std::make_pair(false, false));
    EXPECT_EQ(formatSampleThen("/dev/zero"), std::make_pair(false, false));
}

TEST_P(TableNonRegularFiles, ALinkToTheSampleReadsLikeTheSample) {
    const std::string link = directory.file("table.xml");
    ASSERT_EQ(::symlink(sampleTable(GetParam().sample).c_str(), link.c_str()), 0);
    EXPECT_EQ(formatSampleThen(link), std::make_pair(true, true));
}

INSTANTIATE_TEST_SUITE_P(EveryTable, TableNonRegularFiles, ::testing::ValuesIn(tables()), nameOf);
