#include "TemporaryDirectory.h"
#include "UrlRecorder.h"
#include "VirtualSlot.h"

#include "PRuntime.h"
#include "PRuntimeShell.h"
#include "ProductAddress.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <string>

using pallix::test::TemporaryDirectory;
using pallix::test::UrlRecorder;
using pallix::test::virtualSlot;

namespace {

class ShellTest : public ::testing::Test {
protected:
    void TearDown() override { PRuntime::freeInstance(); }
    PRuntimeShell shell;
};

// A stand-in "open" command placed first on PATH: it writes each of its arguments on a line
// of its own to the record file and exits with the status given in OPEN_STATUS.
class FakeOpen {
public:
    FakeOpen() {
        const std::string bin = m_directory.file("bin");
        std::filesystem::create_directory(bin);
        const std::string script = bin + "/open";
        TemporaryDirectory::write(script, "#!/bin/sh\n"
                                          "for argument in \"$@\"; do\n"
                                          "    printf '[%s]\\n' \"$argument\" >> \"$OPEN_RECORD\"\n"
                                          "done\n"
                                          "printf -- '--\\n' >> \"$OPEN_RECORD\"\n"
                                          "exit \"${OPEN_STATUS:-0}\"\n");
        ::chmod(script.c_str(), 0755);
        const char* path = std::getenv("PATH");
        ::setenv("PATH", (bin + ":" + (path != nullptr ? path : "/usr/bin:/bin")).c_str(), 1);
        ::setenv("OPEN_RECORD", record().c_str(), 1);
        ::unsetenv("OPEN_STATUS");
    }

    std::string record() const { return m_directory.file("record.txt"); }
    std::string recorded() const { return TemporaryDirectory::read(record()); }

private:
    TemporaryDirectory m_directory{"pallix-open"};
};

} // namespace

TEST(ShellSlots, VirtualOperationsKeepTheirSlots) {
    EXPECT_EQ(virtualSlot(&PRuntimeShell::Remove), 3u);
    EXPECT_EQ(virtualSlot(&PRuntimeShell::OpenFile), 4u);
    EXPECT_EQ(virtualSlot(&PRuntimeShell::OpenImage), 5u);
    EXPECT_EQ(virtualSlot(&PRuntimeShell::OpenDirectory), 6u);
    EXPECT_EQ(virtualSlot(&PRuntimeShell::OpenURL), 7u);
    EXPECT_EQ(virtualSlot(&PRuntimeShell::OpenTolvane), 8u);
}

TEST_F(ShellTest, RootHandsOutTheComponent) {
    PRuntimeShell* fromRoot = PRuntime::getInstance()->shell();
    ASSERT_NE(fromRoot, nullptr);
    EXPECT_FALSE(fromRoot->Remove("/nonexistent/pallix/path"));
}

// --- Remove ---------------------------------------------------------------------------------

TEST_F(ShellTest, RemoveOfAMissingPathIsFalse) {
    TemporaryDirectory directory;
    EXPECT_FALSE(shell.Remove(directory.file("missing").c_str()));
    EXPECT_FALSE(shell.Remove(""));
}

TEST_F(ShellTest, RemoveDeletesAFile) {
    TemporaryDirectory directory;
    const std::string file = directory.file("notes.txt");
    TemporaryDirectory::write(file, "text");
    EXPECT_TRUE(shell.Remove(file.c_str()));
    EXPECT_FALSE(std::filesystem::exists(file));
    EXPECT_FALSE(shell.Remove(file.c_str()));
}

TEST_F(ShellTest, RemoveDeletesADirectoryWithEverythingInIt) {
    TemporaryDirectory directory;
    const std::string tree = directory.file("tree");
    std::filesystem::create_directories(tree + "/a/b");
    TemporaryDirectory::write(tree + "/top.txt", "1");
    TemporaryDirectory::write(tree + "/a/b/deep.txt", "2");
    EXPECT_TRUE(shell.Remove(tree.c_str()));
    EXPECT_FALSE(std::filesystem::exists(tree));
    EXPECT_TRUE(std::filesystem::exists(directory.path()));
}

// --- files, folders, addresses ----------------------------------------------------------------

TEST_F(ShellTest, OpenFileHandsTheNormalisedLocalFileToTheDesktop) {
    UrlRecorder desktop{"file"};
    EXPECT_TRUE(shell.OpenFile("/tmp//pallix/./docs/../图片 1.png"));
    ASSERT_EQ(desktop.opened().size(), 1);
    const QUrl url = desktop.opened().front();
    EXPECT_EQ(url, QUrl::fromLocalFile(QString::fromUtf8("/tmp/pallix/图片 1.png")));
    EXPECT_TRUE(url.isLocalFile());
    EXPECT_EQ(url.toLocalFile(), QString::fromUtf8("/tmp/pallix/图片 1.png"));
}

TEST_F(ShellTest, OpenDirectoryIsOpenFile) {
    UrlRecorder desktop{"file"};
    EXPECT_TRUE(shell.OpenDirectory("/tmp/pallix/backups/"));
    ASSERT_EQ(desktop.opened().size(), 1);
    EXPECT_EQ(desktop.opened().front(), QUrl::fromLocalFile(QStringLiteral("/tmp/pallix/backups")));
}

TEST_F(ShellTest, OpenDirectoryGoesThroughOpenFile) {
    struct Spy : PRuntimeShell {
        mutable int calls = 0;
        bool OpenFile(const NString& path) const override {
            ++calls;
            return path == "/srv/folder";
        }
    } spy;
    EXPECT_TRUE(spy.OpenDirectory("/srv/folder"));
    EXPECT_FALSE(spy.OpenDirectory("/srv/other"));
    EXPECT_EQ(spy.calls, 2);
}

TEST_F(ShellTest, OpenFileReportsTheDesktopsAnswer) {
    // Without a handler the offscreen platform cannot open documents.
    EXPECT_FALSE(shell.OpenFile("/tmp/pallix-no-handler.txt"));
}

TEST_F(ShellTest, OpenUrlParsesTolerantly) {
    UrlRecorder desktop{"https"};
    EXPECT_TRUE(shell.OpenURL("https://example.com/a b?q=中文"));
    ASSERT_EQ(desktop.opened().size(), 1);
    const QUrl url = desktop.opened().front();
    EXPECT_EQ(url.host(), QStringLiteral("example.com"));
    EXPECT_EQ(url.path(), QStringLiteral("/a b"));
    EXPECT_EQ(url.toEncoded(), QByteArray("https://example.com/a%20b?q=%E4%B8%AD%E6%96%87"));
}

TEST_F(ShellTest, OpenUrlOfAnEmptyAddressIsFalse) {
    UrlRecorder desktop{"https", "file"};
    EXPECT_FALSE(shell.OpenURL(""));
    EXPECT_TRUE(desktop.opened().isEmpty());
}

TEST_F(ShellTest, OpenTolvaneOpensTheProductAddress) {
    UrlRecorder desktop{"https", "http"};
    EXPECT_TRUE(shell.OpenTolvane());
    ASSERT_EQ(desktop.opened().size(), 1);
    const QUrl url = desktop.opened().front();
    EXPECT_EQ(url, QUrl(QString::fromLatin1(pallix::productAddress)));
    EXPECT_TRUE(url.isValid());
    EXPECT_FALSE(url.host().isEmpty());
}

TEST_F(ShellTest, OpenTolvaneGoesThroughOpenUrl) {
    struct Spy : PRuntimeShell {
        mutable NString opened;
        bool OpenURL(const NString& url) const override {
            opened = url;
            return false;
        }
    } spy;
    EXPECT_FALSE(spy.OpenTolvane());
    EXPECT_EQ(spy.opened, NString(pallix::productAddress));
}

// --- images through the "open" command --------------------------------------------------------

TEST_F(ShellTest, OpenImageRunsOpenWithThePath) {
    FakeOpen open;
    EXPECT_TRUE(shell.OpenImage("/tmp/pallix/picture.png"));
    EXPECT_EQ(open.recorded(), "[/tmp/pallix/picture.png]\n--\n");
}

TEST_F(ShellTest, OpenImageDoesNotQuoteThePath) {
    FakeOpen open;
    EXPECT_TRUE(shell.OpenImage("/tmp/my pictures/a.png"));
    EXPECT_EQ(open.recorded(), "[/tmp/my]\n[pictures/a.png]\n--\n");
}

TEST_F(ShellTest, OpenImageIsFalseWhenTheCommandFails) {
    FakeOpen open;
    ::setenv("OPEN_STATUS", "3", 1);
    EXPECT_FALSE(shell.OpenImage("/tmp/pallix/picture.png"));
    EXPECT_EQ(open.recorded(), "[/tmp/pallix/picture.png]\n--\n");
}

TEST_F(ShellTest, OpenImageOfAnEmptyPathRunsNothing) {
    FakeOpen open;
    EXPECT_FALSE(shell.OpenImage(""));
    EXPECT_FALSE(std::filesystem::exists(open.record()));
}
