// Loading and lookup costs of the reference tables on generated tables of 10,000 rows each.
//
// A load is reported as a ratio to what pugixml alone needs to load the same file and walk its
// rows, reading the same attributes ("ratio_to_pugixml"), both measured in every iteration of
// the same run; the benchmark's own time is that of the table's load. Lookups report the time
// per lookup.

#include "PRuntimeCpid.h"
#include "PRuntimeCrashCode.h"
#include "PRuntimePluginMapping.h"
#include "PRuntimeRestoreError.h"

#include <benchmark/benchmark.h>
#include <pugixml.hpp>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>
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

using Clock = std::chrono::steady_clock;

double seconds(Clock::time_point from, Clock::time_point to) {
    return std::chrono::duration<double>(to - from).count();
}

// pugixml's own share: load the file and read every attribute that the table reads.
std::size_t pugixmlWalk(const std::string& path, const char* rootName,
                        const std::vector<const char*>& attributes) {
    pugi::xml_document document;
    if (!document.load_file(path.c_str(), pugi::parse_default, pugi::encoding_utf8)) {
        return 0;
    }
    std::size_t total = 0;
    for (pugi::xml_node row = document.child(rootName).first_child(); row;
         row = row.next_sibling()) {
        for (const char* name : attributes) {
            total += std::char_traits<char>::length(row.attribute(name).as_string());
        }
    }
    return total;
}

// One load per iteration, each next to a pugixml baseline over the same file.
template <typename Table>
void loadAgainstBaseline(benchmark::State& state, const std::string& path, const char* rootName,
                         const std::vector<const char*>& attributes) {
    Table table;
    double tableTotal = 0;
    double baselineTotal = 0;
    for (auto _ : state) {
        const auto start = Clock::now();
        benchmark::DoNotOptimize(pugixmlWalk(path, rootName, attributes));
        const auto middle = Clock::now();
        const bool loaded = table.format(path.c_str());
        const auto end = Clock::now();
        benchmark::DoNotOptimize(loaded);
        if (!loaded) {
            state.SkipWithError("the generated table did not load");
            break;
        }
        baselineTotal += seconds(start, middle);
        tableTotal += seconds(middle, end);
        state.SetIterationTime(seconds(middle, end));
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
                                      {"CPID", "BDID", "MODE", "NETWORK", "PRODUCT", "SUPPORT"});
}
BENCHMARK(BM_LoadCpid)->UseManualTime()->Unit(benchmark::kMillisecond);

void BM_LoadCrashCode(benchmark::State& state) {
    loadAgainstBaseline<PRuntimeCrashCode>(state, tables().crash(), "CRASH",
                                           {"KEY", "REASON", "SOLUTION"});
}
BENCHMARK(BM_LoadCrashCode)->UseManualTime()->Unit(benchmark::kMillisecond);

void BM_LoadRestoreError(benchmark::State& state) {
    loadAgainstBaseline<PRuntimeRestoreError>(state, tables().restoreError(), "APPLE",
                                              {"CODE", "DESCRIBE", "SOLUTION"});
}
BENCHMARK(BM_LoadRestoreError)->UseManualTime()->Unit(benchmark::kMillisecond);

void BM_LoadPluginMapping(benchmark::State& state) {
    loadAgainstBaseline<PRuntimePluginMapping>(state, tables().mapping(), "Nevor",
                                               {"Version", "Mapping"});
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
