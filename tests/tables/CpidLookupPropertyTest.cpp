// The chip table's lookups against a model of them: random tables, loaded from a file and
// extended by appends, answer every query as a plain walk over the rows does. The walk is the
// lookup as the table first did it: print the chip with "%04X" and the board with "%02X",
// take the earliest row whose texts are exactly those, else the earliest row of the chip with
// the board text "00".

#include "TemporaryDirectory.h"

#include "NDeviceInfoRecovery.h"
#include "PRuntimeCpid.h"
#include "PRuntimeInfoCpid.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <new>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

using pallix::test::TemporaryDirectory;

namespace {

struct Query {
    unsigned int chip;
    unsigned int board;
};

std::string hex(const char* pattern, unsigned int value) {
    char text[32];
    std::snprintf(text, sizeof text, pattern, value);
    return text;
}

// The reference: the walk, over the rows as the table holds them.
const PRuntimeInfoCpid* walk(const std::vector<PRuntimeInfoCpid>& rows, const Query& query) {
    const NString chip(hex("%04X", query.chip));
    const NString board(hex("%02X", query.board));
    for (const PRuntimeInfoCpid& row : rows) {
        if (row.cpid() == chip && row.bdid() == board) {
            return &row;
        }
    }
    for (const PRuntimeInfoCpid& row : rows) {
        if (row.cpid() == chip && row.bdid() == NString("00")) {
            return &row;
        }
    }
    return nullptr;
}

// Texts for one number as a file or a caller may write it: mostly the printed form, else one
// that no lookup prints (lower case, blanks, too few or too many digits, a sign, a prefix).
std::string numberText(std::mt19937& random, unsigned int value, int width) {
    const std::string printed = hex(width == 4 ? "%04X" : "%02X", value);
    switch (random() % 12) {
    case 0:
        return hex(width == 4 ? "%04x" : "%02x", value);
    case 1:
        return " " + printed;
    case 2:
        return printed + " ";
    case 3:
        return "0" + printed;
    case 4:
        return printed.size() > 1 ? printed.substr(1) : "";
    case 5:
        return "0x" + printed;
    case 6:
        return "+" + printed;
    default:
        return printed;
    }
}

// One random table: its rows as written to the file (each attribute possibly missing), and
// the queries that exercise it.
struct RandomTable {
    std::string xml;
    std::vector<PRuntimeInfoCpid> loaded;
    std::vector<PRuntimeInfoCpid> appended;
    std::vector<Query> queries;
};

RandomTable randomTable(unsigned int seed) {
    std::mt19937 random(seed);
    RandomTable table;
    // Few chips and boards, so that pairs repeat; some chips beyond four digits, some boards
    // beyond two, and 0 itself.
    std::vector<unsigned int> chips = {0x0000, 0x0960, 0x8020, 0x8A00, 0x10000, 0xFFFFFFFFu};
    for (int i = 0; i < 4; ++i) {
        chips.push_back(static_cast<unsigned int>(random() % 0x1000) + 0x8000);
    }
    const std::vector<unsigned int> boards = {0x00, 0x02, 0x0C, 0x0E, 0xFF, 0x1FF};
    const auto pick = [&random](const std::vector<unsigned int>& from) {
        return from[random() % from.size()];
    };

    const int rows = 20 + static_cast<int>(random() % 60);
    table.xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<DEVICE>\n";
    for (int i = 0; i < rows; ++i) {
        const std::string cpid = numberText(random, pick(chips), 4);
        const std::string bdid = numberText(random, pick(boards), 2);
        // Every row has a mode of its own, so that the row found tells which one it is.
        const std::string mode = "row " + std::to_string(i);
        const bool withChip = random() % 20 != 0;
        const bool withBoard = random() % 20 != 0;
        const bool support = random() % 2 == 0;
        table.xml += "\t<ITEM";
        if (withChip) {
            table.xml += " CPID=\"" + cpid + "\"";
        }
        if (withBoard) {
            table.xml += " BDID=\"" + bdid + "\"";
        }
        table.xml += " MODE=\"" + mode + "\" NETWORK=\"net " + std::to_string(i % 3) +
                     "\" PRODUCT=\"p" + std::to_string(i) + "\" SUPPORT=\"" +
                     (support ? "true" : "false") + "\"/>\n";
        table.loaded.emplace_back(withChip ? cpid : "", withBoard ? bdid : "", mode,
                                  "net " + std::to_string(i % 3), "p" + std::to_string(i), support);
    }
    table.xml += "</DEVICE>\n";

    const int appends = static_cast<int>(random() % 10);
    for (int i = 0; i < appends; ++i) {
        std::string cpid = numberText(random, pick(chips), 4);
        if (random() % 10 == 0) {
            // A text with a NUL inside, which only an append can store.
            cpid = std::string(cpid.c_str(), cpid.size()) + std::string(1, '\0');
        }
        table.appended.emplace_back(NString(cpid.data(), cpid.size()),
                                    NString(numberText(random, pick(boards), 2).c_str()),
                                    NString(("appended " + std::to_string(i)).c_str()),
                                    NString("net"), NString("p"), random() % 2 == 0);
    }

    // Every chip with every board, the boards that no row names, and chips that the table
    // lacks.
    std::vector<unsigned int> queriedBoards = boards;
    queriedBoards.insert(queriedBoards.end(), {0x01, 0x41, 0xFE, 0x100, 0xFFFFFFFFu});
    std::vector<unsigned int> queriedChips = chips;
    queriedChips.insert(queriedChips.end(), {0x0001, 0x8021, 0x96, 0xFFFF, 0x100000});
    for (const unsigned int chip : queriedChips) {
        for (const unsigned int board : queriedBoards) {
            table.queries.push_back({chip, board});
        }
    }
    return table;
}

// Compares every query's answer, through both forms of find, with the walk's.
void expectSameAnswers(const PRuntimeCpid& table, const std::vector<PRuntimeInfoCpid>& rows,
                       const std::vector<Query>& queries, unsigned int seed) {
    for (const Query& query : queries) {
        const PRuntimeInfoCpid* expected = walk(rows, query);
        PRuntimeInfoCpid found("untouched", "", "", "", "", false);
        const bool matched = table.find(NDeviceInfoRecovery(query.chip, query.board), found);
        int calls = 0;
        std::string calledWith;
        const bool called = table.find(NDeviceInfoRecovery(query.chip, query.board),
                                       [&](const PRuntimeInfoCpid& row) {
                                           ++calls;
                                           calledWith = row.mode().data();
                                       });
        const std::string where = "seed " + std::to_string(seed) + " chip " +
                                  hex("%X", query.chip) + " board " + hex("%X", query.board);
        ASSERT_EQ(matched, expected != nullptr) << where;
        ASSERT_EQ(called, expected != nullptr) << where;
        if (expected == nullptr) {
            EXPECT_EQ(found.cpid(), "untouched") << where;
            EXPECT_EQ(calls, 0) << where;
            continue;
        }
        EXPECT_EQ(calls, 1) << where;
        EXPECT_EQ(calledWith, std::string(expected->mode().data())) << where;
        EXPECT_EQ(found.cpid(), expected->cpid()) << where;
        EXPECT_EQ(found.bdid(), expected->bdid()) << where;
        EXPECT_EQ(found.mode(), expected->mode()) << where;
        EXPECT_EQ(found.network(), expected->network()) << where;
        EXPECT_EQ(found.product(), expected->product()) << where;
        EXPECT_EQ(found.support(), expected->support()) << where;
    }
}

// A host's table that sees every row on its way in: its loads take the path of a subclass.
class WatchingCpid : public PRuntimeCpid {
public:
    void append(const PRuntimeInfoCpid& row) override {
        ++appended;
        PRuntimeCpid::append(row);
    }
    int appended = 0;
};

// Each seed's table is loaded twice: into a fresh table, and into one that every earlier seed
// loaded and appended to, whose earlier rows must all be gone.
template <typename Table> void checkSeeds(unsigned int firstSeed, unsigned int seeds) {
    TemporaryDirectory directory;
    const std::string file = directory.file("cpid.xml");
    Table reused;
    for (unsigned int seed = firstSeed; seed < firstSeed + seeds; ++seed) {
        const RandomTable random = randomTable(seed);
        TemporaryDirectory::write(file, random.xml);
        Table fresh;
        for (Table* table : {&fresh, &reused}) {
            ASSERT_TRUE(table->format(NString(file.c_str()))) << "seed " << seed;
            std::vector<PRuntimeInfoCpid> rows = random.loaded;
            expectSameAnswers(*table, rows, random.queries, seed);
            for (const PRuntimeInfoCpid& row : random.appended) {
                table->append(row);
                rows.push_back(row);
            }
            expectSameAnswers(*table, rows, random.queries, seed);
            if (::testing::Test::HasFatalFailure()) {
                return;
            }
        }
    }
}

} // namespace

TEST(CpidLookupProperty, LoadedAndAppendedRowsAnswerAsTheWalk) {
    checkSeeds<PRuntimeCpid>(1, 200);
}

TEST(CpidLookupProperty, ASubclassesTableAnswersAsTheWalk) {
    checkSeeds<WatchingCpid>(1001, 50);
}

TEST(CpidLookupProperty, AppendsAloneAnswerAsTheWalk) {
    for (unsigned int seed = 2001; seed < 2101; ++seed) {
        const RandomTable random = randomTable(seed);
        PRuntimeCpid table;
        std::vector<PRuntimeInfoCpid> rows;
        // The loaded rows of the model, appended one by one, and the appends after them.
        for (const auto* part : {&random.loaded, &random.appended}) {
            for (const PRuntimeInfoCpid& row : *part) {
                table.append(row);
                rows.push_back(row);
            }
        }
        expectSameAnswers(table, rows, random.queries, seed);
        if (HasFatalFailure()) {
            return;
        }
    }
}

TEST(CpidLookup, FormatStartsTheLookupsAfresh) {
    TemporaryDirectory directory;
    const std::string first = directory.file("first.xml");
    const std::string second = directory.file("second.xml");
    TemporaryDirectory::write(first, "<DEVICE><A CPID=\"8020\" BDID=\"00\" MODE=\"first 00\"/>"
                                     "<A CPID=\"8020\" BDID=\"0C\" MODE=\"first 0C\"/></DEVICE>");
    TemporaryDirectory::write(second, "<DEVICE><A CPID=\"8030\" BDID=\"0C\" MODE=\"second\"/>"
                                      "</DEVICE>");
    PRuntimeCpid table;
    PRuntimeInfoCpid row;
    ASSERT_TRUE(table.format(NString(first.c_str())));
    table.append(PRuntimeInfoCpid("8030", "00", "appended", "", "", false));
    ASSERT_TRUE(table.find(NDeviceInfoRecovery(0x8020, 0x0E), row));
    EXPECT_EQ(row.mode(), "first 00");

    // The rows of the earlier load and its appends are gone from the lookups too.
    ASSERT_TRUE(table.format(NString(second.c_str())));
    EXPECT_FALSE(table.find(NDeviceInfoRecovery(0x8020, 0x0C), row));
    EXPECT_FALSE(table.find(NDeviceInfoRecovery(0x8020, 0x00), row));
    EXPECT_FALSE(table.find(NDeviceInfoRecovery(0x8030, 0x00), row));
    ASSERT_TRUE(table.find(NDeviceInfoRecovery(0x8030, 0x0C), row));
    EXPECT_EQ(row.mode(), "second");

    // A load that fails leaves nothing to find.
    EXPECT_FALSE(table.format(NString(directory.file("missing.xml").c_str())));
    EXPECT_FALSE(table.find(NDeviceInfoRecovery(0x8030, 0x0C), row));

    // A file without the root leaves nothing either, and appends start from position 0.
    TemporaryDirectory::write(first, "<OTHER/>");
    ASSERT_TRUE(table.format(NString(first.c_str())));
    EXPECT_FALSE(table.find(NDeviceInfoRecovery(0x8030, 0x0C), row));
    table.append(PRuntimeInfoCpid("8030", "0C", "after", "", "", false));
    ASSERT_TRUE(table.find(NDeviceInfoRecovery(0x8030, 0x0C), row));
    EXPECT_EQ(row.mode(), "after");
}

TEST(CpidLookup, AppendsAfterALoadAreFoundInTheirTurn) {
    TemporaryDirectory directory;
    const std::string file = directory.file("cpid.xml");
    TemporaryDirectory::write(file, "<DEVICE><A CPID=\"8020\" BDID=\"0C\" MODE=\"loaded\"/>"
                                    "</DEVICE>");
    PRuntimeCpid table;
    ASSERT_TRUE(table.format(NString(file.c_str())));
    PRuntimeInfoCpid row;
    // No board-00 row yet: an unknown board finds nothing.
    EXPECT_FALSE(table.find(NDeviceInfoRecovery(0x8020, 0x0E), row));
    // A later row of a loaded pair does not win over the loaded one.
    table.append(PRuntimeInfoCpid("8020", "0C", "later", "", "", false));
    ASSERT_TRUE(table.find(NDeviceInfoRecovery(0x8020, 0x0C), row));
    EXPECT_EQ(row.mode(), "loaded");
    // An appended board-00 row becomes the chip's fallback; the first of them stays it.
    table.append(PRuntimeInfoCpid("8020", "00", "fallback", "", "", false));
    table.append(PRuntimeInfoCpid("8020", "00", "second fallback", "", "", false));
    ASSERT_TRUE(table.find(NDeviceInfoRecovery(0x8020, 0x0E), row));
    EXPECT_EQ(row.mode(), "fallback");
    // Texts that no lookup prints stay unfound, appended or not.
    table.append(PRuntimeInfoCpid("8a00", "00", "lower", "", "", false));
    table.append(PRuntimeInfoCpid(" 8A00", "00", "blank", "", "", false));
    table.append(PRuntimeInfoCpid("08A00", "00", "five digits", "", "", false));
    EXPECT_FALSE(table.find(NDeviceInfoRecovery(0x8A00, 0x00), row));
    // Many appends, past every growth of the index, keep the answers.
    for (unsigned int chip = 0x9000; chip < 0x9400; ++chip) {
        table.append(PRuntimeInfoCpid(NString::format("%04X", chip), "00",
                                      NString::format("chip %X", chip), "", "", false));
    }
    ASSERT_TRUE(table.find(NDeviceInfoRecovery(0x93FF, 0x12), row));
    EXPECT_EQ(row.mode(), "chip 93FF");
    ASSERT_TRUE(table.find(NDeviceInfoRecovery(0x8020, 0x0C), row));
    EXPECT_EQ(row.mode(), "loaded");
}

TEST(CpidLookup, ATableInThePlaceOfAnEarlierOneStartsEmpty) {
    // The index lives beside the table, under its address: a table made where an earlier one
    // was must not inherit its rows.
    std::aligned_storage_t<sizeof(PRuntimeCpid), alignof(PRuntimeCpid)> place;
    auto* first = new (&place) PRuntimeCpid;
    first->append(PRuntimeInfoCpid("8020", "00", "earlier", "", "", false));
    first->~PRuntimeCpid();
    auto* second = new (&place) PRuntimeCpid;
    PRuntimeInfoCpid row;
    EXPECT_FALSE(second->find(NDeviceInfoRecovery(0x8020, 0x00), row));
    second->append(PRuntimeInfoCpid("8020", "0C", "later", "", "", false));
    ASSERT_TRUE(second->find(NDeviceInfoRecovery(0x8020, 0x0C), row));
    EXPECT_EQ(row.mode(), "later");
    EXPECT_FALSE(second->find(NDeviceInfoRecovery(0x8020, 0x00), row));
    second->~PRuntimeCpid();
}
