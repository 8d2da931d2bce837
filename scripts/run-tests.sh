#!/usr/bin/env bash
# The test command: installs what is missing, configures, builds and runs the whole suite.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/bootstrap.sh
cmake --preset default
cmake --build --preset default
ctest --preset default
