// The cloud document when memory runs out: format() either applies a whole document or none
// of it, and the queries that hand out copies return empty ones instead of throwing.
//
// This test replaces the global allocation functions so that it can make one chosen
// allocation fail.

#include "CloudTestSupport.h"

#include "PRuntimeCloud.h"
#include "TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <string>
#include <vector>

namespace {

// Counts down allocations while armed; the one that reaches zero throws.
long g_failAfter = -1;

void failAllocation(long number) {
    g_failAfter = number;
}

bool failurePending() {
    return g_failAfter >= 0;
}

void disarm() {
    g_failAfter = -1;
}

} // namespace

__attribute__((visibility("default"))) void* operator new(std::size_t size) {
    if (g_failAfter >= 0 && g_failAfter-- == 0) {
        throw std::bad_alloc();
    }
    void* pointer = std::malloc(size == 0 ? 1 : size);
    if (pointer == nullptr) {
        throw std::bad_alloc();
    }
    return pointer;
}

__attribute__((visibility("default"))) void operator delete(void* pointer) noexcept {
    std::free(pointer);
}

__attribute__((visibility("default"))) void operator delete(void* pointer, std::size_t) noexcept {
    std::free(pointer);
}

using pallix::test::CloudState;
using pallix::test::describe;
using pallix::test::TemporaryDirectory;

TEST(CloudMemory, FormatAppliesAWholeDocumentOrNothing) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(directory, R"(
        <Application><Hash><F Name="CPID" MD5="an earlier digest, long enough to allocate"/>
        </Hash></Application>
        <Device><DeveloperPlugins><P Version="16.0" Url="an earlier package address"/>
        </DeveloperPlugins></Device>)"));
    const std::vector<std::string> before = describe(cloud);

    CloudState reference;
    ASSERT_TRUE(reference.formatText(directory, R"(
        <Application><Hash><F Name="CPID" MD5="an earlier digest, long enough to allocate"/>
        </Hash></Application>
        <Device><DeveloperPlugins><P Version="16.0" Url="an earlier package address"/>
        </DeveloperPlugins></Device>)"));
    const NString path(PALLIX_TEST_DATA_DIR "/cloud/every-element.xml");
    ASSERT_TRUE(reference.format(path));
    const std::vector<std::string> after = describe(reference);

    // Fail the first allocation, then the second, and so on until one call gets through.
    int failures = 0;
    for (long number = 0; number < 100000; ++number) {
        failAllocation(number);
        const bool read = cloud.format(path);
        const bool failed = !failurePending();
        disarm();
        if (!failed) {
            EXPECT_TRUE(read);
            EXPECT_EQ(describe(cloud), after);
            break;
        }
        ++failures;
        ASSERT_FALSE(read) << "allocation " << number;
        ASSERT_EQ(describe(cloud), before) << "allocation " << number;
    }
    // The document has dozens of texts longer than the short-string buffer.
    EXPECT_GT(failures, 20);
    EXPECT_EQ(describe(cloud), after);
}

TEST(CloudMemory, CopyingQueriesReturnEmptyResultsWhenACopyCannotBeMade) {
    CloudState cloud;
    ASSERT_TRUE(cloud.format(NString(PALLIX_TEST_DATA_DIR "/cloud/every-element.xml")));
    TemporaryDirectory directory;
    ASSERT_TRUE(cloud.formatText(
        directory, R"(<Application><Applet><VerifyGuide Pixmap="a pixmap text that is long enough
            to live outside the string object"/></Applet></Application>)"));

    failAllocation(0);
    const PRuntimeCloudApplicationHash cpid = cloud.application_hash_cpid();
    disarm();
    EXPECT_TRUE(cpid.name().empty());
    EXPECT_TRUE(cpid.hash().empty());
    EXPECT_TRUE(cpid.url().empty());

    failAllocation(0);
    const PRuntimeCloudDevicePluginsItem plugin = cloud.device_plugins_find("15.7");
    disarm();
    EXPECT_TRUE(plugin.version().empty());
    EXPECT_TRUE(plugin.url().empty());
    EXPECT_TRUE(plugin.hash().empty());

    failAllocation(0);
    const NString pixmap = cloud.applet_verify_guide_pixmap();
    disarm();
    EXPECT_TRUE(pixmap.empty());

    // With memory to spare the same queries answer.
    EXPECT_EQ(cloud.application_hash_cpid().hash(), "00112233445566778899aabbccddeeff");
    EXPECT_EQ(cloud.device_plugins_find("15.7").url(), "https://files.example/dev-15.7.zip");
    EXPECT_TRUE(cloud.applet_verify_guide_pixmap().startsWith("a pixmap text"));
}
