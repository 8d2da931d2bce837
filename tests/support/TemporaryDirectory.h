#pragma once

#include <string>
#include <vector>

namespace pallix::test {

// A fresh directory under the system's temporary folder, removed with everything in it when
// the object goes away.
class TemporaryDirectory {
public:
    explicit TemporaryDirectory(const std::string& prefix = "pallix-test");
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const std::string& path() const { return m_path; }
    // path() + "/" + name
    std::string file(const std::string& name) const;

    // Helpers for fixtures: write and read a whole file.
    static void write(const std::string& path, const std::string& content);
    static std::string read(const std::string& path);
    // The names in a directory (without "." and ".."), sorted.
    static std::vector<std::string> entries(const std::string& directory);

private:
    std::string m_path;
};

} // namespace pallix::test
