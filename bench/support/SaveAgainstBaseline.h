#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <string>

namespace pallix::bench {

// Times one save per iteration against, in the same iteration, the durable replace of the same
// bytes (DurableReplace.h) and the framework's own writer (NFileSystem::file::fromBytes) of
// them, each on a file of its own in `directory`. The three take turns at going first, so that
// none always runs on another's writeback. The iteration's time is the save's; the counters give
// each one's milliseconds and, against the durable replace, the save's ratio and the writer's.
// The writer's ratio is the floor under the save's: the care it takes of the user's files
// (links, mode, owner, stray temporaries) is part of every save.
//
// `save(round)` saves the file, whose content is then `bytes[round % 2]`: a benchmark alternates
// between two states so that every save changes the file. Rounds count from 0.
void saveAgainstDurableReplace(benchmark::State& state, const std::function<void(long long)>& save,
                               const std::string (&bytes)[2], const std::string& directory);

} // namespace pallix::bench
