#include "NFileSystem.h"
#include "TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <algorithm>
#include <string>
#include <vector>

using NFileSystem::path;
using pallix::test::TemporaryDirectory;
namespace directory = NFileSystem::directory;

TEST(NFileSystemDirectory, CreatesMissingParentsWithTheMode) {
    TemporaryDirectory root;
    const std::string target = root.file("a b/ç/d");
    const mode_t previous = ::umask(0);
    const bool created = directory::create(NString(target), 0750);
    ::umask(previous);
    ASSERT_TRUE(created);
    EXPECT_TRUE(directory::exist(NString(target)));
    struct stat info {};
    ASSERT_EQ(::stat(root.file("a b").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0750u);
    // Creating what exists succeeds.
    EXPECT_TRUE(directory::create(NString(target), 0755));
}

TEST(NFileSystemDirectory, CreateOverAFileFails) {
    TemporaryDirectory root;
    TemporaryDirectory::write(root.file("file"), "x");
    EXPECT_FALSE(directory::create(NString(root.file("file")), 0755));
    EXPECT_FALSE(directory::create(NString(root.file("file/below")), 0755));
    EXPECT_FALSE(directory::create(path(), 0755));
}

TEST(NFileSystemDirectory, RemoveWithoutFilterRemovesTheTree) {
    TemporaryDirectory root;
    const std::string tree = root.file("Notify");
    ASSERT_TRUE(directory::create(NString(tree + "/sub"), 0755));
    TemporaryDirectory::write(tree + "/1.xml", "x");
    TemporaryDirectory::write(tree + "/sub/2.xml", "y");
    EXPECT_TRUE(directory::remove(NString(tree), {}));
    EXPECT_FALSE(path::exist(NString(tree)));
}

TEST(NFileSystemDirectory, RemoveWithFilterKeepsWhatItRejects) {
    TemporaryDirectory root;
    const std::string tree = root.file("tree");
    ASSERT_TRUE(directory::create(NString(tree), 0755));
    TemporaryDirectory::write(tree + "/drop.tmp", "x");
    TemporaryDirectory::write(tree + "/keep.xml", "y");
    EXPECT_TRUE(directory::remove(
        NString(tree), [](const path& entry) { return entry.fileName().endsWith(".tmp"); }));
    EXPECT_FALSE(path::exist(NString(tree + "/drop.tmp")));
    EXPECT_TRUE(path::exist(NString(tree + "/keep.xml")));
}

TEST(NFileSystemDirectory, RemoveOfAFileOrNothingFails) {
    TemporaryDirectory root;
    TemporaryDirectory::write(root.file("f"), "x");
    EXPECT_FALSE(directory::remove(NString(root.file("f")), {}));
    EXPECT_FALSE(directory::remove(NString(root.file("none")), {}));
    EXPECT_TRUE(path::exist(NString(root.file("f"))));
}

TEST(NFileSystemDirectory, TraverseVisitsDirectEntriesAndStopsOnFalse) {
    TemporaryDirectory root;
    TemporaryDirectory::write(root.file("1"), "");
    TemporaryDirectory::write(root.file("2"), "");
    ASSERT_TRUE(directory::create(NString(root.file("sub")), 0755));
    TemporaryDirectory::write(root.file("sub/inner"), "");
    std::vector<std::string> seen;
    EXPECT_TRUE(directory::traverse(NString(root.path()), [&](const path& entry) {
        seen.push_back(entry.fileName().toStdString());
        return true;
    }));
    std::sort(seen.begin(), seen.end());
    EXPECT_EQ(seen, (std::vector<std::string>{"1", "2", "sub"}));

    int calls = 0;
    directory::traverse(NString(root.path()), [&](const path&) { return ++calls < 1; });
    EXPECT_EQ(calls, 1);
}

TEST(NFileSystemDirectory, TraverseOfMissingDirectoryOrEmptyVisitorFails) {
    TemporaryDirectory root;
    EXPECT_FALSE(directory::traverse(NString(root.file("none")), [](const path&) { return true; }));
    EXPECT_FALSE(directory::traverse(NString(root.path()), {}));
}
