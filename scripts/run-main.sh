#!/usr/bin/env bash
# The main job: installs what is missing, builds the library and its tool, and runs the tool.
# Arguments are passed to pallix (default: --help).
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/bootstrap.sh
cmake --preset default -DPALLIX_BUILD_TESTS=OFF -DPALLIX_BUILD_BENCHMARKS=OFF \
    -DPALLIX_BUILD_FUZZERS=OFF -DPALLIX_BUILD_EXAMPLES=OFF > /dev/null
cmake --build --preset default --target pallix > /dev/null
if [ $# -eq 0 ]; then
    set -- --help
fi
exec build/default/tools/pallix/pallix "$@"
