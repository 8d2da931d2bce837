// The library's dynamic symbol table holds its public API and nothing else: no pugixml, no
// internal helper, no standard-library instantiation.

#include "ToolRunner.h"

#include <gtest/gtest.h>

#include <algorithm>

#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

std::vector<std::string> definedDynamicSymbols() {
    const auto result =
        pallix::test::runProgram("nm", {"-D", "--defined-only", "-C", PALLIX_LIBRARY_PATH});
    EXPECT_EQ(result.status, 0) << result.errors;
    std::vector<std::string> symbols;
    std::istringstream lines(result.output);
    std::string line;
    while (std::getline(lines, line)) {
        // "value type name": the demangled name may hold blanks, the first two fields do not.
        std::istringstream fields(line);
        std::string value;
        std::string type;
        fields >> value >> type;
        std::string name;
        std::getline(fields >> std::ws, name);
        // Drop the symbol version ("name@@PALLIX_RUNTIME_5").
        const auto version = name.find('@');
        if (version != std::string::npos) {
            name.erase(version);
        }
        if (!name.empty()) {
            symbols.push_back(name);
        }
    }
    return symbols;
}

bool isPublic(const std::string& symbol) {
    static const std::regex publicApi(
        R"(^((vtable|typeinfo|typeinfo name) for )?(PRuntime[A-Za-z]*|_PALLIX_RUNTIME_CONFIG[A-Z_]*)\b.*)"
        R"(|^_globalFrameworkConfig$)"
        R"(|^(NevorFrameworkConfigDirectoryDefault|_Pallix_Runtime_Dynamic_Library_Init|)"
        R"(_Pallix_Runtime_Dynamic_Library_Fini|_80BAEFCF_853E_40F2_B25F_0FB5B8F4D46F|)"
        R"(_8DED8C8F_6CBD_1C36_CF6E_06CEC0522A4B)\(.*)"
        R"(|^PALLIX_RUNTIME_5$)"); // the version node itself
    return std::regex_match(symbol, publicApi);
}

} // namespace

TEST(ExportedSymbols, OnlyThePublicApiIsExported) {
    const std::vector<std::string> symbols = definedDynamicSymbols();
    ASSERT_FALSE(symbols.empty());
    for (const std::string& symbol : symbols) {
        EXPECT_TRUE(isPublic(symbol)) << "unexpected exported symbol: " << symbol;
        EXPECT_EQ(symbol.find("pugi"), std::string::npos) << symbol;
        EXPECT_EQ(symbol.find("pallix::"), std::string::npos) << symbol;
    }
}

TEST(ExportedSymbols, RootAndLoadFunctionsAreExported) {
    const std::vector<std::string> symbols = definedDynamicSymbols();
    const std::set<std::string> present(symbols.begin(), symbols.end());
    for (const char* expected :
         {"PRuntime::getInstance()", "PRuntime::freeInstance()",
          "PRuntime::_globalFrameworkRuntime", "vtable for PRuntime",
          "_Pallix_Runtime_Dynamic_Library_Init()", "_Pallix_Runtime_Dynamic_Library_Fini()",
          "vtable for PRuntimeValue"}) {
        EXPECT_TRUE(present.count(expected)) << "missing exported symbol: " << expected;
    }
}

TEST(ExportedSymbols, EveryComponentAndRecordClassIsExported) {
    const std::vector<std::string> symbols = definedDynamicSymbols();
    const std::set<std::string> present(symbols.begin(), symbols.end());
    for (const char* name : {"PRuntimeConfig",
                             "PRuntimeCloud",
                             "PRuntimeCloudApplicationHash",
                             "PRuntimeCloudDevicePluginsItem",
                             "PRuntimeCloudDeviceProcessItem",
                             "PRuntimeCpid",
                             "PRuntimeInfoCpid",
                             "PRuntimeCrashCode",
                             "PRuntimeInfoCrash",
                             "PRuntimeRestoreError",
                             "PRuntimeInfoRestoreError",
                             "PRuntimePluginMapping",
                             "PRuntimeNotify",
                             "PRuntimeNotifyItem",
                             "PRuntimePortbind",
                             "PRuntimeFactory",
                             "PRuntimeRestore",
                             "PRuntimeRestoreAutoActivate",
                             "PRuntimeRestoreCustomFirmware",
                             "PRuntimeRestoreOtherFirmware",
                             "PRuntimeString",
                             "PRuntimeLocation",
                             "PRuntimeShell",
                             "PRuntimeWindow",
                             "PRuntimePicture",
                             "PRuntimeAnimation"}) {
        EXPECT_TRUE(present.count(std::string("vtable for ") + name)) << name;
        EXPECT_TRUE(present.count(std::string("typeinfo for ") + name)) << name;
    }
}

TEST(ExportedSymbols, ConfigurationRecordAndFreeFunctionsAreExported) {
    const std::vector<std::string> symbols = definedDynamicSymbols();
    const std::set<std::string> present(symbols.begin(), symbols.end());
    EXPECT_TRUE(present.count("_globalFrameworkConfig"));
    for (const char* prefix :
         {"NevorFrameworkConfigDirectoryDefault(", "_80BAEFCF_853E_40F2_B25F_0FB5B8F4D46F(",
          "_8DED8C8F_6CBD_1C36_CF6E_06CEC0522A4B("}) {
        const bool found = std::any_of(symbols.begin(), symbols.end(),
                                       [prefix](const auto& s) { return s.rfind(prefix, 0) == 0; });
        EXPECT_TRUE(found) << prefix;
    }
}

TEST(ExportedSymbols, SonameCarriesTheMajorVersion) {
    const auto result = pallix::test::runProgram("readelf", {"-d", PALLIX_LIBRARY_PATH});
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_NE(result.output.find("Library soname: [libPallixRuntime.so.5]"), std::string::npos)
        << result.output;
}
