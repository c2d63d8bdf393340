#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
#
# Fails when a C++ file is not formatted by the project's .clang-format. With --fix it formats them.
set -euo pipefail
cd "$(dirname "$0")/.."
files() { find imagelib src demo tests bench \( -name '*.h' -o -name '*.cpp' \) -print0; }
if [ "${1:-}" = --fix ]; then
    files | xargs -0 -r clang-format -i
else
    files | xargs -0 -r -n 40 -P "$(nproc)" clang-format --dry-run -Werror
fi
