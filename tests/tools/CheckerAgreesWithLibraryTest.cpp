// Every claim of "pallix check" is the library's: for each file under tests/data/check the
// checker's findings (read back from --json) are exactly the expected ones, and the same file,
// handed to the library, behaves as the findings say: the value it reads, the row it never
// finds, the entry that wins. A fixture without such an expectation fails the suite.

#include "TemporaryDirectory.h"
#include "ToolRunner.h"

#include "PallixRuntime.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <sys/stat.h>

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

using pallix::test::runTool;
using pallix::test::TemporaryDirectory;

namespace {

using Json = nlohmann::ordered_json;

std::string dataPath(const std::string& name) {
    return std::string(PALLIX_TEST_DATA_DIR) + "/check/" + name;
}

std::string text(const NString& value) {
    return value.toStdString();
}

// One finding that the checker must make, in the order of the report.
struct Expected {
    int line;
    int column;
    const char* severity;
    const char* words; // a part of the message that carries the claim
};

struct Agreement {
    const char* fixture;
    const char* kind; // empty: found from the content
    int exitStatus;
    std::vector<Expected> findings;
    // Hands the fixture to the library and checks that it does what the findings say.
    std::function<void(const std::string& path)> library;
};

void PrintTo(const Agreement& agreement, std::ostream* out) {
    *out << agreement.fixture;
}

// Copies a fixture into a directory under the name by which the library reads it.
void place(const std::string& fixture, const std::string& path) {
    TemporaryDirectory::write(path, TemporaryDirectory::read(fixture));
}

// The configuration directory of the stores and the configuration: a fresh one per test, made
// the application's before the component is created.
struct ConfigDirectory {
    ConfigDirectory() {
        NApplication::setDirectoryConfig(NString(root.path()));
        NApplication::setDirectoryResources(NString(root.file("resources")));
    }
    std::string file(const std::string& name) const { return root.file(name); }
    TemporaryDirectory root{"pallix-agree"};
};

// Tables.

std::optional<PRuntimeInfoCpid> findCpid(const PRuntimeCpid& table, unsigned chip, unsigned board) {
    PRuntimeInfoCpid row;
    if (!table.find(NDeviceInfoRecovery(chip, board), row)) {
        return std::nullopt;
    }
    return row;
}

std::optional<PRuntimeInfoCrash> findCrash(const PRuntimeCrashCode& table, const char* key) {
    std::optional<PRuntimeInfoCrash> found;
    table.find(NString(key), [&found](const PRuntimeInfoCrash& row) { found = row; });
    return found;
}

std::vector<PRuntimeInfoCrash> crashRows(const PRuntimeCrashCode& table) {
    std::vector<PRuntimeInfoCrash> rows;
    table.traverse([&rows](const PRuntimeInfoCrash& row) { rows.push_back(row); });
    return rows;
}

std::optional<PRuntimeInfoRestoreError> findRestoreError(const PRuntimeRestoreError& table,
                                                         long long code) {
    std::optional<PRuntimeInfoRestoreError> found;
    table.find(code, [&found](const PRuntimeInfoRestoreError& row) { found = row; });
    return found;
}

std::optional<std::string> findMapping(const PRuntimePluginMapping& table, const char* version) {
    NString out;
    if (!table.find(NString(version), out)) {
        return std::nullopt;
    }
    return text(out);
}

void loadCpid(PRuntimeCpid& table, const std::string& path) {
    ASSERT_TRUE(table.format(NString(path)));
}

// Stores.

std::map<unsigned long long, std::map<std::string, std::string>>
factoryDevices(PRuntimeFactory& store) {
    std::map<unsigned long long, std::map<std::string, std::string>> devices;
    store.traverse([&devices](unsigned long long id, const NDeviceInfoFactory& info) {
        info.traverse([&](const NString& key, const NByteArray& value) {
            devices[id][text(key)] = value.toStdString();
        });
    });
    return devices;
}

// Every reader of the library, handed the file: what each of them keeps.
void expectNoReaderTakesAnything(const std::string& path) {
    PRuntimeCpid cpid;
    cpid.format(NString(path));
    EXPECT_FALSE(findCpid(cpid, 0x8020, 0x00));
    PRuntimeCrashCode crash;
    crash.format(NString(path));
    EXPECT_TRUE(crashRows(crash).empty());
    PRuntimeRestoreError restore;
    restore.format(NString(path));
    EXPECT_FALSE(findRestoreError(restore, 0));
    PRuntimePluginMapping mapping;
    mapping.format(NString(path));
    EXPECT_FALSE(findMapping(mapping, "1.0"));
    PRuntimeCloud cloud;
    cloud.format(NString(path));
    EXPECT_EQ(text(cloud.application_hash_cpid().name()), "");
    EXPECT_EQ(cloud.cooperate_hsb_device_authorize_ipport(), 0);
}

std::vector<Agreement> agreements() {
    return {
        // The cloud document.
        {"cloud-bad-address.xml",
         "",
         1,
         {{8, 64, "error", "\"ftp://example.invalid/b.xml\", not an http or https address"}},
         [](const std::string& path) {
             PRuntimeCloud cloud;
             ASSERT_TRUE(cloud.format(NString(path)));
             // The application is handed the address as written.
             EXPECT_EQ(text(cloud.application_hash_cpid().url()), "ftp://example.invalid/b.xml");
         }},
        {"cloud-bad-digest.xml",
         "",
         1,
         {{8, 25, "error", "the MD5 digest of \"CPID\" is \"12345\""}},
         [](const std::string& path) {
             PRuntimeCloud cloud;
             ASSERT_TRUE(cloud.format(NString(path)));
             EXPECT_EQ(text(cloud.application_hash_cpid().hash()), "12345");
         }},
        {"cloud-bad-plugin.xml",
         "",
         1,
         {{13, 31, "error",
           "address of plug-in package \"16.0\" is \"www.example.invalid/developer-16.0.zip\""},
          {13, 76, "error",
           "digest of plug-in package \"16.0\" is \"447df296b406116053af27b390784af\""},
          {14, 80, "error",
           "digest of plug-in package \"17.0\" is \"447df296b406116053af27b390784afz\""}},
         [](const std::string& path) {
             PRuntimeCloud cloud;
             ASSERT_TRUE(cloud.format(NString(path)));
             const PRuntimeCloudDevicePluginsItem first =
                 cloud.device_plugins_find_by_rvq(NString("16.0"));
             EXPECT_EQ(text(first.url()), "www.example.invalid/developer-16.0.zip");
             EXPECT_EQ(text(first.hash()), "447df296b406116053af27b390784af");
             EXPECT_EQ(text(cloud.device_plugins_find_by_rvq(NString("17.0")).hash()),
                       "447df296b406116053af27b390784afz");
         }},
        {"cloud-bad-port.xml",
         "",
         1,
         {{13, 40, "error", "it is read as 4464"}},
         [](const std::string& path) {
             PRuntimeCloud cloud;
             ASSERT_TRUE(cloud.format(NString(path)));
             EXPECT_EQ(cloud.cooperate_hsb_device_authorize_ipport(), 4464);
         }},
        {"cloud-catch-all-rule.xml",
         "",
         1,
         {{14, 9, "warning", "the rules after it are never reached"}},
         [](const std::string& path) {
             PRuntimeCloud cloud;
             ASSERT_TRUE(cloud.format(NString(path)));
             // "abcdef" is what the second rule is for; the first takes it.
             for (const char* name : {"abcdef", "other"}) {
                 std::vector<std::string> rules;
                 EXPECT_TRUE(cloud.device_process_application_find(
                     NString(name), [&rules](const PRuntimeCloudDeviceProcessItem& rule) {
                         rules.push_back(text(rule.name()));
                     }));
                 EXPECT_EQ(rules, std::vector<std::string>{"Any"}) << name;
             }
         }},
        {"cloud-duplicate-name.xml",
         "",
         1,
         {{9, 13, "warning", "\"CPID\" is listed again; only the first entry is used"}},
         [](const std::string& path) {
             PRuntimeCloud cloud;
             ASSERT_TRUE(cloud.format(NString(path)));
             EXPECT_EQ(text(cloud.application_hash_cpid().url()),
                       "https://example.invalid/CPID.xml");
         }},
        {"cloud-duplicate-plugin.xml",
         "",
         1,
         {{14, 13, "warning", "\"15.0\" in \"DeveloperPlugins\" is listed again; only the first"}},
         [](const std::string& path) {
             PRuntimeCloud cloud;
             ASSERT_TRUE(cloud.format(NString(path)));
             EXPECT_EQ(text(cloud.device_plugins_find(NString("15.0")).url()),
                       "https://example.invalid/a");
         }},
        {"cloud-findings-in-position-order.xml",
         "",
         1,
         {{3, 5, "error", "\"RestoreVersion\" is missing"},
          {6, 32, "error", "the MD5 digest of \"RestoreCode\" is \"12345\""},
          {12, 31, "error", "plug-in package \"16.0\" is \"example.invalid/p.zip\""},
          {12, 59, "error", "plug-in package \"16.0\" is \"0123\""}},
         [](const std::string& path) {
             PRuntimeCloud cloud;
             ASSERT_TRUE(cloud.format(NString(path)));
             EXPECT_EQ(text(cloud.application_hash_restore_version().name()), "");
             EXPECT_EQ(text(cloud.application_hash_restore_version().url()), "");
             EXPECT_EQ(text(cloud.application_hash_restore_code().hash()), "12345");
             const PRuntimeCloudDevicePluginsItem package =
                 cloud.device_plugins_find(NString("16.0"));
             EXPECT_EQ(text(package.url()), "example.invalid/p.zip");
             EXPECT_EQ(text(package.hash()), "0123");
         }},
        {"cloud-missing-entry.xml",
         "",
         1,
         {{3, 5, "error", "the reference file \"RestoreVersion\" is missing"}},
         [](const std::string& path) {
             PRuntimeCloud cloud;
             ASSERT_TRUE(cloud.format(NString(path)));
             const PRuntimeCloudApplicationHash entry = cloud.application_hash_restore_version();
             EXPECT_EQ(text(entry.name()), "");
             EXPECT_EQ(text(entry.hash()), "");
             EXPECT_EQ(text(entry.url()), "");
             EXPECT_EQ(text(cloud.application_hash_cpid().name()), "CPID");
         }},
        {"cloud-repeated-element.xml",
         "",
         1,
         {{3, 5, "error", "the reference file \"RestoreVersion\" is missing"},
          {9, 5, "warning", "\"Hash\" appears again in \"Application\""}},
         [](const std::string& path) {
             PRuntimeCloud cloud;
             ASSERT_TRUE(cloud.format(NString(path)));
             // The second "Hash" holds it, and is never read.
             EXPECT_EQ(text(cloud.application_hash_restore_version().url()), "");
             EXPECT_EQ(text(cloud.application_hash_cpid().url()),
                       "https://example.invalid/CPID.xml");
         }},
        {"cloud-unknown-reference-name.xml",
         "",
         1,
         {{9, 13, "warning", "\"Cpid\" is not one that the application looks up"},
          {10, 13, "warning", "\"Firmware\" is not one that the application looks up"}},
         [](const std::string& path) {
             PRuntimeCloud cloud;
             ASSERT_TRUE(cloud.format(NString(path)));
             const std::vector<PRuntimeCloudApplicationHash> entries{
                 cloud.application_hash_cpid(), cloud.application_hash_crash_code(),
                 cloud.application_hash_restore_code(), cloud.application_hash_restore_version(),
                 cloud.application_hash_developer_plugin_mapping()};
             for (const PRuntimeCloudApplicationHash& entry : entries) {
                 EXPECT_NE(text(entry.url()), "https://example.invalid/cpid-lower.xml");
                 EXPECT_NE(text(entry.url()), "https://example.invalid/firmware.xml");
                 EXPECT_NE(text(entry.name()), "");
             }
         }},

        // The configuration.
        {"config-duplicate-key.xml",
         "",
         1,
         {{4, 9, "warning", "lists \"Data\" again; only the first entry is kept"}},
         [](const std::string& path) {
             ConfigDirectory directory;
             place(path, directory.file("configure.xml"));
             PRuntimeConfig* config = PRuntime::getInstance()->config();
             config->load_new();
             EXPECT_EQ(text(config->getConfigDirectory(NString("Data"))), "/a");
         }},
        {"config-repeated-element.xml",
         "",
         1,
         {{4, 2, "warning", "whose Value is \"A1B2C3\", so this one is ignored"},
          {8, 2, "warning", "\"Status\" appears again in \"Nevor\""}},
         [](const std::string& path) {
             ConfigDirectory directory;
             place(path, directory.file("configure.xml"));
             PRuntimeConfig* config = PRuntime::getInstance()->config();
             config->load_new();
             EXPECT_EQ(text(config->getLastSkin()), "A1B2C3");
             EXPECT_TRUE(config->getSettingStatus(NString("WindowAnimation")));
             // Set in the second "Status" only; its default is false.
             EXPECT_FALSE(config->getSettingStatus(NString("WiFiConnect")));
         }},
        {"config-speed-beyond-32-bits.xml",
         "",
         1,
         {{4, 20, "error", "it is read as 2147483647, so it does not survive a load"}},
         [](const std::string& path) {
             ConfigDirectory directory;
             place(path, directory.file("configure.xml"));
             PRuntimeConfig* config = PRuntime::getInstance()->config();
             config->load_new();
             EXPECT_EQ(config->getDownloadMaxSpeed(), 2147483647LL);
         }},
        {"config-unknown-setting.xml",
         "",
         1,
         {{4, 9, "warning", "only carried along, read and written back as it is"}},
         [](const std::string& path) {
             ConfigDirectory directory;
             place(path, directory.file("configure.xml"));
             PRuntimeConfig* config = PRuntime::getInstance()->config();
             config->load_new();
             EXPECT_TRUE(config->getSettingStatus(NString("NoSuchSetting")));
             config->save();
             const std::string written = TemporaryDirectory::read(directory.file("configure.xml"));
             EXPECT_NE(written.find("<Item Name=\"NoSuchSetting\" Status=\"true\" />"),
                       std::string::npos)
                 << written;
         }},
        {"legacy-speed-beyond-32-bits.xml",
         "",
         1,
         {{3, 21, "error", "it is read as 2147483647, so it is not imported as written"}},
         [](const std::string& path) {
             ConfigDirectory directory;
             place(path, directory.file("Config.xml"));
             PRuntimeConfig* config = PRuntime::getInstance()->config();
             config->load_old();
             EXPECT_EQ(config->getDownloadMaxSpeed(), 2147483647LL);
         }},
        {"version-empty.xml",
         "",
         1,
         {{4, 3, "error", "the running version is empty"}},
         [](const std::string& path) {
             ConfigDirectory directory;
             ASSERT_EQ(::mkdir(directory.file("resources").c_str(), 0755), 0);
             place(path, directory.file("resources/UpdateCfg.xml"));
             PRuntimeConfig* config = PRuntime::getInstance()->config();
             config->initialize();
             EXPECT_EQ(text(config->version()), "");
         }},
        {"version-no-control.xml",
         "",
         1,
         {{2, 1, "error", "the running version falls back to \"5.0.0\""}},
         [](const std::string& path) {
             ConfigDirectory directory;
             ASSERT_EQ(::mkdir(directory.file("resources").c_str(), 0755), 0);
             place(path, directory.file("resources/UpdateCfg.xml"));
             PRuntimeConfig* config = PRuntime::getInstance()->config();
             config->initialize();
             EXPECT_EQ(text(config->version()), "5.0.0");
         }},

        // The chip identifier table.
        {"cpid-boolean-with-blank.xml",
         "",
         1,
         {{2, 85, "warning", "SUPPORT=\" true\" is not a boolean word; it is read as false"}},
         [](const std::string& path) {
             PRuntimeCpid table;
             loadCpid(table, path);
             const auto row = findCpid(table, 0x8020, 0x00);
             ASSERT_TRUE(row);
             EXPECT_FALSE(row->support());
         }},
        {"cpid-duplicate-pair.xml",
         "",
         1,
         {{4, 3, "warning", "repeats an earlier row; this later row is never found"}},
         [](const std::string& path) {
             PRuntimeCpid table;
             loadCpid(table, path);
             const auto row = findCpid(table, 0x8020, 0x0C);
             ASSERT_TRUE(row);
             EXPECT_EQ(text(row->mode()), "B");
         }},
        {"cpid-lower-case-chip.xml",
         "",
         1,
         {{3, 8, "error", "CPID \"80a0\" is never found"}},
         [](const std::string& path) {
             PRuntimeCpid table;
             loadCpid(table, path);
             EXPECT_FALSE(findCpid(table, 0x80A0, 0x00));
             EXPECT_TRUE(findCpid(table, 0x8020, 0x00));
         }},
        {"cpid-missing-texts.xml",
         "",
         1,
         {{2, 3, "warning", "has no MODE: the device's model name is shown as an empty text"},
          {2, 3, "warning", "has no PRODUCT"},
          {2, 3, "warning", "has no NETWORK"},
          {3, 30, "warning", "has an empty MODE"}},
         [](const std::string& path) {
             PRuntimeCpid table;
             loadCpid(table, path);
             const auto bare = findCpid(table, 0x8020, 0x00);
             ASSERT_TRUE(bare);
             EXPECT_EQ(text(bare->mode()), "");
             EXPECT_EQ(text(bare->product()), "");
             EXPECT_EQ(text(bare->network()), "");
             const auto emptyMode = findCpid(table, 0x8020, 0x0C);
             ASSERT_TRUE(emptyMode);
             EXPECT_EQ(text(emptyMode->mode()), "");
             EXPECT_EQ(text(emptyMode->product()), "iPhone12,1");
         }},
        {"cpid-no-default.xml",
         "",
         1,
         {{3, 3, "warning", "chip 8030 has no board-00 default row: its other boards are not"}},
         [](const std::string& path) {
             PRuntimeCpid table;
             loadCpid(table, path);
             EXPECT_TRUE(findCpid(table, 0x8030, 0x0C));
             EXPECT_FALSE(findCpid(table, 0x8030, 0x0D));
             EXPECT_FALSE(findCpid(table, 0x8030, 0x00));
         }},
        {"cpid-repeated-attribute.xml",
         "",
         1,
         {{2, 47, "error", "the library's reader takes the first, \"iPhone 11\""}},
         [](const std::string& path) {
             PRuntimeCpid table;
             loadCpid(table, path);
             const auto row = findCpid(table, 0x8020, 0x00);
             ASSERT_TRUE(row);
             EXPECT_EQ(text(row->mode()), "iPhone 11");
         }},
        {"cpid-short-board.xml",
         "",
         1,
         {{3, 20, "error", "BDID \"C\" is never found"}},
         [](const std::string& path) {
             PRuntimeCpid table;
             loadCpid(table, path);
             // Board 0x0C falls back to the chip's default row, never to the "C" row.
             const auto row = findCpid(table, 0x8020, 0x0C);
             ASSERT_TRUE(row);
             EXPECT_EQ(text(row->bdid()), "00");
         }},
        {"cpid-wide-board.xml",
         "",
         1,
         {{4, 20, "error", "BDID \"01AB\" is never found"}},
         [](const std::string& path) {
             PRuntimeCpid table;
             loadCpid(table, path);
             // A board wider than two digits is looked up with all its digits and no more.
             const auto wide = findCpid(table, 0x8020, 0x1AB);
             ASSERT_TRUE(wide);
             EXPECT_EQ(text(wide->mode()), "iPhone Wide");
             // No board is ever written with a leading zero beyond two digits.
             EXPECT_EQ(text(wide->bdid()), "1AB");
         }},
        {"cpid-second-root.xml",
         "",
         1,
         {{4, 1, "error",
           "another top-level element \"DEVICE\" after \"DEVICE\": the library's reader takes "
           "only the first top-level \"DEVICE\" and reads nothing from this one; other XML "
           "parsers reject the file"}},
         [](const std::string& path) {
             PRuntimeCpid table;
             loadCpid(table, path);
             EXPECT_TRUE(findCpid(table, 0x8020, 0x00));
             EXPECT_FALSE(findCpid(table, 0x8030, 0x00));
         }},
        {"cpid-root-after-other-element.xml",
         "cpid",
         1,
         {{2, 1, "error",
           "another top-level element \"DEVICE\" after \"CRASH\": the library's reader looks up "
           "its root \"DEVICE\" by name and reads it from this element, not from \"CRASH\"; "
           "other XML parsers reject the file"}},
         [](const std::string& path) {
             PRuntimeCpid table;
             loadCpid(table, path);
             const auto row = findCpid(table, 0x8020, 0x00);
             ASSERT_TRUE(row);
             EXPECT_EQ(text(row->mode()), "iPhone 11");
         }},
        {"wrong-root.xml",
         "cpid",
         1,
         {{2, 1, "error", "the root element is \"CRASH\", not \"DEVICE\"; nothing in the file"}},
         [](const std::string& path) {
             PRuntimeCpid table;
             EXPECT_TRUE(table.format(NString(path)));
             for (unsigned chip : {0x8020u, 0x0u, 0x8101u}) {
                 EXPECT_FALSE(findCpid(table, chip, 0x00));
             }
         }},

        // The crash code table.
        {"crash-declared-entity.xml",
         "",
         1,
         {{4, 30, "error", "it keeps the text \"&product;\" in REASON"}},
         [](const std::string& path) {
             PRuntimeCrashCode table;
             ASSERT_TRUE(table.format(NString(path)));
             const auto row = findCrash(table, "Timeout");
             ASSERT_TRUE(row);
             EXPECT_EQ(text(row->reason()), "&product; lost the device");
         }},
        {"crash-duplicate-key.xml",
         "",
         1,
         {{4, 8, "warning", "repeats \"AMRestore\" (case ignored); this later row is never"}},
         [](const std::string& path) {
             PRuntimeCrashCode table;
             ASSERT_TRUE(table.format(NString(path)));
             ASSERT_EQ(crashRows(table).size(), 3u);
             for (const char* query : {"amrestore", "AMRESTORE failed", "restore", "amrestore"}) {
                 const auto row = findCrash(table, query);
                 ASSERT_TRUE(row) << query;
                 EXPECT_EQ(text(row->key()), "AMRestore") << query;
             }
         }},
        {"crash-key-contains-earlier-key.xml",
         "",
         1,
         {{3, 8, "warning",
           "every text that contains KEY \"AMRestore\" also contains the earlier KEY "
           "\"Restore\", whose row comes first"}},
         [](const std::string& path) {
             PRuntimeCrashCode table;
             ASSERT_TRUE(table.format(NString(path)));
             for (const char* query : {"AMRestore", "amrestore failed", "Restore"}) {
                 const auto row = findCrash(table, query);
                 ASSERT_TRUE(row) << query;
                 EXPECT_EQ(text(row->key()), "Restore") << query;
             }
             // Found only for a text that its key contains and the earlier key does not match.
             const auto later = findCrash(table, "AMR");
             ASSERT_TRUE(later);
             EXPECT_EQ(text(later->key()), "AMRestore");
         }},
        {"crash-empty-key.xml",
         "",
         1,
         {{3, 8, "error", "empty KEY matches every text, so every row after it is never found"},
          {4, 3, "warning", "this row is never found"}},
         [](const std::string& path) {
             PRuntimeCrashCode table;
             ASSERT_TRUE(table.format(NString(path)));
             for (const char* query : {"Timeout", "anything else"}) {
                 const auto row = findCrash(table, query);
                 ASSERT_TRUE(row) << query;
                 EXPECT_EQ(text(row->key()), "") << query;
             }
         }},
        {"crash-forbidden-character.xml",
         "",
         1,
         {{2, 20, "error", "ends KEY at it: KEY is read as \"Restore\""},
          {2, 44, "warning", "takes it as U+0007 in REASON"},
          {2, 64, "warning", "takes it as bytes that are not UTF-8 in SOLUTION"},
          {2, 83, "warning", "takes it as U+FFFE (not a character) in SOLUTION"},
          {2, 91, "warning",
           "\"&#4294967361;\" is not allowed in XML 1.0: the library's reader "
           "takes it as U+0041 in SOLUTION"},
          {2, 104, "warning", "takes it as U+001F in SOLUTION"}},
         [](const std::string& path) {
             PRuntimeCrashCode table;
             ASSERT_TRUE(table.format(NString(path)));
             const std::vector<PRuntimeInfoCrash> rows = crashRows(table);
             ASSERT_EQ(rows.size(), 1u);
             EXPECT_EQ(text(rows[0].key()), "Restore");
             EXPECT_EQ(text(rows[0].reason()), "Bell\x07");
             // The value as pugixml decodes it: a surrogate and U+FFFE as their three-byte forms,
             // and a decimal reference beyond 32 bits wrapped around to "A".
             EXPECT_EQ(text(rows[0].solution()), "Try \xED\xA0\x80"
                                                 "again A\xEF\xBF\xBE"
                                                 "A\x1F");
         }},
        {"crash-missing-texts.xml",
         "",
         1,
         {{2, 3, "warning", "has no REASON: the reason of a failure it matches is shown as an"},
          {2, 3, "warning", "has no SOLUTION"},
          {3, 19, "warning", "has an empty REASON"}},
         [](const std::string& path) {
             PRuntimeCrashCode table;
             ASSERT_TRUE(table.format(NString(path)));
             const auto timeout = findCrash(table, "Timeout");
             ASSERT_TRUE(timeout);
             EXPECT_EQ(text(timeout->reason()), "");
             EXPECT_EQ(text(timeout->solution()), "");
             const auto nand = findCrash(table, "NAND");
             ASSERT_TRUE(nand);
             EXPECT_EQ(text(nand->reason()), "");
             EXPECT_EQ(text(nand->solution()), "Repeat the restore.");
         }},
        {"crash-unknown-entity.xml",
         "",
         1,
         {{2, 45, "error", "keeps the text \"&nbsp;\" in REASON"},
          {2, 72, "warning", "keeps it as written in SOLUTION"}},
         [](const std::string& path) {
             PRuntimeCrashCode table;
             ASSERT_TRUE(table.format(NString(path)));
             const auto row = findCrash(table, "Timeout");
             ASSERT_TRUE(row);
             EXPECT_EQ(text(row->reason()), "Tom & Jerry&nbsp;left");
             EXPECT_EQ(text(row->solution()), "Salt & pepper");
         }},

        {"crash-text-between-rows.xml",
         "",
         1,
         {{2, 3, "warning", "text inside \"CRASH\" is not read"}},
         [](const std::string& path) {
             PRuntimeCrashCode table;
             ASSERT_TRUE(table.format(NString(path)));
             const std::vector<PRuntimeInfoCrash> rows = crashRows(table);
             ASSERT_EQ(rows.size(), 1u);
             EXPECT_EQ(text(rows[0].key()), "Timeout");
         }},

        {"crash-text-outside-root.xml",
         "",
         1,
         {{1, 1, "error",
           "text before the root element: the library's reader ignores it; other XML parsers "
           "reject the file"},
          {5, 1, "error", "text after the root element: the library's reader ignores it"}},
         [](const std::string& path) {
             PRuntimeCrashCode table;
             ASSERT_TRUE(table.format(NString(path)));
             const std::vector<PRuntimeInfoCrash> rows = crashRows(table);
             ASSERT_EQ(rows.size(), 1u);
             EXPECT_EQ(text(rows[0].key()), "Timeout");
             EXPECT_EQ(text(rows[0].solution()), "s");
         }},
        {"crash-less-than-in-value.xml",
         "",
         1,
         {{2, 32, "error",
           "\"<\" inside the value of \"REASON\": the library's reader keeps it and reads REASON "
           "as \"1 < 2\"; other XML parsers reject the file"}},
         [](const std::string& path) {
             PRuntimeCrashCode table;
             ASSERT_TRUE(table.format(NString(path)));
             const auto row = findCrash(table, "Timeout");
             ASSERT_TRUE(row);
             EXPECT_EQ(text(row->reason()), "1 < 2");
         }},
        {"crash-double-hyphen-comment.xml",
         "",
         1,
         {{2, 13, "error",
           "\"--\" inside a comment, which XML does not allow: the library's reader skips the "
           "comment up to the first \"-->\"; other XML parsers reject the file"},
          {4, 16, "error",
           "a comment ending in \"--->\", which XML does not allow: the library's reader skips "
           "the comment; other XML parsers reject the file"}},
         [](const std::string& path) {
             PRuntimeCrashCode table;
             ASSERT_TRUE(table.format(NString(path)));
             const std::vector<PRuntimeInfoCrash> rows = crashRows(table);
             ASSERT_EQ(rows.size(), 1u);
             EXPECT_EQ(text(rows[0].key()), "Timeout");
         }},
        {"crash-declared-encoding.xml",
         "",
         1,
         {{1, 31, "error",
           "the XML declaration names the encoding \"ISO-8859-1\": the library reads the file as "
           "UTF-8 whatever the declaration says"},
          {3, 33, "error",
           "byte 0xE9 is not UTF-8 (the first such byte in the file): the library reads the file "
           "as UTF-8 and keeps the byte unchanged in the text it reads"}},
         [](const std::string& path) {
             PRuntimeCrashCode table;
             ASSERT_TRUE(table.format(NString(path)));
             const auto row = findCrash(table, "Timeout");
             ASSERT_TRUE(row);
             // The byte as written, not the "\xC3\xA9" of the declared encoding's e acute.
             EXPECT_EQ(text(row->reason()), "Caf\xE9");
         }},

        // The restore error table.
        {"restore-bad-code.xml",
         "",
         1,
         {{3, 8, "error", "is not a whole number; the row is stored under code 0"}},
         [](const std::string& path) {
             PRuntimeRestoreError table;
             ASSERT_TRUE(table.format(NString(path)));
             const auto row = findRestoreError(table, 0);
             ASSERT_TRUE(row);
             EXPECT_EQ(text(row->describe()), "twelve");
         }},
        {"restore-duplicate-code.xml",
         "",
         1,
         {{4, 8, "warning", "code 16 repeats an earlier row; this later row is ignored"}},
         [](const std::string& path) {
             PRuntimeRestoreError table;
             ASSERT_TRUE(table.format(NString(path)));
             const auto row = findRestoreError(table, 16);
             ASSERT_TRUE(row);
             EXPECT_EQ(text(row->describe()), "hexadecimal");
         }},
        {"restore-missing-code.xml",
         "",
         1,
         {{3, 3, "error", "the row has no CODE; it is stored under code 0"}},
         [](const std::string& path) {
             PRuntimeRestoreError table;
             ASSERT_TRUE(table.format(NString(path)));
             const auto row = findRestoreError(table, 0);
             ASSERT_TRUE(row);
             EXPECT_EQ(text(row->describe()), "no code");
         }},
        {"restore-missing-texts.xml",
         "",
         1,
         {{2, 3, "warning", "has no DESCRIBE: the description of the error is shown as an"},
          {2, 3, "warning", "has no SOLUTION"},
          {3, 56, "warning", "has an empty SOLUTION"}},
         [](const std::string& path) {
             PRuntimeRestoreError table;
             ASSERT_TRUE(table.format(NString(path)));
             const auto bare = findRestoreError(table, -1);
             ASSERT_TRUE(bare);
             EXPECT_EQ(text(bare->describe()), "");
             EXPECT_EQ(text(bare->solution()), "");
             const auto noSolution = findRestoreError(table, 4013);
             ASSERT_TRUE(noSolution);
             EXPECT_EQ(text(noSolution->describe()), "The device disconnected.");
             EXPECT_EQ(text(noSolution->solution()), "");
         }},

        // The plug-in mapping table.
        {"mapping-duplicate-version.xml",
         "",
         1,
         {{4, 9, "warning", "Version \"1.0\" repeats an earlier row; this later row is ignored"}},
         [](const std::string& path) {
             PRuntimePluginMapping table;
             ASSERT_TRUE(table.format(NString(path)));
             EXPECT_EQ(findMapping(table, "1.0"), std::optional<std::string>("a"));
         }},
        {"mapping-empty-mapping.xml",
         "",
         1,
         {{3, 3, "error", "the row is skipped: its \"Mapping\" is missing or empty"}},
         [](const std::string& path) {
             PRuntimePluginMapping table;
             ASSERT_TRUE(table.format(NString(path)));
             EXPECT_FALSE(findMapping(table, "2.0"));
             EXPECT_EQ(findMapping(table, "1.0"), std::optional<std::string>("a"));
         }},

        // Files that no reader takes.
        {"not-well-formed.xml",
         "",
         2,
         {{4, 1, "error",
           "not well-formed XML: Error parsing start element tag; the library "
           "reads nothing from this file"}},
         [](const std::string& path) {
             PRuntimeCpid cpid;
             EXPECT_FALSE(cpid.format(NString(path)));
             EXPECT_FALSE(findCpid(cpid, 0x8020, 0x0C));
             PRuntimeCloud cloud;
             EXPECT_FALSE(cloud.format(NString(path)));
             expectNoReaderTakesAnything(path);
         }},
        {"unknown-root.xml",
         "",
         1,
         {{2, 1, "error", "\"Something\" is none that the library reads: no table, document or"}},
         [](const std::string& path) {
             PRuntimeCpid cpid;
             EXPECT_TRUE(cpid.format(NString(path)));
             expectNoReaderTakesAnything(path);
         }},

        // The stores.
        {"notify-duplicate-id.xml",
         "",
         1,
         {{6, 3, "warning", "notification 7 is listed again; only the first is kept"}},
         [](const std::string& path) {
             ConfigDirectory directory;
             place(path, directory.file("notify.xml"));
             PRuntimeNotify store;
             ASSERT_TRUE(store.exist(7));
             EXPECT_EQ(text(store.find(7).title()), "first");
         }},
        {"notify-old-layout.xml",
         "",
         1,
         {{4, 10, "error",
           "UserID VALUE=\"-5\" does not fit a 64-bit unsigned integer; it is "
           "read as 0"}},
         [](const std::string& path) {
             ConfigDirectory directory;
             ASSERT_EQ(::mkdir(directory.file("Notify").c_str(), 0755), 0);
             place(path, directory.file("Notify/9.xml"));
             PRuntimeNotify store;
             ASSERT_TRUE(store.exist(9));
             EXPECT_EQ(store.find(9).userID(), 0u);
             EXPECT_EQ(text(store.find(9).title()), "Welcome");
         }},
        {"portbind-duplicate-source.xml",
         "",
         1,
         {{5, 9, "warning", "SOURCE \"a\" is bound again; only the first binding is kept"}},
         [](const std::string& path) {
             ConfigDirectory directory;
             place(path, directory.file("PortBind.xml"));
             PRuntimePortbind store;
             EXPECT_EQ(text(store.find(NString("a"))), "1");
         }},
        {"portbind-text-entry.xml",
         "",
         1,
         {{3, 3, "warning", "text inside \"BIND\" is read as an entry with every field empty"}},
         [](const std::string& path) {
             ConfigDirectory directory;
             place(path, directory.file("PortBind.xml"));
             PRuntimePortbind store;
             std::vector<std::pair<std::string, std::string>> bindings;
             store.traverse([&bindings](const NString& source, const NString& target) {
                 bindings.emplace_back(text(source), text(target));
             });
             EXPECT_EQ(bindings,
                       (std::vector<std::pair<std::string, std::string>>{{"", ""}, {"a", "1"}}));
         }},
        {"ipsw-duplicate-url.xml",
         "",
         1,
         {{4, 10, "warning", "is listed again; only the first entry whose file exists is kept"}},
         [](const std::string& path) {
             ConfigDirectory directory;
             place(path, directory.file("RestoreIpsw.xml"));
             PRuntimeRestoreCustomFirmware store;
             EXPECT_EQ(text(store.find(NString("https://example.invalid/a.ipsw"))), "/tmp");
         }},
        {"factory-lower-case.json",
         "",
         1,
         {{3, 3, "warning", "it is read as 00000000000034CD and renamed so on the next write"}},
         [](const std::string& path) {
             ConfigDirectory directory;
             place(path, directory.file("Factory.json"));
             PRuntimeFactory store;
             EXPECT_TRUE(store.find(0x34CD));
             NDeviceInfoFactory info;
             info.append(NString("SerialNumber"), NByteArray(std::string("XYZ")));
             store.append(0x1, info);
             const std::string written = TemporaryDirectory::read(directory.file("Factory.json"));
             EXPECT_NE(written.find("\"00000000000034CD\""), std::string::npos) << written;
             EXPECT_EQ(written.find("\"00000000000034cd\""), std::string::npos) << written;
         }},
        {"factory-malformed.json",
         "",
         2,
         {{3, 40, "error", "not well-formed JSON"}},
         [](const std::string& path) {
             ConfigDirectory directory;
             place(path, directory.file("Factory.json"));
             PRuntimeFactory store;
             EXPECT_TRUE(store.empty());
         }},
        {"factory-number-overflow.json",
         "",
         2,
         {{3, 33, "error", "number overflow parsing '1e400'"}},
         [](const std::string& path) {
             ConfigDirectory directory;
             place(path, directory.file("Factory.json"));
             PRuntimeFactory store;
             EXPECT_TRUE(store.empty());
         }},
        {"factory-not-hexadecimal.json",
         "",
         1,
         {{3, 3, "error", "member \"serial-two\" is not a device id"}},
         [](const std::string& path) {
             ConfigDirectory directory;
             place(path, directory.file("Factory.json"));
             PRuntimeFactory store;
             const auto devices = factoryDevices(store);
             ASSERT_EQ(devices.size(), 1u);
             EXPECT_EQ(devices.begin()->first, 0x12ABu);
         }},
        {"factory-repeated-member.json",
         "",
         1,
         {{3, 3, "warning",
           "device member \"00000000000012AB\" is written again in the same object: the "
           "factory store keeps only the last one's value"},
          {3, 48, "warning", "value \"SerialNumber\" is written again in the same object"}},
         [](const std::string& path) {
             ConfigDirectory directory;
             place(path, directory.file("Factory.json"));
             PRuntimeFactory store;
             const auto devices = factoryDevices(store);
             ASSERT_EQ(devices.size(), 1u);
             ASSERT_EQ(devices.begin()->first, 0x12ABu);
             // "QUJD" is ABC, "REVG" DEF, "R0hJ" GHI: the last member, its last value.
             EXPECT_EQ(devices.begin()->second,
                       (std::map<std::string, std::string>{{"SerialNumber", "GHI"}}));
         }},
    };
}

// The checker's report of one file, read back from --json.
Json checkerReport(const std::string& path, const std::string& kind, int& status) {
    std::vector<std::string> arguments{"check", "--json"};
    if (!kind.empty()) {
        arguments.insert(arguments.end(), {"--kind", kind});
    }
    arguments.push_back(path);
    const auto result = runTool(arguments);
    status = result.status;
    const Json report = Json::parse(result.output);
    return report.size() == 1 ? report[0] : Json();
}

class CheckerAgreesWithLibrary : public ::testing::TestWithParam<Agreement> {};

} // namespace

TEST_P(CheckerAgreesWithLibrary, FindingsAreWhatTheLibraryDoes) {
    const Agreement& agreement = GetParam();
    const std::string path = dataPath(agreement.fixture);
    int status = -1;
    const Json report = checkerReport(path, agreement.kind, status);
    EXPECT_EQ(status, agreement.exitStatus);
    ASSERT_TRUE(report.is_object()) << report;
    EXPECT_EQ(report.at("file"), path);
    const Json& findings = report.at("findings");
    ASSERT_EQ(findings.size(), agreement.findings.size()) << findings.dump(2);
    for (std::size_t i = 0; i < findings.size(); ++i) {
        const Expected& expected = agreement.findings[i];
        const Json& finding = findings[i];
        EXPECT_EQ(finding.at("line"), expected.line) << finding;
        EXPECT_EQ(finding.at("column"), expected.column) << finding;
        EXPECT_EQ(finding.at("severity"), expected.severity) << finding;
        EXPECT_NE(finding.at("message").get<std::string>().find(expected.words), std::string::npos)
            << "expected \"" << expected.words << "\" in " << finding.at("message");
    }
    agreement.library(path);
}

INSTANTIATE_TEST_SUITE_P(Fixtures, CheckerAgreesWithLibrary, ::testing::ValuesIn(agreements()),
                         [](const ::testing::TestParamInfo<Agreement>& info) {
                             std::string name = info.param.fixture;
                             for (char& c : name) {
                                 c = std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
                             }
                             return name;
                         });

TEST(CheckerAgreesWithLibrary, EveryFixtureHasALibraryExpectation) {
    std::set<std::string> expected;
    for (const Agreement& agreement : agreements()) {
        EXPECT_TRUE(expected.insert(agreement.fixture).second)
            << agreement.fixture << " is listed twice";
    }
    std::set<std::string> fixtures;
    for (const std::string& name :
         TemporaryDirectory::entries(std::string(PALLIX_TEST_DATA_DIR) + "/check")) {
        fixtures.insert(name);
    }
    ASSERT_FALSE(fixtures.empty());
    for (const std::string& fixture : fixtures) {
        EXPECT_TRUE(expected.count(fixture) != 0)
            << fixture << " has no library expectation in this test";
    }
    for (const std::string& name : expected) {
        EXPECT_TRUE(fixtures.count(name) != 0) << name << " is not a fixture";
    }
}

// The notes of --config-dir: files that the library does not read because others hide them.

TEST(CheckerAgreesWithLibrary, LegacyConfigurationHidesTheCurrentOne) {
    TemporaryDirectory directory("pallix-agree");
    place(dataPath("config-duplicate-key.xml"), directory.file("configure.xml"));
    place(dataPath("legacy-speed-beyond-32-bits.xml"), directory.file("Config.xml"));
    const auto result = runTool({"check", "--json", "--config-dir", directory.path()});
    const Json report = Json::parse(result.output);
    ASSERT_EQ(report.size(), 2u);
    const Json& note = report[0].at("findings").at(0);
    EXPECT_EQ(note.at("file"), directory.file("configure.xml"));
    EXPECT_EQ(note.at("line"), 1);
    EXPECT_NE(note.at("message").get<std::string>().find(
                  "the library does not read this file: \"Config.xml\" beside it is imported in "
                  "its place, and the import then overwrites this file"),
              std::string::npos);

    NApplication::setDirectoryConfig(NString(directory.path()));
    NApplication::setDirectoryResources(NString(directory.file("resources")));
    PRuntimeConfig* config = PRuntime::getInstance()->config();
    config->initialize();
    EXPECT_EQ(config->getDownloadMaxSpeed(), 2147483647LL);
    EXPECT_NE(text(config->getConfigDirectory(NString("Data"))), "/a");
    const std::string written = TemporaryDirectory::read(directory.file("configure.xml"));
    EXPECT_EQ(written.find("\"/a\""), std::string::npos) << written;
    EXPECT_NE(written.find("<DownloadMaxSpeed Value=\"2147483647\" />"), std::string::npos)
        << written;
}

TEST(CheckerAgreesWithLibrary, OldNotificationsHideTheCurrentFile) {
    TemporaryDirectory directory("pallix-agree");
    place(dataPath("notify-duplicate-id.xml"), directory.file("notify.xml"));
    ASSERT_EQ(::mkdir(directory.file("Notify").c_str(), 0755), 0);
    place(dataPath("notify-old-layout.xml"), directory.file("Notify/9.xml"));
    std::string other = TemporaryDirectory::read(dataPath("notify-old-layout.xml"));
    TemporaryDirectory::write(directory.file("Notify/10.txt"),
                              other.replace(other.find("\"9\""), 3, "\"10\""));
    const auto result = runTool({"check", "--json", "--config-dir", directory.path()});
    const Json report = Json::parse(result.output);
    ASSERT_EQ(report.size(), 3u);
    EXPECT_EQ(report[0].at("file"), directory.file("notify.xml"));
    EXPECT_NE(
        report[0]
            .at("findings")
            .at(0)
            .at("message")
            .get<std::string>()
            .find("the library does not read this file: the old \"Notify\" directory beside it "
                  "is imported in its place"),
        std::string::npos);
    EXPECT_EQ(report[1].at("file"), directory.file("Notify/10.txt"));
    EXPECT_NE(report[1]
                  .at("findings")
                  .at(0)
                  .at("message")
                  .get<std::string>()
                  .find("the library never reads this file"),
              std::string::npos);

    NApplication::setDirectoryConfig(NString(directory.path()));
    PRuntimeNotify store;
    EXPECT_FALSE(store.exist(7));  // from notify.xml
    EXPECT_TRUE(store.exist(9));   // from Notify/9.xml
    EXPECT_FALSE(store.exist(10)); // from Notify/10.txt
}

TEST(CheckerAgreesWithLibrary, StoreFileWithoutItsContainerIsNotRead) {
    // The custom firmware list where the port bindings belong: "Rilo" without "BIND".
    TemporaryDirectory directory("pallix-agree");
    place(dataPath("ipsw-duplicate-url.xml"), directory.file("PortBind.xml"));
    const auto result = runTool({"check", "--json", "--config-dir", directory.path()});
    const Json report = Json::parse(result.output);
    ASSERT_EQ(report.size(), 1u);
    ASSERT_EQ(report[0].at("findings").size(), 1u);
    EXPECT_NE(report[0]["findings"][0]["message"].get<std::string>().find(
                  "\"Rilo\" has no element \"BIND\"; the store reads nothing"),
              std::string::npos);

    NApplication::setDirectoryConfig(NString(directory.path()));
    PRuntimePortbind store;
    int bindings = 0;
    store.traverse([&bindings](const NString&, const NString&) { ++bindings; });
    EXPECT_EQ(bindings, 0);
    EXPECT_EQ(text(store.find(NString("https://example.invalid/a.ipsw"))), "");
}
