#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
#
# build.sh [TARGET...]: builds targets of the ci preset, all of them by default, and configures
# first if needed. Silent when there is nothing to do.
set -euo pipefail
cd "$(dirname "$0")/.."
build=build/ci

# The build itself notices changed CMakeLists.txt files.
if [ -n "$(find CMakePresets.json packaging/debian-packages.txt -cnewer $build/build.ninja 2>&1)" ]; then
    tools/quietly.sh build/configure.log "Configuring (log: build/configure.log) ..." cmake --preset ci
fi

plan=$(ninja -C $build -n "$@" 2>&1 | tail -n 1 || true)
[ "$plan" != "ninja: no work to do." ] || exit 0
steps=$(sed -n 's|^\[[0-9]*/\([0-9]*\)\].*|\1|p' <<<"$plan")
# A step takes some three seconds of a processor.
minutes=$(((${steps:-0} * 3 / $(nproc) + 59) / 60))
expected=
if [ "$minutes" -ge 2 ]; then
    expected="about $minutes minutes"
    [ -e $build/bin/tarvik ] || expected+=" the first time"
    expected+="; "
fi
tools/quietly.sh build/build.log "Building (${expected}log: build/build.log) ..." \
    ninja -C $build "$@"
