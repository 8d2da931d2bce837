// The cloud document when memory runs out: an allocation failure inside format() or inside a
// query that hands out a copy ends the process, rather than leaving a document read in part or
// an empty answer that looks like a real one.

#include "AllocationProbe.h"
#include "CloudTestSupport.h"
#include "EndsTheProcess.h"

#include "PRuntimeCloud.h"
#include "TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using pallix::test::CloudState;
using pallix::test::describe;
using pallix::test::disarmAllocationFailure;
using pallix::test::failAllocation;
using pallix::test::TemporaryDirectory;

namespace {

const NString everyElement(PALLIX_TEST_DATA_DIR "/cloud/every-element.xml");

// How many allocations one format() of the document makes: a failure armed far beyond them
// counts them down without happening.
long allocationsOfOneFormat() {
    CloudState cloud;
    const long limit = 1000000;
    failAllocation(limit);
    const bool read = cloud.format(everyElement);
    const long made = limit - pallix::test::allocationsLeft();
    disarmAllocationFailure();
    EXPECT_TRUE(read);
    return made;
}

} // namespace

TEST(CloudMemory, FormatWithMemoryToSpareReadsTheWholeDocument) {
    CloudState cloud;
    ASSERT_TRUE(cloud.format(everyElement));
    EXPECT_FALSE(describe(cloud).empty());
    EXPECT_GT(allocationsOfOneFormat(), 20);
}

TEST(CloudMemory, AllocationFailureInsideFormatEndsTheProcess) {
    const long allocations = allocationsOfOneFormat();
    ASSERT_GT(allocations, 20);
    // The first allocation, one in the middle and the last one.
    for (const long allowed : {0L, allocations / 2, allocations - 1}) {
        CloudState cloud;
        EXPECT_ENDS_THE_PROCESS({
            failAllocation(allowed);
            cloud.format(everyElement);
        }) << "after "
           << allowed << " allocations";
    }
}

TEST(CloudMemory, AllocationFailureInsideACopyingQueryEndsTheProcess) {
    CloudState cloud;
    ASSERT_TRUE(cloud.format(everyElement));
    TemporaryDirectory directory;
    ASSERT_TRUE(cloud.formatText(
        directory, R"(<Application><Applet><VerifyGuide Pixmap="a pixmap text that is long enough
            to live outside the string object"/></Applet></Application>)"));
    // With memory to spare the queries answer.
    ASSERT_EQ(cloud.application_hash_cpid().hash(), "00112233445566778899aabbccddeeff");
    ASSERT_EQ(cloud.device_plugins_find("15.7").url(), "https://files.example/dev-15.7.zip");
    ASSERT_TRUE(cloud.applet_verify_guide_pixmap().startsWith("a pixmap text"));

    EXPECT_ENDS_THE_PROCESS({
        failAllocation(0);
        cloud.application_hash_cpid();
    });
    EXPECT_ENDS_THE_PROCESS({
        failAllocation(0);
        cloud.device_plugins_find("15.7");
    });
    EXPECT_ENDS_THE_PROCESS({
        failAllocation(0);
        cloud.applet_verify_guide_pixmap();
    });
}
