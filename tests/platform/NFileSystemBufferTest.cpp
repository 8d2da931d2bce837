#include "NFileSystemBuffer.h"
#include "NonRegularFiles.h"
#include "TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

using pallix::test::BlockingAlarm;
using pallix::test::makeFifo;
using pallix::test::makeSocket;
using pallix::test::TemporaryDirectory;
namespace file = NFileSystem::file;

namespace {

// Counts the blocks handed out and given back, and can refuse to hand any out.
int outstanding = 0;
bool refuse = false;

void* allocate(std::size_t size) {
    if (refuse) {
        return nullptr;
    }
    ++outstanding;
    return std::malloc(size);
}

void release(void* block) {
    --outstanding;
    std::free(block);
}

// The file's content as toBuffer() reads it, or "(failed)"; checks that exactly the returned
// block is left outstanding and that it has room for one more byte.
std::string readBuffer(const std::string& path) {
    outstanding = 0;
    char* data = nullptr;
    std::size_t size = 0;
    if (!file::toBuffer(NString(path.c_str()), allocate, release, data, size)) {
        EXPECT_EQ(outstanding, 0) << path;
        return "(failed)";
    }
    EXPECT_EQ(outstanding, 1) << path;
    data[size] = '\0';
    std::string content(data, size);
    release(data);
    return content;
}

} // namespace

TEST(NFileSystemBuffer, ReadsTheWholeFileWithAnyBytes) {
    TemporaryDirectory directory;
    const std::string target = directory.file("data.bin");
    const std::string content("a\0b\xff\n", 5);
    TemporaryDirectory::write(target, content);
    EXPECT_EQ(readBuffer(target), content);
    EXPECT_EQ(readBuffer(target), file::toBytes(NString(target.c_str())).toStdString());
}

TEST(NFileSystemBuffer, ReadsALargeFile) {
    TemporaryDirectory directory;
    const std::string target = directory.file("large.xml");
    std::string content;
    for (int i = 0; i < 100000; ++i) {
        content += "<row n=\"" + std::to_string(i) + "\"/>\n";
    }
    TemporaryDirectory::write(target, content);
    EXPECT_EQ(readBuffer(target), content);
}

TEST(NFileSystemBuffer, AnEmptyFileIsReadAsNothing) {
    TemporaryDirectory directory;
    const std::string target = directory.file("empty.xml");
    TemporaryDirectory::write(target, "");
    EXPECT_EQ(readBuffer(target), "");
}

TEST(NFileSystemBuffer, AMissingFileOrADirectoryFails) {
    TemporaryDirectory directory;
    EXPECT_EQ(readBuffer(directory.file("none")), "(failed)");
    EXPECT_EQ(readBuffer(directory.path()), "(failed)");
    EXPECT_EQ(readBuffer(""), "(failed)");
}

TEST(NFileSystemBuffer, AFifoASocketOrADeviceFailsAtOnce) {
    TemporaryDirectory directory;
    BlockingAlarm alarm;
    const std::string fifo = directory.file("fifo.xml");
    ASSERT_TRUE(makeFifo(fifo));
    EXPECT_EQ(readBuffer(fifo), "(failed)");
    const int socket = makeSocket(directory.file("socket.xml"));
    ASSERT_GE(socket, 0);
    EXPECT_EQ(readBuffer(directory.file("socket.xml")), "(failed)");
    ::close(socket);
    EXPECT_EQ(readBuffer("/dev/null"), "(failed)");
}

TEST(NFileSystemBuffer, ALinkIsFollowedToItsFile) {
    TemporaryDirectory directory;
    const std::string target = directory.file("target.xml");
    TemporaryDirectory::write(target, "<x/>");
    ASSERT_EQ(::symlink(target.c_str(), directory.file("link.xml").c_str()), 0);
    EXPECT_EQ(readBuffer(directory.file("link.xml")), "<x/>");
}

TEST(NFileSystemBuffer, AnAllocatorThatGivesNothingFails) {
    TemporaryDirectory directory;
    const std::string target = directory.file("data.xml");
    TemporaryDirectory::write(target, "<x/>");
    refuse = true;
    EXPECT_EQ(readBuffer(target), "(failed)");
    refuse = false;
}
