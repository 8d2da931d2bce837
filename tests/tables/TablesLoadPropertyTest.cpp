// The loads of the crash code, restore error and plug-in mapping tables against models of them:
// random files, with repeated keys, missing and empty attributes, codes in every form the
// parser reads and versions in no particular order, give the rows that a plain reading of the
// file gives: every crash row in file order, and for a code or a version the first row of the
// file that carries it.

#include "TemporaryDirectory.h"

#include "PRuntimeCrashCode.h"
#include "PRuntimePluginMapping.h"
#include "PRuntimeRestoreError.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>
#include <vector>

using pallix::test::TemporaryDirectory;

namespace {

constexpr unsigned int kSeeds = 200;

// A text with letters that need escaping in XML, and bytes above 0x7F, which order after every
// ASCII letter.
std::string someText(std::mt19937& random, const std::string& prefix) {
    static const char* const pieces[] = {"a", "B", "&amp;", "\xC3\xA9", " ", "7", "&lt;x&gt;"};
    std::string text = prefix;
    for (unsigned int i = random() % 4; i > 0; --i) {
        text += pieces[random() % (sizeof pieces / sizeof pieces[0])];
    }
    return text;
}

// What the parser makes of a text written into an attribute by someText().
std::string unescaped(std::string text) {
    for (const auto& [escaped, plain] :
         {std::pair<std::string, std::string>{"&amp;", "&"}, {"&lt;", "<"}, {"&gt;", ">"}}) {
        for (std::size_t at = text.find(escaped); at != std::string::npos;
             at = text.find(escaped, at + plain.size())) {
            text.replace(at, escaped.size(), plain);
        }
    }
    return text;
}

// An attribute, left out now and then.
std::string attribute(std::mt19937& random, const char* name, const std::string& value) {
    return random() % 10 == 0 ? std::string() : " " + std::string(name) + "=\"" + value + "\"";
}

std::string read(const std::string& xmlAttribute) {
    const std::size_t open = xmlAttribute.find('"');
    return open == std::string::npos
               ? std::string()
               : unescaped(xmlAttribute.substr(open + 1, xmlAttribute.size() - open - 2));
}

class WatchingCrashCode : public PRuntimeCrashCode {
public:
    void append(const PRuntimeInfoCrash& row) override {
        ++appended;
        PRuntimeCrashCode::append(row);
    }
    int appended = 0;
};

class WatchingRestoreError : public PRuntimeRestoreError {
public:
    void append(const PRuntimeInfoRestoreError& row) override {
        ++appended;
        PRuntimeRestoreError::append(row);
    }
    int appended = 0;
};

struct CrashRow {
    std::string key, reason, solution;
};

template <typename Table> void checkCrashSeeds(unsigned int firstSeed) {
    TemporaryDirectory directory;
    const std::string file = directory.file("crash.xml");
    Table reused;
    for (unsigned int seed = firstSeed; seed < firstSeed + kSeeds; ++seed) {
        std::mt19937 random(seed);
        std::vector<CrashRow> expected;
        std::string xml = "<CRASH>\n";
        for (unsigned int i = random() % 50; i > 0; --i) {
            const std::string key = attribute(random, "KEY", someText(random, "K"));
            const std::string reason = attribute(random, "REASON", someText(random, "reason "));
            const std::string solution = attribute(random, "SOLUTION", someText(random, ""));
            xml += "<ROW" + key + reason + solution + "/>\n";
            expected.push_back({read(key), read(reason), read(solution)});
            if (random() % 8 == 0) {
                // Text between rows is no row.
                xml += "stray text\n";
            }
        }
        xml += "</CRASH>\n";
        TemporaryDirectory::write(file, xml);
        Table fresh;
        for (Table* table : {&fresh, &reused}) {
            ASSERT_TRUE(table->format(NString(file.c_str()))) << "seed " << seed;
            std::vector<CrashRow> rows;
            table->traverse([&rows](const PRuntimeInfoCrash& row) {
                rows.push_back({row.key().data(), row.reason().data(), row.solution().data()});
            });
            ASSERT_EQ(rows.size(), expected.size()) << "seed " << seed;
            for (std::size_t i = 0; i < rows.size(); ++i) {
                EXPECT_EQ(rows[i].key, expected[i].key) << "seed " << seed << " row " << i;
                EXPECT_EQ(rows[i].reason, expected[i].reason) << "seed " << seed << " row " << i;
                EXPECT_EQ(rows[i].solution, expected[i].solution)
                    << "seed " << seed << " row " << i;
            }
        }
    }
}

struct RestoreRow {
    std::string describe, solution;
};

template <typename Table> void checkRestoreSeeds(unsigned int firstSeed) {
    TemporaryDirectory directory;
    const std::string file = directory.file("restore.xml");
    Table reused;
    for (unsigned int seed = firstSeed; seed < firstSeed + kSeeds; ++seed) {
        std::mt19937 random(seed);
        std::map<long long, RestoreRow> expected;
        std::string xml = "<APPLE>\n";
        for (unsigned int i = random() % 50; i > 0; --i) {
            // Few codes, so that they repeat, in an order of their own; written in decimal, in
            // hexadecimal, or not as a number at all, which the parser reads as code 0.
            const long long value = static_cast<long long>(random() % 40) - 20;
            long long code = value;
            std::string text = std::to_string(value);
            switch (random() % 6) {
            case 0:
                text = value < 0 ? "-0x" + std::to_string(-value) : "0x" + std::to_string(value);
                code = value < 0 ? -std::stoll(std::to_string(-value), nullptr, 16)
                                 : std::stoll(std::to_string(value), nullptr, 16);
                break;
            case 1:
                text = "none";
                code = 0;
                break;
            default:
                break;
            }
            std::string codeAttribute = attribute(random, "CODE", text);
            if (codeAttribute.empty()) {
                code = 0;
            }
            const std::string describe = attribute(random, "DESCRIBE", someText(random, "d"));
            const std::string solution = attribute(random, "SOLUTION", someText(random, "s"));
            xml += "<ROW" + codeAttribute + describe + solution + "/>\n";
            expected.emplace(code, RestoreRow{read(describe), read(solution)});
        }
        xml += "</APPLE>\n";
        TemporaryDirectory::write(file, xml);
        Table fresh;
        for (Table* table : {&fresh, &reused}) {
            ASSERT_TRUE(table->format(NString(file.c_str()))) << "seed " << seed;
            for (long long code = -0x40; code <= 0x40; ++code) {
                int calls = 0;
                RestoreRow row;
                table->find(code, [&](const PRuntimeInfoRestoreError& found) {
                    ++calls;
                    EXPECT_EQ(found.code(), code);
                    row = {found.describe().data(), found.solution().data()};
                });
                const auto wanted = expected.find(code);
                ASSERT_EQ(calls, wanted == expected.end() ? 0 : 1)
                    << "seed " << seed << " code " << code;
                if (calls == 1) {
                    EXPECT_EQ(row.describe, wanted->second.describe)
                        << "seed " << seed << " code " << code;
                    EXPECT_EQ(row.solution, wanted->second.solution)
                        << "seed " << seed << " code " << code;
                }
            }
        }
    }
}

} // namespace

TEST(TablesLoadProperty, CrashRowsAreTheFilesRowsInOrder) {
    checkCrashSeeds<PRuntimeCrashCode>(1);
}

TEST(TablesLoadProperty, ASubclassesCrashRowsAreTheFilesRowsInOrder) {
    checkCrashSeeds<WatchingCrashCode>(5001);
}

TEST(TablesLoadProperty, EachRestoreCodeHasItsFirstRow) {
    checkRestoreSeeds<PRuntimeRestoreError>(1);
}

TEST(TablesLoadProperty, ASubclassesRestoreCodesHaveTheirFirstRows) {
    checkRestoreSeeds<WatchingRestoreError>(5001);
}

TEST(TablesLoadProperty, EachVersionHasItsFirstCompleteMapping) {
    TemporaryDirectory directory;
    const std::string file = directory.file("mapping.xml");
    PRuntimePluginMapping reused;
    for (unsigned int seed = 1; seed <= kSeeds; ++seed) {
        std::mt19937 random(seed);
        std::map<std::string, std::string> expected;
        std::vector<std::string> versions = {"", "1", "x", "16.4.1.b", "16.4.1.b1"};
        std::string xml = "<Nevor>\n";
        for (unsigned int i = random() % 60; i > 0; --i) {
            // Versions out of order ("10.10" sorts before "10.9"), repeated, with bytes above
            // 0x7F, longer than eight bytes and alike in their first eight, empty or missing;
            // mappings empty or missing now and then.
            std::string version = std::string(random() % 4 == 0 ? "16.4.1.b" : "") +
                                  std::to_string(random() % 3 + 9) + "." +
                                  std::to_string(random() % 12) +
                                  (random() % 6 == 0 ? "\xC3\xA9" : "");
            if (random() % 15 == 0) {
                version.clear();
            }
            const std::string mapping = random() % 12 == 0 ? "" : someText(random, "m");
            const std::string versionAttribute = attribute(random, "Version", version);
            const std::string mappingAttribute = attribute(random, "Mapping", mapping);
            xml += "<Item" + versionAttribute + mappingAttribute + "/>\n";
            versions.push_back(version);
            if (!read(versionAttribute).empty() && !read(mappingAttribute).empty()) {
                expected.emplace(read(versionAttribute), read(mappingAttribute));
            }
        }
        xml += "</Nevor>\n";
        TemporaryDirectory::write(file, xml);
        PRuntimePluginMapping fresh;
        for (PRuntimePluginMapping* table : {&fresh, &reused}) {
            ASSERT_TRUE(table->format(NString(file.c_str()))) << "seed " << seed;
            for (const std::string& version : versions) {
                NString found("untouched");
                const bool matched = table->find(NString(version.c_str()), found);
                const auto wanted = expected.find(version);
                ASSERT_EQ(matched, wanted != expected.end())
                    << "seed " << seed << " version " << version;
                EXPECT_EQ(std::string(found.data()),
                          matched ? wanted->second : std::string("untouched"))
                    << "seed " << seed << " version " << version;
            }
        }
    }
}
