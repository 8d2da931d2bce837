// The desktop helpers' example program, run once in a real window on a virtual X display.

#include "TemporaryDirectory.h"
#include "ToolRunner.h"

#include <QImage>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using pallix::test::runProgram;
using pallix::test::TemporaryDirectory;
using pallix::test::ToolResult;

namespace {

// xvfb-run starts a display of its own; the example must use it, not the offscreen platform
// the other widget tests are given.
ToolResult runExample(const std::vector<std::string>& arguments) {
    std::vector<std::string> command{"-a", "env", "QT_QPA_PLATFORM=xcb", PALLIX_EXAMPLE_PATH};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return runProgram("xvfb-run", command);
}

} // namespace

// One test case for every run on a display: two "xvfb-run -a" started at the same moment can
// pick the same display number, so these runs never go in parallel.
TEST(DesktopExample, RunsInAWindowAndQuitsByItself) {
    TemporaryDirectory directory;
    const std::string shot = directory.file("window.png");
    const ToolResult result = runExample({"--quit-after", "500", "--screenshot", shot});
    EXPECT_EQ(result.status, 0) << result.errors;
    const QImage image(QString::fromStdString(shot));
    ASSERT_FALSE(image.isNull()) << result.errors;
    EXPECT_EQ(image.size(), QSize(560, 420));

    for (const char* setting : {"on", "off"}) {
        const ToolResult run = runExample({"--quit-after", "300", "--animation", setting});
        EXPECT_EQ(run.status, 0) << setting << ": " << run.errors;
    }
}

TEST(DesktopExample, RejectsAnUnknownOption) {
    const ToolResult result =
        runProgram(PALLIX_EXAMPLE_PATH, {"--no-such-option"}, {"QT_QPA_PLATFORM=offscreen"});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.errors.find("usage:"), std::string::npos) << result.errors;
}
