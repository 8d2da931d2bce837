#pragma once

#include "NApplication.h"
#include "NString.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace pallix::fuzz {

// A private configuration directory for the harness, made once per process and handed to the
// library as the application's configuration directory.
// It is removed with its contents when the process ends normally.
class ConfigDirectory {
public:
    ConfigDirectory() {
        const std::filesystem::path base = std::filesystem::temp_directory_path();
        std::string pattern = (base / "pallix-fuzz-stores-XXXXXX").string();
        if (::mkdtemp(&pattern[0]) == nullptr) {
            std::abort();
        }
        m_path = pattern;
        NApplication::setDirectoryConfig(NString(m_path));
    }
    ~ConfigDirectory() {
        std::error_code ignored;
        if (!m_path.empty()) {
            std::filesystem::remove_all(m_path, ignored);
        }
    }
    ConfigDirectory(const ConfigDirectory&) = delete;
    ConfigDirectory& operator=(const ConfigDirectory&) = delete;

    const std::string& path() const { return m_path; }

private:
    std::string m_path;
};

inline const std::string& configDirectory() {
    static const ConfigDirectory directory;
    return directory.path();
}

// Replaces the file at `path` with the fuzzer's input.
inline void writeFile(const std::string& path, const std::uint8_t* data, std::size_t size) {
    std::ofstream output(path, std::ios::binary | std::ios::trunc);
    if (size > 0) {
        output.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    }
}

// Replaces `name` in the configuration directory with the fuzzer's input.
inline void writeInput(const std::string& name, const std::uint8_t* data, std::size_t size) {
    std::ofstream output(configDirectory() + "/" + name, std::ios::binary | std::ios::trunc);
    if (size > 0) {
        output.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    }
}

} // namespace pallix::fuzz
