#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
#
# Builds the fuzzers and runs each for a time, two at once: tools/run-fuzz.sh SECONDS [target...]
# New inputs are kept in build/fuzz/corpus. Fails on any finding and names the file that causes it.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:?seconds for each target}
shift

build=build/fuzz
mkdir -p "$build"
cmake --preset fuzz >"$build-configure.log" 2>&1 || { cat "$build-configure.log"; exit 1; }
cmake --build --preset fuzz -j "$(nproc)"
if [ $# -eq 0 ]; then
    for fuzzer in "$build"/bin/fuzz_*; do set -- "$@" "${fuzzer##*/fuzz_}"; done
fi
mkdir -p "$build/findings"
# Files that fuzzers write and read again are kept off the disk if possible.
memory=/tmp
[ -w /dev/shm ] && memory=/dev/shm

# The time limit is far above what any file of this size may take; the memory limit is for the sums
# of blocks, the readers must report a single block that can't be allocated.
run() {
    target=$1
    mkdir -p "$build/corpus/$target"
    dictionary=tests/fuzz/$target.dict
    status=0
    ASAN_OPTIONS=allocator_may_return_null=1:malloc_context_size=8 TMPDIR=$memory nice -n 19 "$build/bin/fuzz_$target" \
        -max_total_time="$seconds" -timeout=25 -rss_limit_mb=2048 -max_len=16384 \
        -print_final_stats=1 -artifact_prefix="$build/findings/$target-" \
        $([ ! -e "$dictionary" ] || echo "-dict=$dictionary") \
        $(cat "tests/fuzz/$target.options" 2>/dev/null || true) \
        "$build/corpus/$target" "tests/fuzz/corpus/$target" >"$build/$target.log" 2>&1 || status=$?
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$build/$target.log")
    if [ "$status" -eq 0 ]; then
        echo "$target: $runs runs, no finding"
        return
    fi
    echo "$target: a finding after ${runs:-?} runs; the log is $build/$target.log"
    grep -aoE '^SUMMARY.*|^Not as it should be.*|Test unit written to .*|.*Assertion .*failed.*|.*runtime error.*' \
        "$build/$target.log" || true
    return 1
}
export -f run
export build seconds memory
printf '%s\n' "$@" | xargs -P 2 -I '{}' bash -c 'run {}'
