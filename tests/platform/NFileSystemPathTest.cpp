#include "NFileSystem.h"
#include "TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

using NFileSystem::path;
using pallix::test::TemporaryDirectory;

TEST(NFileSystemPath, FormatCollapsesSeparatorsAndDots) {
    EXPECT_EQ(path::format("/a//b/./c/").data(), NString("/a/b/c"));
    EXPECT_EQ(path::format("/a/b/../c").data(), NString("/a/c"));
    EXPECT_EQ(path::format("/../a").data(), NString("/a"));
    EXPECT_EQ(path::format("a/../../b").data(), NString("../b"));
    EXPECT_EQ(path::format("/").data(), NString("/"));
    EXPECT_EQ(path::format("///").data(), NString("/"));
    EXPECT_EQ(path::format("./").data(), NString("."));
    EXPECT_EQ(path::format("").data(), NString());
}

TEST(NFileSystemPath, FormatKeepsBlanksAndNonAsciiComponents) {
    EXPECT_EQ(path::format("/Users/Zoë Li//Mes documents/备份/").data(),
              NString("/Users/Zoë Li/Mes documents/备份"));
}

TEST(NFileSystemPath, NamesAndParent) {
    const path p("/data/My Files/report.tar.xml");
    EXPECT_EQ(p.fileName(), NString("report.tar.xml"));
    EXPECT_EQ(p.baseName(), NString("report.tar"));
    EXPECT_EQ(p.parent().data(), NString("/data/My Files"));
    EXPECT_EQ(path("/top").parent().data(), NString("/"));
    EXPECT_EQ(path("plain").parent().data(), NString());
    EXPECT_EQ(path(".hidden").baseName(), NString(".hidden"));
    EXPECT_EQ(path("noextension").baseName(), NString("noextension"));
}

TEST(NFileSystemPath, ExistenceChecksTellFilesFromDirectories) {
    TemporaryDirectory directory;
    const std::string file = directory.file("ünïcode file.txt");
    TemporaryDirectory::write(file, "x");
    EXPECT_TRUE(path::exist(NString(file)));
    EXPECT_TRUE(path::isFile(NString(file)));
    EXPECT_FALSE(path::isDirectory(NString(file)));
    EXPECT_TRUE(path::isDirectory(NString(directory.path())));
    EXPECT_FALSE(path::isFile(NString(directory.path())));
    EXPECT_FALSE(path::exist(NString(directory.file("missing"))));
    EXPECT_FALSE(path::exist(path()));
}
