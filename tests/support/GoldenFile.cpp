#include "GoldenFile.h"

#include "TemporaryDirectory.h"

#include <filesystem>

namespace pallix::test {

std::string goldenBytes(const std::string& name) {
    return TemporaryDirectory::read(std::string(PALLIX_TEST_DATA_DIR) + "/" + name);
}

bool matchesGolden(const std::string& name, const std::string& bytes, std::string& where) {
    if (goldenBytes(name) == bytes) {
        return true;
    }
    const std::filesystem::path actual =
        std::filesystem::current_path() /
        (std::filesystem::path(name).filename().string() + ".actual");
    TemporaryDirectory::write(actual.string(), bytes);
    where = actual.string();
    return false;
}

} // namespace pallix::test
