#!/usr/bin/env bash
# The main job: installs what is missing, builds the library and its tool, and runs the tool.
# Arguments are passed to pallix (default: demo, the typical road on the samples).
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/bootstrap.sh
cmake --preset tool > /dev/null
cmake --build --preset tool --target pallix > /dev/null
if [ $# -eq 0 ]; then
    set -- demo
fi
exec build/tool/tools/pallix/pallix "$@"
