#!/usr/bin/env bash
# Compares the binary interface of a built libPallixRuntime.so.5 with the reviewed baseline in
# abi/, and fails when a change would break programs built against the baseline.
#
#   scripts/check-abi.sh [--update] [BUILD_DIR]
#   scripts/check-abi.sh [--update] --baseline FILE --library LIB --headers DIR [--suppressions FILE]
#
# The first form installs BUILD_DIR (default build/default, configured RelWithDebInfo so that
# the library carries debug information) into a scratch prefix and compares the installed
# library, as described by the installed public headers, with abi/libPallixRuntime.so.5.abi.
# The second form compares any library with any baseline; the test of this script uses it.
#
# Only what the public headers declare is compared: the exported functions and variables and
# the types reachable from them (record layouts and sizes, virtual table slots, exported names).
# Added functions and variables are reported and allowed. Anything else that abidiff reports
# (a removed or renamed name, a moved virtual slot, a changed layout or size) fails.
#
# --update writes the baseline from the library instead of comparing (scripts/update-abi-baseline.sh).
#
# Exit status: 0 compatible (possibly with additions), 1 incompatible, 2 the check could not run.
set -euo pipefail

root="$(cd "$(dirname "$0")/.." && pwd)"
baseline=""
library=""
headers=""
suppressions=""
build_dir=""
update=0

usage() {
    sed -n '2,12p' "$0" | sed 's/^# \{0,1\}//' >&2
    exit 2
}

while [ $# -gt 0 ]; do
    case "$1" in
        --update) update=1 ;;
        --baseline) baseline="$2"; shift ;;
        --library) library="$2"; shift ;;
        --headers) headers="$2"; shift ;;
        --suppressions) suppressions="$2"; shift ;;
        -h|--help) usage ;;
        -*) echo "check-abi: unknown option $1" >&2; usage ;;
        *) [ -z "$build_dir" ] || usage; build_dir="$1" ;;
    esac
    shift
done

for tool in abidw abidiff; do
    if ! command -v "$tool" > /dev/null; then
        echo "check-abi: $tool is missing (Debian package abigail-tools, see scripts/bootstrap.sh)" >&2
        exit 2
    fi
done

scratch="$(mktemp -d "${TMPDIR:-/tmp}/pallix-abi.XXXXXX")"
trap 'rm -rf "$scratch"' EXIT

if [ -n "$library$headers" ]; then
    # Explicit form: a library and its public headers.
    if [ -z "$library" ] || [ -z "$headers" ] || [ -z "$baseline" ] || [ -n "$build_dir" ]; then
        usage
    fi
else
    # Build directory form: install the build and take the library and headers from there.
    build_dir="${build_dir:-$root/build/default}"
    baseline="${baseline:-$root/abi/libPallixRuntime.so.5.abi}"
    if [ -z "$suppressions" ] && [ -f "$root/abi/suppressions.abignore" ]; then
        suppressions="$root/abi/suppressions.abignore"
    fi
    if [ ! -f "$build_dir/CMakeCache.txt" ]; then
        echo "check-abi: $build_dir is not a configured build directory" >&2
        exit 2
    fi
    if ! cmake --install "$build_dir" --prefix "$scratch/prefix" > "$scratch/install.log" 2>&1; then
        cat "$scratch/install.log" >&2
        echo "check-abi: installing $build_dir failed (build it first)" >&2
        exit 2
    fi
    library="$(find "$scratch/prefix" -name 'libPallixRuntime.so.5' | head -n 1)"
    headers="$scratch/prefix/include/PallixRuntime"
    if [ -z "$library" ] || [ ! -d "$headers" ]; then
        echo "check-abi: the installed tree lacks libPallixRuntime.so.5 or its headers" >&2
        exit 2
    fi
fi

suppression_args=()
if [ -n "$suppressions" ]; then
    suppression_args=(--suppressions "$suppressions")
fi

if [ "$update" -eq 1 ]; then
    # Short locations keep machine paths out of the file while still letting abidiff tell the
    # types of the public headers from the others; hashed type ids keep updates small.
    mkdir -p "$(dirname "$baseline")"
    abidw --headers-dir "$headers" --drop-private-types --exported-interfaces-only "${suppression_args[@]}" \
        --no-corpus-path --no-comp-dir-path --short-locs --no-elf-needed \
        --type-id-style hash --out-file "$baseline" "$library"
    echo "check-abi: wrote $baseline from $library"
    exit 0
fi

if [ ! -f "$baseline" ]; then
    echo "check-abi: no baseline at $baseline (scripts/update-abi-baseline.sh writes one)" >&2
    exit 2
fi

set +e
abidiff --drop-private-types --exported-interfaces-only --headers-dir2 "$headers" "${suppression_args[@]}" \
    --fail-no-debug-info --no-corpus-path "$baseline" "$library" > "$scratch/report" 2>&1
status=$?
set -e
cat "$scratch/report"

# abidiff's status is a bit set: 1 error, 2 usage error, 4 a change, 8 an incompatible change.
# Some breaks (a changed record layout) only set 4, so with 4 alone the summaries must show
# nothing but additions.
if [ $((status & 3)) -ne 0 ]; then
    echo "check-abi: abidiff could not compare $baseline with $library (status $status)" >&2
    exit 2
fi
verdict=""
if [ $((status & 8)) -ne 0 ]; then
    verdict="incompatible"
elif [ $((status & 4)) -ne 0 ]; then
    summaries="$(grep -E 'changes summary:' "$scratch/report" || true)"
    if [ -z "$summaries" ] ||
        echo "$summaries" | grep -qE '(^|[^0-9])[1-9][0-9]* (Removed|Changed)'; then
        verdict="incompatible"
    else
        verdict="additions"
    fi
fi

case "$verdict" in
    "")
        echo "check-abi: $(basename "$library") matches the baseline" ;;
    additions)
        echo "check-abi: $(basename "$library") only adds to the baseline (allowed)" ;;
    incompatible)
        echo "check-abi: $(basename "$library") breaks the binary interface of the baseline $baseline" >&2
        echo "check-abi: if the break is intended, move the baseline with scripts/update-abi-baseline.sh in the same commit" >&2
        exit 1 ;;
esac
