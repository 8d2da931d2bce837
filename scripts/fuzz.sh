#!/usr/bin/env bash
# Fuzzing campaign: configures and builds the "fuzz" preset (clang, libFuzzer, ASan and UBSan),
# then runs every harness the build declares for SECONDS each, starting from its seed corpus, and
# fails on any crash, leak or time-out, naming the harness and the input that caused it.
#
# The harnesses are those declared with pallix_add_fuzzer(), read from the list the build writes
# (build/fuzz/fuzz/harnesses.tsv); a harness source not in that list, or a corpus directory under
# fuzz/*/corpus/ that no harness uses, is an error, so that no harness is silently skipped.
#
# A local campaign (the default) merges the inputs that found new coverage into the seed corpora
# under fuzz/, to be reviewed and committed. With --ci (what .ci/run uses) the seed corpora are
# left alone and new inputs stay in a scratch corpus under build/fuzz.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd -P)

usage() {
    cat <<'EOF'
Usage: scripts/fuzz.sh [--ci] [--jobs N] [SECONDS] [HARNESS...]

Builds the "fuzz" preset and runs each libFuzzer harness for SECONDS (default 300) on its seed
corpus, N harnesses at a time (default 2). Fails on any crash, leak or time-out.

  --ci        do not touch the seed corpora under fuzz/; new inputs stay in
              build/fuzz/corpus/<harness> (continuous integration runs this)
  --jobs N    how many harnesses run at the same time
  HARNESS...  run only these harnesses (default: every harness of the build)
  -h, --help  print this text

Without --ci, the inputs that found new coverage are merged into each harness's seed corpus
(its first CORPUS directory) with libFuzzer's -merge=1: review them and commit them.

Everything else stays under build/fuzz: logs/<harness>.log, artifacts/<harness>/ (crash-*,
leak-*, timeout-* and oom-* inputs) and corpus/<harness>/ (the inputs found by the last run).
Replay an artifact with: build/fuzz/fuzz/<area>/<harness> <artifact>
The harnesses' scratch files go to a fresh directory on /dev/shm (TMPDIR) when /dev/shm is
writable, since the library syncs every file it saves; it is removed at the end.
EOF
}

die() {
    echo "fuzz.sh: $*" >&2
    exit 1
}

ci=0
jobs=2
seconds=
selected=()
while [ $# -gt 0 ]; do
    case $1 in
    --ci) ci=1 ;;
    --jobs)
        [ $# -ge 2 ] || die "--jobs needs a number"
        jobs=$2
        shift
        ;;
    --jobs=*) jobs=${1#--jobs=} ;;
    -h | --help)
        usage
        exit 0
        ;;
    -*)
        usage >&2
        exit 2
        ;;
    *)
        if [ -z "$seconds" ] && [[ $1 =~ ^[0-9]+$ ]]; then
            seconds=$1
        else
            selected+=("$1")
        fi
        ;;
    esac
    shift
done
seconds=${seconds:-300}
[[ $seconds =~ ^[1-9][0-9]*$ ]] || die "SECONDS must be a positive number"
[[ $jobs =~ ^[1-9][0-9]*$ ]] || die "--jobs must be a positive number"

build=build/fuzz
manifest=$build/fuzz/harnesses.tsv
logs=$build/logs
artifacts=$build/artifacts
found=$build/corpus

echo "== building the fuzz preset"
cmake --preset fuzz
cmake --build --preset fuzz

grep -q '^PALLIX_FUZZ_ENGINE:BOOL=ON$' "$build/CMakeCache.txt" ||
    die "$build is not configured with PALLIX_FUZZ_ENGINE=ON"
[ -f "$manifest" ] || die "the build wrote no harness list ($manifest)"

# The harnesses: name -> executable, corpus directories and sources (';'-separated lists).
declare -A executable_of corpora_of
names=()
declared_sources=()
declared_corpora=()
# A ';'-separated list of paths made physical, so that they compare with the ones found here.
physical() {
    local path list out=()
    IFS=';' read -r -a list <<<"$1"
    for path in "${list[@]}"; do
        out+=("$(realpath -m "$path")")
    done
    (IFS=';' && echo "${out[*]}")
}
while IFS=$'\t' read -r name executable corpora sources; do
    [ -n "$name" ] || continue
    names+=("$name")
    executable_of[$name]=$(realpath -m "$executable")
    corpora_of[$name]=$(physical "$corpora")
    IFS=';' read -r -a list <<<"${corpora_of[$name]}"
    declared_corpora+=("${list[@]}")
    IFS=';' read -r -a list <<<"$(physical "$sources")"
    declared_sources+=("${list[@]}")
done <"$manifest"
[ ${#names[@]} -gt 0 ] || die "the build declares no harness ($manifest is empty)"

# Everything must agree: each harness built and seeded, each harness source and each corpus
# directory of the tree used by a harness.
problems=()
contains() {
    local wanted=$1 item
    shift
    for item in "$@"; do
        [ "$item" = "$wanted" ] && return 0
    done
    return 1
}
for name in "${names[@]}"; do
    [ -x "${executable_of[$name]}" ] ||
        problems+=("harness $name was not built: ${executable_of[$name]}")
    IFS=';' read -r -a list <<<"${corpora_of[$name]}"
    for dir in "${list[@]}"; do
        if [ ! -d "$dir" ]; then
            problems+=("harness $name has no corpus directory ${dir#"$root"/}")
        elif [ -z "$(find "$dir" -type f -print -quit)" ]; then
            problems+=("the corpus of harness $name is empty: ${dir#"$root"/}")
        fi
    done
done
for dir in fuzz/*/corpus/*/; do
    [ -d "$dir" ] || continue
    contains "$root/${dir%/}" "${declared_corpora[@]}" ||
        problems+=("corpus directory ${dir%/} belongs to no harness (pallix_add_fuzzer CORPUS)")
done
while IFS= read -r -d '' source; do
    contains "$root/$source" "${declared_sources[@]}" ||
        problems+=("$source defines LLVMFuzzerTestOneInput but is in no pallix_add_fuzzer()")
done < <(grep -lzZP 'LLVMFuzzerTestOneInput\s*\([^)]*\)\s*\{' -r fuzz --include='*.cpp' || true)
for name in "${selected[@]}"; do
    [ -n "${executable_of[$name]+set}" ] || problems+=("no harness is called $name")
done
if [ ${#problems[@]} -gt 0 ]; then
    printf 'fuzz.sh: %s\n' "${problems[@]}" >&2
    exit 1
fi
[ ${#selected[@]} -gt 0 ] || selected=("${names[@]}")

# The harnesses' scratch directories go to memory when possible; removed whatever happens.
state=$(mktemp -d "$build/.fuzz-run.XXXXXX")
scratch=
if [ -d /dev/shm ] && [ -w /dev/shm ]; then
    scratch=$(mktemp -d /dev/shm/pallix-fuzz.XXXXXX 2>/dev/null || true)
fi
if [ -n "$scratch" ]; then
    export TMPDIR=$scratch
fi
stop_workers() {
    local pid children
    for pid in $(jobs -p); do
        mapfile -t children < <(pgrep -P "$pid" || true)
        kill -TERM "$pid" "${children[@]}" 2>/dev/null || true
    done
}
cleanup() {
    stop_workers
    rm -rf "$state" ${scratch:+"$scratch"}
}
trap cleanup EXIT
trap 'exit 130' INT TERM

export ASAN_OPTIONS="print_legend=0${ASAN_OPTIONS:+:$ASAN_OPTIONS}:detect_leaks=1"
export UBSAN_OPTIONS="${UBSAN_OPTIONS:+$UBSAN_OPTIONS:}print_stacktrace=1:halt_on_error=1"
mkdir -p "$logs" "$artifacts" "$found"

# The value of libFuzzer's final statistic $2 in log $1, or "?".
final_stat() {
    local value
    value=$(sed -n "s/^stat::$2: *//p" "$1" | tail -n 1)
    echo "${value:-?}"
}

# The sanitizer's or libFuzzer's report in log $1 (from its first line, without the dump of shadow
# memory), or the end of the log when it holds none.
report_of() {
    local start
    start=$(grep -n -m 1 -E '^==[0-9]+== ?ERROR|^ALARM: |runtime error:' "$1" | cut -d: -f1)
    if [ -z "$start" ]; then
        tail -n 60 "$1"
        return
    fi
    tail -n "+$start" "$1" | grep -v -E '^Shadow bytes around|^(=>|  )0x[0-9a-f]+: ' | head -n 150
}

# Runs harness $1, prints its one-line summary and leaves "ok" or a failure message in the state
# directory. Never fails itself: the caller reads the state.
run_harness() {
    local name=$1
    local executable=${executable_of[$name]}
    local log=$logs/$name.log
    local prefix=$artifacts/$name/
    local output=$found/$name
    local seeds status=0 result artifact before after
    IFS=';' read -r -a seeds <<<"${corpora_of[$name]}"
    rm -rf "$output"
    mkdir -p "$output" "$prefix"

    "$executable" -max_total_time="$seconds" -timeout=5 -rss_limit_mb=2048 \
        -print_final_stats=1 -detect_leaks=1 -artifact_prefix="$prefix" \
        "$output" "${seeds[@]}" >"$log" 2>&1 || status=$?

    if [ "$status" -eq 0 ]; then
        result=ok
        if [ "$ci" -eq 0 ]; then
            before=$(find "${seeds[0]}" -type f | wc -l)
            echo "== merging $output into ${seeds[0]}" >>"$log"
            if "$executable" -merge=1 -timeout=5 -rss_limit_mb=2048 -artifact_prefix="$prefix" \
                "${seeds[0]}" "$output" >>"$log" 2>&1; then
                after=$(find "${seeds[0]}" -type f | wc -l)
                result="ok, $((after - before)) inputs added to ${seeds[0]#"$root"/}"
            else
                status=1
                result="FAILED: merging into the seed corpus failed"
                echo "$name: merging into ${seeds[0]#"$root"/} failed" >"$state/$name"
            fi
        fi
    else
        artifact=$(sed -n 's/^.*Test unit written to //p' "$log" | tail -n 1)
        if [ -n "$artifact" ]; then
            local kind
            kind=$(basename "$artifact")
            kind=${kind%%-*}
            result="FAILED: $kind, $artifact"
            echo "$name: $kind (exit $status); input $artifact" >"$state/$name"
        else
            result="FAILED: exit $status, no input written"
            echo "$name: failed (exit $status) without writing an input" >"$state/$name"
        fi
    fi
    [ "$status" -ne 0 ] || echo ok >"$state/$name"
    printf '%-38s runs %9s  exec/s %6s  new %4s  %s\n' "$name" \
        "$(final_stat "$log" number_of_executed_units)" \
        "$(final_stat "$log" average_exec_per_sec)" \
        "$(final_stat "$log" new_units_added)" "$result"
}

mode="local campaign, new inputs merged into the seed corpora"
[ "$ci" -eq 0 ] || mode="CI, seed corpora left alone"
echo "== fuzzing ${#selected[@]} harnesses for ${seconds}s each, $jobs at a time ($mode)"
echo "   TMPDIR=${TMPDIR:-unset}; logs in $logs, artifacts in $artifacts"
running=0
for name in "${selected[@]}"; do
    if [ "$running" -ge "$jobs" ]; then
        wait -n || true
        running=$((running - 1))
    fi
    run_harness "$name" &
    running=$((running + 1))
done
wait

failed=0
for name in "${selected[@]}"; do
    if [ "$(cat "$state/$name" 2>/dev/null)" = ok ]; then
        continue
    fi
    failed=$((failed + 1))
    {
        echo
        if [ -f "$state/$name" ]; then
            echo "FAILED $(cat "$state/$name")"
        else
            echo "FAILED $name: the run did not finish"
        fi
        echo "   log $logs/$name.log; replay: ${executable_of[$name]#"$root"/} <input>"
        echo "---- from $logs/$name.log"
        report_of "$logs/$name.log"
        echo "----"
    } >&2
done
if [ "$failed" -gt 0 ]; then
    echo "fuzz.sh: $failed of ${#selected[@]} harnesses failed" >&2
    exit 1
fi
echo "== all ${#selected[@]} harnesses ran ${seconds}s without a crash, leak or time-out"
