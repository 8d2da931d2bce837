#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>
#include <unistd.h>

namespace pallix::fuzz {

// The fuzzer's bytes as a file on disk, since the tables only read from a path. The file is
// removed when the object goes away.
class InputFile {
public:
    InputFile(const std::uint8_t* data, std::size_t size) {
        std::error_code error;
        std::string name =
            (std::filesystem::temp_directory_path(error) / "pallix-fuzz-XXXXXX").string();
        const int fd = error ? -1 : ::mkstemp(&name[0]);
        if (fd < 0) {
            return;
        }
        std::size_t written = 0;
        while (written < size) {
            const ssize_t n = ::write(fd, data + written, size - written);
            if (n <= 0) {
                break;
            }
            written += static_cast<std::size_t>(n);
        }
        ::close(fd);
        m_path = name;
    }
    ~InputFile() {
        if (!m_path.empty()) {
            std::remove(m_path.c_str());
        }
    }
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    bool valid() const { return !m_path.empty(); }
    const std::string& path() const { return m_path; }

private:
    std::string m_path;
};

// A few bytes of the input turned into a number, so that lookups vary with the input.
inline unsigned long long inputNumber(const std::uint8_t* data, std::size_t size,
                                      std::size_t offset, std::size_t width) {
    unsigned long long value = 0;
    for (std::size_t i = 0; i < width && offset + i < size; ++i) {
        value = (value << 8) | data[offset + i];
    }
    return value;
}

} // namespace pallix::fuzz
