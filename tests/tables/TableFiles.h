#pragma once

#include <string>

namespace pallix::test {

// Edge-case tables of this subsystem, under tests/data/tables.
inline std::string tableData(const std::string& name) {
    return std::string(PALLIX_TEST_DATA_DIR) + "/tables/" + name;
}

// The shipped sample tables.
inline std::string sampleTable(const std::string& name) {
    return std::string(PALLIX_SAMPLES_DIR) + "/" + name;
}

// A path under which nothing exists.
inline std::string missingTable() {
    return std::string(PALLIX_TEST_DATA_DIR) + "/tables/no-such-table.xml";
}

} // namespace pallix::test
