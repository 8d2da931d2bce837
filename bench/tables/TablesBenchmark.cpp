// Loading and lookup costs of the reference tables on generated tables of 10,000 rows each.
//
// A load is reported as a ratio to what pugixml alone needs to load the same file and walk its
// rows, reading the same attributes the same way as values ("ratio_to_pugixml"), both measured
// in every iteration of the same run; the benchmark's own time is that of the table's load.
// The chip lookup at the end of the table is reported in nanoseconds and as ratios to the
// linear walk it replaced and to one hash-map lookup of the printed pair, both measured in the
// same run. Other lookups report the time per lookup.
//
// Times are the thread's processor time, not the wall clock: the machines these run on are
// shared, and a load that loses the processor half-way would otherwise count the other
// programs' time against whichever side it happened to.

#include "NDeviceInfoRecovery.h"
#include "NString.h"
#include "PRuntimeCpid.h"
#include "PRuntimeCrashCode.h"
#include "PRuntimePluginMapping.h"
#include "PRuntimeRestoreError.h"

#include <benchmark/benchmark.h>
#include <pugixml.hpp>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <unistd.h>
#include <unordered_map>
#include <vector>

namespace {

constexpr int kRows = 10000;
// 625 chips with 16 boards each; board 00 is every chip's default row.
constexpr int kBoardsPerChip = 16;
constexpr unsigned int kFirstChip = 0x8000;

std::string text(const char* pattern, int a, int b = 0) {
    char buffer[160];
    std::snprintf(buffer, sizeof buffer, pattern, a, b);
    return buffer;
}

// The four generated tables, written once into a temporary directory that goes at exit.
class GeneratedTables {
public:
    GeneratedTables() {
        m_directory = std::filesystem::temp_directory_path() /
                      ("pallix-bench-tables-" + std::to_string(::getpid()));
        std::filesystem::create_directories(m_directory);
        writeCpid();
        writeCrash();
        writeRestoreError();
        writeMapping();
    }
    ~GeneratedTables() {
        std::error_code ignored;
        std::filesystem::remove_all(m_directory, ignored);
    }
    GeneratedTables(const GeneratedTables&) = delete;
    GeneratedTables& operator=(const GeneratedTables&) = delete;

    std::string cpid() const { return (m_directory / "cpid.xml").string(); }
    std::string crash() const { return (m_directory / "crash.xml").string(); }
    std::string restoreError() const { return (m_directory / "restore-error.xml").string(); }
    std::string mapping() const { return (m_directory / "plugin-mapping.xml").string(); }

private:
    void writeCpid() const {
        std::ofstream out(cpid());
        out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<DEVICE>\n";
        for (int i = 0; i < kRows; ++i) {
            const int chip = static_cast<int>(kFirstChip) + i / kBoardsPerChip;
            const int board = (i % kBoardsPerChip) * 2;
            out << "\t<ITEM CPID=\"" << text("%04X", chip) << "\" BDID=\"" << text("%02X", board)
                << "\" MODE=\"" << text("Device %d rev %d", chip, board)
                << "\" NETWORK=\"Global\" PRODUCT=\"" << text("Device%d,%d", chip, board)
                << "\" SUPPORT=\"" << ((i % 3) ? "true" : "false") << "\"/>\n";
        }
        out << "</DEVICE>\n";
    }
    void writeCrash() const {
        std::ofstream out(crash());
        out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<CRASH>\n";
        for (int i = 0; i < kRows; ++i) {
            out << "\t<ITEM KEY=\"" << text("ERR-%05d", i) << "\" REASON=\""
                << text("Failure number %d of the restore machinery.", i) << "\" SOLUTION=\""
                << text("Reconnect the device and repeat step %d.", i) << "\"/>\n";
        }
        out << "</CRASH>\n";
    }
    void writeRestoreError() const {
        std::ofstream out(restoreError());
        out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<APPLE>\n";
        for (int i = 0; i < kRows; ++i) {
            const int code = i - kRows / 2;
            out << "\t<ITEM CODE=\"" << code << "\" DESCRIBE=\"" << text("Restore error %d.", code)
                << "\" SOLUTION=\"" << text("Try again after step %d.", i) << "\"/>\n";
        }
        out << "</APPLE>\n";
    }
    void writeMapping() const {
        std::ofstream out(mapping());
        out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Nevor>\n";
        for (int i = 0; i < kRows; ++i) {
            out << "\t<Mapping Version=\"" << text("%d.%d", 10 + i / 100, i % 100)
                << "\" Mapping=\"" << text("%d.%d", 10 + i / 100, (i % 100) / 10) << "\"/>\n";
        }
        out << "</Nevor>\n";
    }

    std::filesystem::path m_directory;
};

const GeneratedTables& tables() {
    static const GeneratedTables generated;
    return generated;
}

// The calling thread's processor time, in seconds.
double threadSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

// How a table reads an attribute.
enum class Read { kText, kBoolean, kInteger };

struct Attribute {
    const char* name;
    Read as;
};

// pugixml's own share: load the file with the parser's own reader (into its own buffer, parsed
// in place, as the library reads it) and read every attribute that the table reads, as the
// table reads it. The attributes are looked up by name; reading them in one pass over each
// row's attributes, as the tables do, costs the parser the same to within a few per cent.
std::size_t pugixmlWalk(const std::string& path, const char* rootName,
                        const std::vector<Attribute>& attributes) {
    pugi::xml_document document;
    if (!document.load_file(path.c_str(), pugi::parse_default, pugi::encoding_utf8)) {
        return 0;
    }
    std::size_t total = 0;
    for (pugi::xml_node row = document.child(rootName).first_child(); row;
         row = row.next_sibling()) {
        for (const Attribute& attribute : attributes) {
            const pugi::xml_attribute value = row.attribute(attribute.name);
            switch (attribute.as) {
            case Read::kText:
                total += std::char_traits<char>::length(value.as_string());
                break;
            case Read::kBoolean:
                total += value.as_bool() ? 1 : 0;
                break;
            case Read::kInteger:
                total += static_cast<std::size_t>(value.as_llong(0));
                break;
            }
        }
    }
    return total;
}

// One load per iteration, each next to a pugixml baseline over the same file.
template <typename Table>
void loadAgainstBaseline(benchmark::State& state, const std::string& path, const char* rootName,
                         const std::vector<Attribute>& attributes) {
    Table table;
    double tableTotal = 0;
    double baselineTotal = 0;
    for (auto _ : state) {
        const double start = threadSeconds();
        benchmark::DoNotOptimize(pugixmlWalk(path, rootName, attributes));
        const double middle = threadSeconds();
        const bool loaded = table.format(path.c_str());
        const double end = threadSeconds();
        benchmark::DoNotOptimize(loaded);
        if (!loaded) {
            state.SkipWithError("the generated table did not load");
            break;
        }
        baselineTotal += middle - start;
        tableTotal += end - middle;
        state.SetIterationTime(end - middle);
    }
    if (baselineTotal > 0) {
        state.counters["ratio_to_pugixml"] = tableTotal / baselineTotal;
        state.counters["pugixml_ms"] =
            1000.0 * baselineTotal / static_cast<double>(state.iterations());
    }
    state.counters["rows"] = kRows;
}

void BM_LoadCpid(benchmark::State& state) {
    loadAgainstBaseline<PRuntimeCpid>(state, tables().cpid(), "DEVICE",
                                      {{"CPID", Read::kText},
                                       {"BDID", Read::kText},
                                       {"MODE", Read::kText},
                                       {"NETWORK", Read::kText},
                                       {"PRODUCT", Read::kText},
                                       {"SUPPORT", Read::kBoolean}});
}
BENCHMARK(BM_LoadCpid)->UseManualTime()->Unit(benchmark::kMillisecond);

void BM_LoadCrashCode(benchmark::State& state) {
    loadAgainstBaseline<PRuntimeCrashCode>(
        state, tables().crash(), "CRASH",
        {{"KEY", Read::kText}, {"REASON", Read::kText}, {"SOLUTION", Read::kText}});
}
BENCHMARK(BM_LoadCrashCode)->UseManualTime()->Unit(benchmark::kMillisecond);

void BM_LoadRestoreError(benchmark::State& state) {
    loadAgainstBaseline<PRuntimeRestoreError>(
        state, tables().restoreError(), "APPLE",
        {{"CODE", Read::kInteger}, {"DESCRIBE", Read::kText}, {"SOLUTION", Read::kText}});
}
BENCHMARK(BM_LoadRestoreError)->UseManualTime()->Unit(benchmark::kMillisecond);

void BM_LoadPluginMapping(benchmark::State& state) {
    loadAgainstBaseline<PRuntimePluginMapping>(
        state, tables().mapping(), "Nevor", {{"Version", Read::kText}, {"Mapping", Read::kText}});
}
BENCHMARK(BM_LoadPluginMapping)->UseManualTime()->Unit(benchmark::kMillisecond);

// Lookups spread over the table: exact rows, board-00 fallbacks and unknown chips in turn.
void BM_FindCpid(benchmark::State& state) {
    PRuntimeCpid table;
    if (!table.format(tables().cpid().c_str())) {
        state.SkipWithError("the generated table did not load");
        return;
    }
    const int chips = kRows / kBoardsPerChip;
    std::vector<NDeviceInfoRecovery> devices;
    for (int i = 0; i < 64; ++i) {
        const unsigned int chip = kFirstChip + static_cast<unsigned int>((i * 97) % chips);
        switch (i % 3) {
        case 0:
            devices.emplace_back(chip, static_cast<unsigned int>((i % kBoardsPerChip) * 2));
            break;
        case 1:
            devices.emplace_back(chip, 0x41u);
            break;
        default:
            devices.emplace_back(chip + 0x1000u, 0x02u);
            break;
        }
    }
    std::size_t next = 0;
    PRuntimeInfoCpid row;
    for (auto _ : state) {
        benchmark::DoNotOptimize(table.find(devices[next], row));
        next = (next + 1) % devices.size();
    }
    state.counters["lookups"] =
        benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_FindCpid);

// The lookup as it was before the table had an index: print the pair, walk the rows comparing
// texts, and walk them again for the board-00 row. Kept here as the measure of the index.
const PRuntimeInfoCpid* linearWalk(const std::vector<PRuntimeInfoCpid>& rows,
                                   const NDeviceInfoRecovery& device) {
    const NString chip = NString::format("%04X", device.cpid());
    const NString board = NString::format("%02X", device.bdid());
    for (const PRuntimeInfoCpid& row : rows) {
        if (row.isMatch(chip, board)) {
            return &row;
        }
    }
    const NString fallback = NString::format("%02X", 0u);
    for (const PRuntimeInfoCpid& row : rows) {
        if (row.isMatch(chip, fallback)) {
            return &row;
        }
    }
    return nullptr;
}

// The rows of the generated chip table, read with pugixml alone, for the two baselines. Made
// with the copying constructor, which every version of the library has, so that the benchmark
// also measures a library from before the index.
std::vector<PRuntimeInfoCpid> cpidRows() {
    pugi::xml_document document;
    document.load_file(tables().cpid().c_str(), pugi::parse_default, pugi::encoding_utf8);
    std::vector<PRuntimeInfoCpid> rows;
    for (pugi::xml_node row = document.child("DEVICE").first_child(); row;
         row = row.next_sibling()) {
        const NString texts[] = {
            row.attribute("CPID").as_string(), row.attribute("BDID").as_string(),
            row.attribute("MODE").as_string(), row.attribute("NETWORK").as_string(),
            row.attribute("PRODUCT").as_string()};
        rows.emplace_back(texts[0], texts[1], texts[2], texts[3], texts[4],
                          row.attribute("SUPPORT").as_bool());
    }
    return rows;
}

// Seconds per call of `lookup` over `rounds` calls.
template <typename Lookup> double secondsPerLookup(int rounds, Lookup&& lookup) {
    const double start = threadSeconds();
    for (int round = 0; round < rounds; ++round) {
        lookup();
    }
    return (threadSeconds() - start) / rounds;
}

// Lookups at the end of the table, where the walk had the most to do: the last row itself
// (argument 0), a board of the last chip that has no row and falls back to its board-00 row
// (argument 1), and a chip that the table lacks (argument 2). Each is timed through the table,
// through the linear walk, and as one lookup of the printed pair in a std::unordered_map of the
// rows.
void BM_FindCpidAtEnd(benchmark::State& state) {
    PRuntimeCpid table;
    if (!table.format(tables().cpid().c_str())) {
        state.SkipWithError("the generated table did not load");
        return;
    }
    const unsigned int lastChip = kFirstChip + (kRows - 1) / kBoardsPerChip;
    const NDeviceInfoRecovery devices[] = {
        {lastChip, static_cast<unsigned int>(((kRows - 1) % kBoardsPerChip) * 2)},
        {lastChip, 0x41u},
        {lastChip + 1, 0x00u}};
    const NDeviceInfoRecovery device = devices[state.range(0)];

    const std::vector<PRuntimeInfoCpid> rows = cpidRows();
    std::unordered_map<std::string, std::size_t> pairs;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        pairs.emplace(rows[i].cpid().toStdString() + "/" + rows[i].bdid().toStdString(), i);
    }

    std::size_t found = 0;
    const std::function<void(const PRuntimeInfoCpid&)> count = [&found](const PRuntimeInfoCpid&) {
        ++found;
    };
    const double start = threadSeconds();
    for (auto _ : state) {
        table.find(device, count);
    }
    const double perLookup =
        (threadSeconds() - start) /
        static_cast<double>(std::max<benchmark::IterationCount>(state.iterations(), 1));
    benchmark::DoNotOptimize(found);

    const double walk =
        secondsPerLookup(200, [&] { benchmark::DoNotOptimize(linearWalk(rows, device)); });
    // The key is printed once: the baseline is the hash-map lookup alone.
    const std::string key = NString::format("%04X", device.cpid()).toStdString() + "/" +
                            NString::format("%02X", device.bdid()).toStdString();
    const double hash =
        secondsPerLookup(100000, [&] { benchmark::DoNotOptimize(pairs.find(key)); });
    state.counters["ns_per_lookup"] = 1e9 * perLookup;
    state.counters["linear_walk_ns"] = 1e9 * walk;
    state.counters["ratio_to_linear_walk"] = perLookup / walk;
    state.counters["hash_lookup_ns"] = 1e9 * hash;
    state.counters["ratio_to_hash_lookup"] = perLookup / hash;
}
BENCHMARK(BM_FindCpidAtEnd)->Arg(0)->Arg(1)->Arg(2);

// Failure texts that contain keys at the front, middle and end of the table, and one that
// matches nothing and so visits every row.
void BM_FindCrashCode(benchmark::State& state) {
    PRuntimeCrashCode table;
    if (!table.format(tables().crash().c_str())) {
        state.SkipWithError("the generated table did not load");
        return;
    }
    const std::vector<NString> queries = {
        "restore failed: ERR-00010 (device)", "restore failed: err-05000 (device)",
        "restore failed: ERR-09990 (device)", "restore failed: unknown"};
    std::size_t next = 0;
    std::size_t matches = 0;
    const std::function<void(const PRuntimeInfoCrash&)> count =
        [&matches](const PRuntimeInfoCrash&) { ++matches; };
    for (auto _ : state) {
        table.find(queries[next], count);
        next = (next + 1) % queries.size();
    }
    benchmark::DoNotOptimize(matches);
    state.counters["lookups"] =
        benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_FindCrashCode)->Unit(benchmark::kMicrosecond);

void BM_FindRestoreError(benchmark::State& state) {
    PRuntimeRestoreError table;
    if (!table.format(tables().restoreError().c_str())) {
        state.SkipWithError("the generated table did not load");
        return;
    }
    long long code = -kRows / 2;
    std::size_t matches = 0;
    const std::function<void(const PRuntimeInfoRestoreError&)> count =
        [&matches](const PRuntimeInfoRestoreError&) { ++matches; };
    for (auto _ : state) {
        table.find(code, count);
        // Walks every code once and then a stretch of unknown ones.
        code = code < kRows ? code + 7 : -kRows / 2;
    }
    benchmark::DoNotOptimize(matches);
    state.counters["lookups"] =
        benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_FindRestoreError);

void BM_FindPluginMapping(benchmark::State& state) {
    PRuntimePluginMapping table;
    if (!table.format(tables().mapping().c_str())) {
        state.SkipWithError("the generated table did not load");
        return;
    }
    std::vector<NString> versions;
    for (int i = 0; i < 64; ++i) {
        versions.emplace_back(text("%d.%d", 10 + (i * 151 % kRows) / 100, (i * 151) % 100));
    }
    versions.emplace_back("999.9");
    std::size_t next = 0;
    NString out;
    for (auto _ : state) {
        benchmark::DoNotOptimize(table.find(versions[next], out));
        next = (next + 1) % versions.size();
    }
    state.counters["lookups"] =
        benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_FindPluginMapping);

} // namespace

BENCHMARK_MAIN();
