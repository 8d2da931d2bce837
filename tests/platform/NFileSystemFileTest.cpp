#include "NFileSystem.h"
#include "TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

using pallix::test::TemporaryDirectory;
namespace file = NFileSystem::file;

namespace {

NByteArray bytes(const std::string& text) {
    return NByteArray(text);
}

} // namespace

TEST(NFileSystemFile, WritesAndReadsBackAnyBytes) {
    TemporaryDirectory directory;
    const NString target(directory.file("data.bin"));
    const NByteArray content("a\0b\xff\n", 5);
    ASSERT_TRUE(file::fromBytes(target, content));
    EXPECT_TRUE(file::exist(target));
    EXPECT_EQ(file::toBytes(target), content);
}

TEST(NFileSystemFile, PathsWithBlanksAndNonAsciiCharacters) {
    TemporaryDirectory directory;
    const NString target(directory.file("Zoë's backup 备份.xml"));
    ASSERT_TRUE(file::fromBytes(target, bytes("<x/>")));
    EXPECT_EQ(TemporaryDirectory::read(target.data()), "<x/>");
    EXPECT_TRUE(file::remove(target));
    EXPECT_FALSE(file::exist(target));
}

TEST(NFileSystemFile, ReplacesAnExistingFileAndLeavesNoTemporaryFile) {
    TemporaryDirectory directory;
    const NString target(directory.file("configure.xml"));
    ASSERT_TRUE(file::fromBytes(target, bytes("old content that is longer")));
    ASSERT_TRUE(file::fromBytes(target, bytes("new")));
    EXPECT_EQ(file::toBytes(target), bytes("new"));
    EXPECT_EQ(TemporaryDirectory::entries(directory.path()),
              std::vector<std::string>{"configure.xml"});
}

TEST(NFileSystemFile, KeepsTheModeOfTheFileItReplaces) {
    TemporaryDirectory directory;
    const std::string target = directory.file("private.json");
    TemporaryDirectory::write(target, "{}");
    ASSERT_EQ(::chmod(target.c_str(), 0600), 0);
    ASSERT_TRUE(file::fromBytes(NString(target), bytes("{\"a\":1}")));
    struct stat info {};
    ASSERT_EQ(::stat(target.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0600u);
}

TEST(NFileSystemFile, NewFileGetsTheUmaskDefault) {
    TemporaryDirectory directory;
    const mode_t previous = ::umask(027);
    const std::string target = directory.file("new.xml");
    // The writer reads the umask once per process; this process has not written before.
    const bool written = file::fromBytes(NString(target), bytes("x"));
    ::umask(previous);
    ASSERT_TRUE(written);
    struct stat info {};
    ASSERT_EQ(::stat(target.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0640u);
}

TEST(NFileSystemFile, WriteIntoMissingDirectoryFailsWithoutCreatingIt) {
    TemporaryDirectory directory;
    const NString target(directory.file("missing/inner.xml"));
    EXPECT_FALSE(file::fromBytes(target, bytes("x")));
    EXPECT_FALSE(NFileSystem::path::exist(NString(directory.file("missing"))));
    EXPECT_FALSE(file::fromBytes(NString(), bytes("x")));
}

TEST(NFileSystemFile, FailedWriteLeavesTheOldFile) {
    TemporaryDirectory directory;
    const std::string target = directory.file("store.xml");
    TemporaryDirectory::write(target, "old");
    // A file-size limit makes the write fail half-way, as a full disk would.
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        ::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{16, 16};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        const bool written = file::fromBytes(NString(target), NByteArray(std::string(4096, 'n')));
        ::_exit(written ? 1 : 0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0) << "the write should have reported failure";
    EXPECT_EQ(TemporaryDirectory::read(target), "old");
    EXPECT_EQ(TemporaryDirectory::entries(directory.path()), std::vector<std::string>{"store.xml"});
}

TEST(NFileSystemFile, ReaderNeverSeesAPartlyWrittenFile) {
    TemporaryDirectory directory;
    const NString target(directory.file("busy.xml"));
    const std::string first(100000, 'a');
    const std::string second(3, 'b');
    ASSERT_TRUE(file::fromBytes(target, bytes(first)));
    std::atomic<bool> done{false};
    std::atomic<int> torn{0};
    std::thread reader([&] {
        while (!done) {
            const std::string seen = file::toBytes(target).toStdString();
            if (seen != first && seen != second) {
                ++torn;
            }
        }
    });
    for (int i = 0; i < 200; ++i) {
        ASSERT_TRUE(file::fromBytes(target, bytes(i % 2 == 0 ? second : first)));
    }
    done = true;
    reader.join();
    EXPECT_EQ(torn.load(), 0);
}

TEST(NFileSystemFile, ReadingAMissingFileGivesNothing) {
    TemporaryDirectory directory;
    EXPECT_TRUE(file::toBytes(NString(directory.file("none"))).empty());
    EXPECT_FALSE(file::exist(NString(directory.file("none"))));
    EXPECT_FALSE(file::exist(NString(directory.path())));
    EXPECT_FALSE(file::remove(NString(directory.file("none"))));
}
