#pragma once

// What the tests of "pallix config" share: a configuration, a resources and a home directory of
// their own, and a way to tell whether a command wrote a file.

#include "TemporaryDirectory.h"
#include "ToolRunner.h"

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <vector>

namespace pallix::test {

inline bool exists(const std::string& path) {
    struct stat info {};
    return ::lstat(path.c_str(), &info) == 0;
}

inline bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

// A file as a command may leave it: its bytes, and the inode and time that any write changes
// (the library replaces a file by renaming a new one over it).
struct FileState {
    std::string bytes;
    ino_t inode = 0;
    long long modifiedNanoseconds = 0;

    static FileState of(const std::string& path) {
        struct stat info {};
        EXPECT_EQ(::stat(path.c_str(), &info), 0) << path;
        return FileState{TemporaryDirectory::read(path), info.st_ino,
                         static_cast<long long>(info.st_mtim.tv_sec) * 1000000000LL +
                             info.st_mtim.tv_nsec};
    }
    bool operator==(const FileState& other) const {
        return bytes == other.bytes && inode == other.inode &&
               modifiedNanoseconds == other.modifiedNanoseconds;
    }
};

class ConfigToolTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::filesystem::create_directories(config());
        std::filesystem::create_directories(resources());
        std::filesystem::create_directories(home());
        std::filesystem::copy_file(std::string(PALLIX_SAMPLES_DIR) + "/UpdateCfg.xml",
                                   resources() + "/UpdateCfg.xml");
    }

    std::string config() const { return m_root.file("config"); }
    std::string resources() const { return m_root.file("resources"); }
    std::string home() const { return m_root.file("home"); }
    std::string scratch(const std::string& name) const { return m_root.file(name); }
    std::string currentFile() const { return config() + "/configure.xml"; }
    std::string legacyFile() const { return config() + "/Config.xml"; }

    // "pallix ARGS..." with the home and the default directories inside the test's folder.
    ToolResult runPlain(const std::vector<std::string>& arguments) const {
        std::vector<std::string> command{"HOME=" + home(), "XDG_CONFIG_HOME=" + home() + "/.config",
                                         "XDG_DATA_HOME=" + home() + "/.local/share",
                                         PALLIX_TOOL_PATH};
        command.insert(command.end(), arguments.begin(), arguments.end());
        return runProgram("env", command);
    }

    // "pallix config --config-dir <config> --resources-dir <resources> ARGS...".
    ToolResult run(const std::vector<std::string>& arguments) const {
        std::vector<std::string> command{"config", "--config-dir", config(), "--resources-dir",
                                         resources()};
        command.insert(command.end(), arguments.begin(), arguments.end());
        return runPlain(command);
    }

    // The written configuration, parsed.
    pugi::xml_node written(pugi::xml_document& document) const {
        EXPECT_TRUE(document.load_file(currentFile().c_str()));
        return document.child("Nevor");
    }

    void writeCurrent(const std::string& xml) const {
        TemporaryDirectory::write(currentFile(), xml);
    }

private:
    TemporaryDirectory m_root{"pallix-tool-config"};
};

} // namespace pallix::test
