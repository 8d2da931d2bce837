// The two string converters are part of the library's interface; the datum constants and the
// offset polynomials are global but stay inside the library.

#include "ToolRunner.h"

#include <gtest/gtest.h>

#include <cctype>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

// "nm -C" lines: "value type name", the name without its symbol version.
std::multiset<std::string> symbols(const std::vector<std::string>& options, bool localOnly) {
    std::vector<std::string> arguments = options;
    arguments.push_back("-C");
    arguments.push_back(PALLIX_LIBRARY_PATH);
    const auto result = pallix::test::runProgram("nm", arguments);
    EXPECT_EQ(result.status, 0) << result.errors;
    std::multiset<std::string> names;
    std::istringstream lines(result.output);
    std::string line;
    while (std::getline(lines, line)) {
        std::istringstream fields(line);
        std::string value;
        std::string type;
        fields >> value >> type;
        std::string name;
        std::getline(fields >> std::ws, name);
        const auto version = name.find('@');
        if (version != std::string::npos) {
            name.erase(version);
        }
        if (type.size() != 1 || name.empty()) {
            continue;
        }
        const bool local = std::islower(static_cast<unsigned char>(type[0])) != 0;
        if (!localOnly || local) {
            names.insert(name);
        }
    }
    return names;
}

const char* const internalNames[] = {
    "PI", "x_PI", "_ValueA", "ee", "transformlat(double, double)", "transformlng(double, double)"};

} // namespace

TEST(UtilitySymbols, ConvertersAreExported) {
    const auto exported = symbols({"-D", "--defined-only"}, false);
    EXPECT_TRUE(exported.count("_80BAEFCF_853E_40F2_B25F_0FB5B8F4D46F(QString const&)"));
    EXPECT_TRUE(exported.count("_8DED8C8F_6CBD_1C36_CF6E_06CEC0522A4B(NString const&)"));
    EXPECT_TRUE(exported.count("PRuntimeLocation::WGS84_TO_GCJ02(double*, double*) const"));
    EXPECT_TRUE(exported.count("PRuntimeLocation::GCJ02_TO_WGS84_EXACT(double*, double*) const"));
    EXPECT_TRUE(exported.count("vtable for PRuntimeAnimation"));
}

TEST(UtilitySymbols, DatumConstantsAndPolynomialsAreNotExported) {
    const auto exported = symbols({"-D", "--defined-only"}, false);
    for (const char* name : internalNames) {
        EXPECT_EQ(exported.count(name), 0u) << name;
    }
}

TEST(UtilitySymbols, DatumConstantsAndPolynomialsAreGlobalNamesInsideTheLibrary) {
    const auto local = symbols({"--defined-only"}, true);
    for (const char* name : internalNames) {
        EXPECT_EQ(local.count(name), 1u) << name;
    }
}
