#include "ScratchDirectory.h"

#include <unistd.h>

#include <filesystem>

namespace pallix::bench {

ScratchDirectory::ScratchDirectory(const std::string& label) {
    const std::filesystem::path path = std::filesystem::temp_directory_path() /
                                       ("pallix-bench-" + label + "-" + std::to_string(::getpid()));
    std::filesystem::create_directories(path);
    m_path = path.string();
}

ScratchDirectory::~ScratchDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

} // namespace pallix::bench
