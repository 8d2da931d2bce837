#!/usr/bin/env bash
# Times the npm package coordtransform on node over the same million points as location_bench
# and prints nanoseconds per conversion, to set beside location_bench's ns_per_item.
#
#   bench/utility/compare-coordtransform.sh [LOCATION_BENCH]
#
# The package is installed into a temporary directory, removed afterwards. Given the path of a
# built location_bench, the script runs it too, right after node, and prints its ns_per_item
# (thread processor time, the median of five repetitions). Optional tooling, not a test: without
# node or npm it says so and exits 0.
set -euo pipefail

here="$(cd "$(dirname "$0")" && pwd)"
bench="${1:-}"

for tool in node npm; do
    if ! command -v "$tool" > /dev/null; then
        echo "compare-coordtransform: $tool is not installed; nothing to compare (install Node.js to run this)"
        exit 0
    fi
done
if [ -n "$bench" ] && [ ! -x "$bench" ]; then
    echo "compare-coordtransform: $bench is not an executable location_bench" >&2
    exit 2
fi

prefix="$(mktemp -d "${TMPDIR:-/tmp}/pallix-coordtransform.XXXXXX")"
trap 'rm -rf "$prefix"' EXIT

if ! npm install --silent --no-audit --no-fund --prefix "$prefix" coordtransform > "$prefix/npm.log" 2>&1; then
    cat "$prefix/npm.log" >&2
    echo "compare-coordtransform: npm could not install coordtransform" >&2
    exit 2
fi
version="$(node -p "require('$prefix/node_modules/coordtransform/package.json').version")"
echo "coordtransform $version"
node "$here/coordtransform.mjs" "$prefix"

if [ -n "$bench" ]; then
    echo "location_bench (median of 5)"
    "$bench" --benchmark_repetitions=5 --benchmark_report_aggregates_only=true \
        --benchmark_format=csv 2> /dev/null |
        awk -F, '
            NR == 1 { for (i = 1; i <= NF; ++i) { gsub(/"/, "", $i); column[$i] = i }; next }
            $1 ~ /_median"?$/ {
                name = $1; gsub(/"/, "", name); gsub(/^BM_|_median$/, "", name)
                printf "%-16s ns_per_item=%.1f ratio_to_baseline=%.3f\n", name,
                    $column["ns_per_item"], $column["ratio_to_baseline"]
            }'
fi
