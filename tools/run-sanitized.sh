#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
#
# Builds and runs the tests under a sanitizer: tools/run-sanitized.sh asan|tsan [ctest arguments]
set -euo pipefail
cd "$(dirname "$0")/.."
preset=${1:?asan or tsan}
shift
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset"
# Mesa and fontconfig keep what they allocate once; their code and that of Qt, whose thread pool and
# queued calls synchronise unnoticed, is not built for the thread
# sanitizer: both are left out by name.
export LSAN_OPTIONS=suppressions=$PWD/tools/lsan.supp:print_suppressions=0
export TSAN_OPTIONS=suppressions=$PWD/tools/tsan.supp:halt_on_error=1
# The forks and joins of TBB, whose code is not built for it either, would be reported by the
# hundred: on one core TBB starts no threads, and those of the program are still told apart.
pin=()
[ "$preset" != tsan ] || pin=(taskset -c "$(taskset -cp $$ | sed 's/.*: *\([0-9]*\).*/\1/')")
"${pin[@]}" ctest --preset "$preset" -j "$(nproc)" "$@"
