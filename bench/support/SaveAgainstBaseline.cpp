#include "SaveAgainstBaseline.h"

#include "DurableReplace.h"
#include "NByteArray.h"
#include "NFileSystem.h"

#include <chrono>

namespace pallix::bench {

namespace {

using Clock = std::chrono::steady_clock;

double seconds(Clock::duration elapsed) {
    return std::chrono::duration<double>(elapsed).count();
}

} // namespace

void saveAgainstDurableReplace(benchmark::State& state, const std::function<void(long long)>& save,
                               const std::string (&bytes)[2], const std::string& directory) {
    const std::string baselineFile = directory + "/baseline.xml";
    const NFileSystem::path writerFile(NString(directory + "/writer.xml"));
    const NByteArray writerBytes[2] = {NByteArray(bytes[0]), NByteArray(bytes[1])};

    double totals[3] = {0, 0, 0};
    long long round = 0;
    for (auto _ : state) {
        Clock::duration elapsed[3]{};
        bool written = true;
        for (int turn = 0; turn < 3; ++turn) {
            const int which = static_cast<int>((round + turn) % 3);
            const auto start = Clock::now();
            switch (which) {
            case 0:
                save(round);
                break;
            case 1:
                written = pallix::bench::durableReplace(baselineFile, bytes[round & 1]) && written;
                break;
            default:
                written =
                    NFileSystem::file::fromBytes(writerFile, writerBytes[round & 1]) && written;
                break;
            }
            elapsed[which] = Clock::now() - start;
        }
        if (!written) {
            state.SkipWithError("the baseline or the writer could not replace its file");
            break;
        }
        for (int which = 0; which < 3; ++which) {
            totals[which] += seconds(elapsed[which]);
        }
        state.SetIterationTime(seconds(elapsed[0]));
        ++round;
    }
    if (round == 0 || totals[1] <= 0) {
        return;
    }
    const double rounds = static_cast<double>(round);
    state.counters["save_ms"] = 1000.0 * totals[0] / rounds;
    state.counters["durable_replace_ms"] = 1000.0 * totals[1] / rounds;
    state.counters["writer_ms"] = 1000.0 * totals[2] / rounds;
    state.counters["ratio_to_durable_replace"] = totals[0] / totals[1];
    state.counters["writer_ratio_to_durable_replace"] = totals[2] / totals[1];
    state.counters["file_bytes"] = static_cast<double>(bytes[0].size() + bytes[1].size()) / 2;
}

} // namespace pallix::bench
