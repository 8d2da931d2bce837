// The desktop helpers' example program, run once in a real window on a virtual X display and
// once on the offscreen platform.

#include "PRuntimeString.h"
#include "TemporaryDirectory.h"
#include "ToolRunner.h"

#include <QApplication>
#include <QFileInfo>
#include <QFont>
#include <QFontInfo>
#include <QFontMetrics>
#include <QImage>
#include <QSet>
#include <QVector>

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

// The main window's size as the example sets it; nothing in it asks for more room.
const QSize windowSize(560, 420);

// What --screenshot wrote: a picture of the whole main window, with something drawn in it.
void expectWindowPicture(const std::string& path, const ToolResult& result) {
    ASSERT_TRUE(QFileInfo(QString::fromStdString(path)).isFile()) << result.errors;
    const QImage image(QString::fromStdString(path));
    ASSERT_FALSE(image.isNull()) << result.errors;
    EXPECT_EQ(image.size(), windowSize);
    QSet<QRgb> colours;
    for (int y = 0; y < image.height() && colours.size() < 2; ++y) {
        for (int x = 0; x < image.width() && colours.size() < 2; ++x) {
            colours.insert(image.pixel(x, y));
        }
    }
    EXPECT_GE(colours.size(), 2) << "the picture is a single colour";
}

} // namespace

// One test case for every run on a display: two "xvfb-run -a" started at the same moment can
// pick the same display number, so these runs never go in parallel.
TEST(DesktopExample, RunsInAWindowAndQuitsByItself) {
    TemporaryDirectory directory;
    const std::string shot = directory.file("window.png");
    const ToolResult result = runExample({"--quit-after", "500", "--screenshot", shot});
    EXPECT_EQ(result.status, 0) << result.errors;
    ASSERT_NO_FATAL_FAILURE(expectWindowPicture(shot, result));

    for (const char* setting : {"on", "off"}) {
        const ToolResult run = runExample({"--quit-after", "300", "--animation", setting});
        EXPECT_EQ(run.status, 0) << setting << ": " << run.errors;
    }
}

// No display is involved, so this may run next to the case above. Quitting as soon as the
// event loop starts is enough: the picture is rendered from the widgets, not from a screen.
TEST(DesktopExample, WritesAScreenshotOnTheOffscreenPlatform) {
    TemporaryDirectory directory;
    const std::string shot = directory.file("window.png");
    const ToolResult result =
        runProgram(PALLIX_EXAMPLE_PATH, {"--quit-after", "0", "--screenshot", shot},
                   {"QT_QPA_PLATFORM=offscreen"});
    EXPECT_EQ(result.status, 0) << result.errors;
    ASSERT_NO_FATAL_FAILURE(expectWindowPicture(shot, result));
}

TEST(DesktopExample, ReportsWhyTheScreenshotCannotBeWritten) {
    TemporaryDirectory directory;
    const std::string shot = directory.file("missing/window.png");
    const ToolResult result =
        runProgram(PALLIX_EXAMPLE_PATH, {"--quit-after", "0", "--screenshot", shot},
                   {"QT_QPA_PLATFORM=offscreen"});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.errors.find("cannot write " + shot + ": "), std::string::npos)
        << result.errors;
    EXPECT_FALSE(QFileInfo::exists(QString::fromStdString(shot)));
}

// The example's labels draw in the application's font, falling back per character as Qt does;
// on a machine without a CJK font (scripts/bootstrap.sh installs fonts-wqy-microhei) the Chinese
// texts come out as empty boxes, and this fails. This process has the same platform and font
// configuration as the offscreen run of the example.
TEST(DesktopExample, HasGlyphsForItsChineseTexts) {
    const PRuntimeString strings;
    const QString texts = strings.cpuCore(6) + QStringLiteral(" · ") +
                          strings.wifiTypeToString(EDEVICE_WIFI_TYPE_HIGH_TEMPERATURE, true);
    ASSERT_TRUE(texts.contains(QChar(0x9AD8)) && texts.contains(QChar(0x6E29)))
        << "the high-temperature WiFi name no longer reads 高温: " << texts.toStdString();

    const QFont font = QApplication::font();
    const QFontMetrics metrics(font);
    for (const uint character : texts.toUcs4()) {
        if (QChar::script(character) == QChar::Script_Han) {
            EXPECT_TRUE(metrics.inFontUcs4(character))
                << "no font for U+" << QString::number(character, 16).toUpper().toStdString()
                << " (" << QString::fromUcs4(&character, 1).toStdString() << ") next to "
                << QFontInfo(font).family().toStdString();
        }
    }
}

TEST(DesktopExample, RejectsAnUnknownOption) {
    const ToolResult result =
        runProgram(PALLIX_EXAMPLE_PATH, {"--no-such-option"}, {"QT_QPA_PLATFORM=offscreen"});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.errors.find("usage:"), std::string::npos) << result.errors;
}
