#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
#
# Builds and runs all benchmarks with repetitions and prints a table of their medians and ratios.
#   bench/run.sh [name part] [benchmark arguments]
# The results stand in build/ci/bench-results/*.json. TARVIK_HWY_TARGET=AVX2 holds the libraries to that
# instruction set. A quiet machine gives ratios that repeat within 10 %.
set -euo pipefail
cd "$(dirname "$0")/.."
part=${1:-}
[ $# -eq 0 ] || shift
build=build/ci
cmake --preset ci >/dev/null
cmake --build --preset ci
results=$build/bench-results
mkdir -p "$results"
failed=()
for program in "$build"/bin/bench_*"$part"*; do
    name=$(basename "$program")
    screen=()
    if [ "$name" = bench_render ] && [ -z "${DISPLAY:-}" ]; then
        screen=(xvfb-run -a -s "-screen 0 1600x1200x24")
    fi
    result=$results/$name${TARVIK_HWY_TARGET:+-$TARVIK_HWY_TARGET}.json
    "${screen[@]}" "$program" --benchmark_repetitions=3 --benchmark_report_aggregates_only=true \
        --benchmark_out="$result" --benchmark_out_format=json "$@" || { failed+=("$name"); rm -f "$result"; }
done
python3 bench/compare.py "$results"/*.json
[ ${#failed[@]} -eq 0 ] || { echo "failed: ${failed[*]}" >&2; exit 1; }
