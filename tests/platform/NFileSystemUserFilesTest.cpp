// The writer and the reader among files that a user arranges as they like: links into other
// folders, special files where a file is expected, directories that take no new file, and
// the leftovers of crashed saves.

#include "NFileSystem.h"
#include "NonRegularFiles.h"
#include "ReadOnlyDirectory.h"
#include "TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <string>
#include <thread>
#include <vector>

using pallix::test::BlockingAlarm;
using pallix::test::isFifo;
using pallix::test::isSymbolicLink;
using pallix::test::makeFifo;
using pallix::test::makeSocket;
using pallix::test::runWithReadOnlyDirectory;
using pallix::test::TemporaryDirectory;
namespace file = NFileSystem::file;

namespace {

constexpr uid_t kNobody = 65534;

NByteArray bytes(const std::string& text) {
    return NByteArray(text);
}

std::string linkTarget(const std::string& link) {
    char buffer[4096];
    const ssize_t length = ::readlink(link.c_str(), buffer, sizeof buffer);
    return length < 0 ? std::string() : std::string(buffer, static_cast<std::size_t>(length));
}

// A directory of the user's, with a "dotfiles" folder beside the application's folder.
class UserFiles : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(::mkdir(application.c_str(), 0755), 0);
        ASSERT_EQ(::mkdir(dotfiles.c_str(), 0755), 0);
    }

    TemporaryDirectory root{"pallix-user-files"};
    const std::string application = root.file("application");
    const std::string dotfiles = root.file("dotfiles");
};

} // namespace

TEST_F(UserFiles, ALinkStaysALinkAndTheFileItLeadsToGetsTheContent) {
    const std::string kept = dotfiles + "/configure.xml";
    const std::string link = application + "/configure.xml";
    TemporaryDirectory::write(kept, "old");
    ASSERT_EQ(::chmod(kept.c_str(), 0600), 0);
    ASSERT_EQ(::symlink(kept.c_str(), link.c_str()), 0);

    ASSERT_TRUE(file::fromBytes(NString(link), bytes("new")));
    EXPECT_TRUE(isSymbolicLink(link));
    EXPECT_EQ(linkTarget(link), kept);
    EXPECT_EQ(TemporaryDirectory::read(kept), "new");
    EXPECT_EQ(file::toBytes(NString(link)), bytes("new"));
    // The linked file keeps its mode, and no temporary is left on either side.
    struct stat info {};
    ASSERT_EQ(::stat(kept.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0600u);
    EXPECT_EQ(TemporaryDirectory::entries(application), std::vector<std::string>{"configure.xml"});
    EXPECT_EQ(TemporaryDirectory::entries(dotfiles), std::vector<std::string>{"configure.xml"});
}

TEST_F(UserFiles, ARelativeChainOfLinksIsFollowedToItsFile) {
    // application/PortBind.xml -> ../dotfiles/current -> versions/PortBind.xml
    ASSERT_EQ(::mkdir((dotfiles + "/versions").c_str(), 0755), 0);
    const std::string kept = dotfiles + "/versions/PortBind.xml";
    TemporaryDirectory::write(kept, "old");
    ASSERT_EQ(::symlink("versions/PortBind.xml", (dotfiles + "/current").c_str()), 0);
    const std::string link = application + "/PortBind.xml";
    ASSERT_EQ(::symlink("../dotfiles/current", link.c_str()), 0);

    ASSERT_TRUE(file::fromBytes(NString(link), bytes("new")));
    EXPECT_EQ(linkTarget(link), "../dotfiles/current");
    EXPECT_EQ(linkTarget(dotfiles + "/current"), "versions/PortBind.xml");
    EXPECT_EQ(TemporaryDirectory::read(kept), "new");
    EXPECT_EQ(TemporaryDirectory::entries(dotfiles + "/versions"),
              std::vector<std::string>{"PortBind.xml"});
}

TEST_F(UserFiles, ADanglingLinkIsWrittenThrough) {
    const std::string kept = dotfiles + "/notify.xml";
    const std::string link = application + "/notify.xml";
    ASSERT_EQ(::symlink(kept.c_str(), link.c_str()), 0);
    EXPECT_TRUE(file::toBytes(NString(link)).empty());

    ASSERT_TRUE(file::fromBytes(NString(link), bytes("created")));
    EXPECT_TRUE(isSymbolicLink(link));
    EXPECT_EQ(TemporaryDirectory::read(kept), "created");
}

TEST_F(UserFiles, ALoopOfLinksFailsAndCreatesNothing) {
    const std::string first = application + "/a.xml";
    const std::string second = application + "/b.xml";
    ASSERT_EQ(::symlink(second.c_str(), first.c_str()), 0);
    ASSERT_EQ(::symlink(first.c_str(), second.c_str()), 0);
    EXPECT_FALSE(file::fromBytes(NString(first), bytes("x")));
    EXPECT_EQ(TemporaryDirectory::entries(application),
              (std::vector<std::string>{"a.xml", "b.xml"}));
    EXPECT_TRUE(file::toBytes(NString(first)).empty());
}

TEST_F(UserFiles, OnlyARegularFileIsEverReplaced) {
    BlockingAlarm alarm;
    const std::string fifo = application + "/notify.xml";
    ASSERT_TRUE(makeFifo(fifo));
    EXPECT_FALSE(file::fromBytes(NString(fifo), bytes("x")));
    EXPECT_TRUE(isFifo(fifo));

    // A link to a device, as a user who wants nothing kept might make, is left alone too; a
    // FIFO stands in for the device, which a test must not risk.
    const std::string link = application + "/PortBind.xml";
    ASSERT_EQ(::symlink(fifo.c_str(), link.c_str()), 0);
    EXPECT_FALSE(file::fromBytes(NString(link), bytes("x")));
    EXPECT_TRUE(isFifo(fifo));
    EXPECT_TRUE(isSymbolicLink(link));

    const std::string directory = application + "/Factory.json";
    ASSERT_EQ(::mkdir(directory.c_str(), 0755), 0);
    EXPECT_FALSE(file::fromBytes(NString(directory), bytes("x")));
    EXPECT_TRUE(NFileSystem::path::isDirectory(NString(directory)));
    EXPECT_EQ(TemporaryDirectory::entries(application),
              (std::vector<std::string>{"Factory.json", "PortBind.xml", "notify.xml"}));
}

TEST_F(UserFiles, TheReaderReadsOnlyRegularFilesAndNeverBlocks) {
    BlockingAlarm alarm;
    const std::string fifo = application + "/fifo.xml";
    ASSERT_TRUE(makeFifo(fifo));
    EXPECT_TRUE(file::toBytes(NString(fifo)).empty());

    // A FIFO with a writer that never writes: a blocking read would wait for it for ever.
    const int writer = ::open(fifo.c_str(), O_RDWR | O_NONBLOCK);
    ASSERT_GE(writer, 0);
    EXPECT_TRUE(file::toBytes(NString(fifo)).empty());
    ::close(writer);

    const std::string socketPath = application + "/socket.xml";
    const int socket = makeSocket(socketPath);
    ASSERT_GE(socket, 0);
    EXPECT_TRUE(file::toBytes(NString(socketPath)).empty());
    ::close(socket);

    EXPECT_TRUE(file::toBytes(NString(application)).empty());
    EXPECT_TRUE(file::toBytes(NString("/dev/zero")).empty());
    EXPECT_TRUE(file::toBytes(NString("/dev/null")).empty());

    const std::string link = application + "/link.xml";
    ASSERT_EQ(::symlink(fifo.c_str(), link.c_str()), 0);
    EXPECT_TRUE(file::toBytes(NString(link)).empty());

    const std::string regular = dotfiles + "/regular.xml";
    const std::string toRegular = application + "/regular.xml";
    TemporaryDirectory::write(regular, "<content/>");
    ASSERT_EQ(::symlink(regular.c_str(), toRegular.c_str()), 0);
    EXPECT_EQ(file::toBytes(NString(toRegular)), bytes("<content/>"));
}

TEST_F(UserFiles, AFileThatGrowsWhileItIsReadIsReadWhole) {
    const std::string path = application + "/large.xml";
    const std::string content(3 * 65536 + 17, 'x');
    TemporaryDirectory::write(path, content);
    EXPECT_EQ(file::toBytes(NString(path)).size(), content.size());
    EXPECT_EQ(file::toBytes(NString(path)).toStdString(), content);
}

TEST_F(UserFiles, AWritableFileIsRewrittenInPlaceWhereTheDirectoryTakesNoNewFile) {
    const std::string path = application + "/configure.xml";
    TemporaryDirectory::write(path, "the old and longer content");
    ASSERT_EQ(::chmod(root.path().c_str(), 0755), 0);
    if (::geteuid() == 0) {
        // The user's own file, in a directory that the user may not add to.
        ASSERT_EQ(::chown(path.c_str(), kNobody, kNobody), 0);
    }
    struct stat before {};
    ASSERT_EQ(::stat(path.c_str(), &before), 0);

    const int status = runWithReadOnlyDirectory(application, [&] {
        return file::fromBytes(NString(path), bytes("new")) &&
               file::toBytes(NString(path)) == bytes("new") &&
               file::fromBytes(NString(path), bytes("newer and longer than before"));
    });
    ASSERT_EQ(status, 0) << "2: the directory could not be made read-only for the test";
    EXPECT_EQ(TemporaryDirectory::read(path), "newer and longer than before");
    struct stat after {};
    ASSERT_EQ(::stat(path.c_str(), &after), 0);
    EXPECT_EQ(after.st_ino, before.st_ino) << "written in place, so the same file";
    EXPECT_EQ(TemporaryDirectory::entries(application), std::vector<std::string>{"configure.xml"});
}

TEST_F(UserFiles, NothingIsWrittenWhereNeitherTheDirectoryNorTheFileMayBeWritten) {
    const std::string path = application + "/configure.xml";
    TemporaryDirectory::write(path, "old");
    ASSERT_EQ(::chmod(path.c_str(), 0444), 0);
    ASSERT_EQ(::chmod(root.path().c_str(), 0755), 0);
    const int status = runWithReadOnlyDirectory(
        application, [&] { return !file::fromBytes(NString(path), bytes("new")); });
    ASSERT_EQ(status, 0);
    EXPECT_EQ(TemporaryDirectory::read(path), "old");

    // No file to rewrite in place: nothing is created either.
    const std::string missing = application + "/notify.xml";
    EXPECT_EQ(runWithReadOnlyDirectory(
                  application, [&] { return !file::fromBytes(NString(missing), bytes("x")); }),
              0);
    EXPECT_EQ(TemporaryDirectory::entries(application), std::vector<std::string>{"configure.xml"});
}

TEST_F(UserFiles, TheNextSaveRemovesTheTemporariesThatNoWriterHolds) {
    const std::string path = application + "/store.xml";
    TemporaryDirectory::write(path, "old");
    // Two saves that crashed, one save still writing (it holds its lock), and files that only
    // look alike: none of those may go.
    TemporaryDirectory::write(application + "/.store.xml.tmp-Ab3dE9", "crashed");
    TemporaryDirectory::write(application + "/.store.xml.tmp-zzzzzz", "crashed");
    const std::string live = application + "/.store.xml.tmp-LIVE01";
    TemporaryDirectory::write(live, "being written");
    const int held = ::open(live.c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_GE(held, 0);
    ASSERT_EQ(::flock(held, LOCK_EX | LOCK_NB), 0);
    const std::vector<std::string> lookAlikes{".other.xml.tmp-Cc4411", ".store.xml.tmp-notes",
                                              ".store.xml.tmp-1234567", "store.xml.tmp-Dd5522",
                                              ".store.xml.bak"};
    for (const std::string& name : lookAlikes) {
        TemporaryDirectory::write(application + "/" + name, "the user's");
    }

    ASSERT_TRUE(file::fromBytes(NString(path), bytes("new")));
    std::vector<std::string> expected = lookAlikes;
    expected.push_back(".store.xml.tmp-LIVE01");
    expected.push_back("store.xml");
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(TemporaryDirectory::entries(application), expected);

    // Once its writer is gone, the next save takes that one too.
    ::close(held);
    ASSERT_TRUE(file::fromBytes(NString(path), bytes("newer")));
    expected.erase(std::find(expected.begin(), expected.end(), ".store.xml.tmp-LIVE01"));
    EXPECT_EQ(TemporaryDirectory::entries(application), expected);
}

TEST_F(UserFiles, TemporariesBesideALinkedFileAreClearedWhereTheyAre) {
    const std::string kept = dotfiles + "/configure.xml";
    const std::string link = application + "/configure.xml";
    TemporaryDirectory::write(kept, "old");
    ASSERT_EQ(::symlink(kept.c_str(), link.c_str()), 0);
    TemporaryDirectory::write(dotfiles + "/.configure.xml.tmp-Q1w2E3", "crashed");
    ASSERT_TRUE(file::fromBytes(NString(link), bytes("new")));
    EXPECT_EQ(TemporaryDirectory::entries(dotfiles), std::vector<std::string>{"configure.xml"});
}

#if defined(__linux__)
// A temporary must not leak into a program that another thread starts while a save is under
// way. The descriptor table is watched while large saves go on until a temporary is caught.
TEST_F(UserFiles, TheTemporaryIsClosedOnExec) {
    const std::string path = application + "/large.xml";
    const std::string content(8 << 20, 'x');
    std::atomic<bool> saving{true};
    std::atomic<int> caught{0};
    std::atomic<int> inherited{0};
    std::thread watcher([&] {
        while (saving) {
            DIR* descriptors = ::opendir("/proc/self/fd");
            if (descriptors == nullptr) {
                return;
            }
            while (const dirent* entry = ::readdir(descriptors)) {
                const std::string fd = std::string("/proc/self/fd/") + entry->d_name;
                if (linkTarget(fd).find("/.large.xml.tmp-") == std::string::npos) {
                    continue;
                }
                const int flags = ::fcntl(std::atoi(entry->d_name), F_GETFD);
                // Closed in the meantime, or reused for something else: look again.
                if (flags >= 0 && linkTarget(fd).find("/.large.xml.tmp-") != std::string::npos) {
                    ++caught;
                    if ((flags & FD_CLOEXEC) == 0) {
                        ++inherited;
                    }
                }
            }
            ::closedir(descriptors);
        }
    });
    for (int save = 0; save < 200 && caught == 0; ++save) {
        ASSERT_TRUE(file::fromBytes(NString(path), bytes(content)));
    }
    saving = false;
    watcher.join();
    EXPECT_GT(caught.load(), 0) << "no save was seen under way";
    EXPECT_EQ(inherited.load(), 0);
}
#endif

TEST_F(UserFiles, AReplacedFileKeepsItsOwner) {
    const std::string path = application + "/Factory.json";
    TemporaryDirectory::write(path, "{}");
    // The superuser saving a user's file gives it back to the user; anyone else keeps their
    // own file.
    const uid_t owner = ::geteuid() == 0 ? kNobody : ::geteuid();
    const gid_t group = ::geteuid() == 0 ? kNobody : ::getegid();
    ASSERT_EQ(::chown(path.c_str(), owner, group), 0);
    ASSERT_TRUE(file::fromBytes(NString(path), bytes("{\"a\":1}")));
    struct stat info {};
    ASSERT_EQ(::stat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_uid, owner);
    EXPECT_EQ(info.st_gid, group);
}
