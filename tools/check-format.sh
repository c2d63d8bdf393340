#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
#
# Fails when a C++ file is not formatted by the project's .clang-format. With --fix it formats them.
# Files unchanged since they last passed are skipped.
set -euo pipefail
cd "$(dirname "$0")/.."
folders=(imagelib src demo simulator tests bench)
files() { find "${folders[@]}" \( -name '*.h' -o -name '*.cpp' \) "$@" -print0; }
if [ "${1:-}" = --fix ]; then
    files | xargs -0 -r clang-format -i
    exit
fi
mkdir -p build
passed=build/check-format.passed
changed=()
{ clang-format --version && files | sort -z | tr '\0' '\n'; } >$passed.new
# The time of the last change of an inode, unlike that of its content, can't be set back; but files
# in a folder that was moved here keep theirs, so all are read when names have changed.
if cmp -s $passed $passed.new && rules=$(find .clang-format tools/check-format.sh -cnewer $passed) &&
    [ -z "$rules" ]; then
    changed=(-cnewer $passed)
fi
touch -d '1 second ago' $passed.new
files "${changed[@]}" | xargs -0 -r -n 40 -P "$(nproc)" clang-format --dry-run -Werror
mv $passed.new $passed
