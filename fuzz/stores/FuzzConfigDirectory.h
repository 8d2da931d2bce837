#pragma once

// A private configuration directory for the store harnesses, made on first use and removed
// when the process ends.

#include "NApplication.h"

#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace pallix::fuzz {

inline const std::string& configDirectory() {
    static const std::string directory = [] {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "pallix-fuzz-stores-XXXXXX").string();
        if (::mkdtemp(&pattern[0]) == nullptr) {
            std::abort();
        }
        static const std::string removed = pattern;
        std::atexit([] {
            std::error_code ignored;
            std::filesystem::remove_all(removed, ignored);
        });
        NApplication::setDirectoryConfig(NString(pattern));
        return pattern;
    }();
    return directory;
}

inline void writeFile(const std::string& path, const std::uint8_t* data, std::size_t size) {
    std::ofstream output(path, std::ios::binary | std::ios::trunc);
    output.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
}

} // namespace pallix::fuzz
