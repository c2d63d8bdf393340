#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
#
# check-tidy.sh [--all | FILE.cpp...]: clang-tidy on the product's sources that differ from the
# upstream branch, or from the last commit but one if none does; a header is checked with the
# source of the same name. Needs a configured and built build/ci. A file that passed is not read
# again until it changes. Without --all or files it stops after TARVIK_TIDY_SECONDS (90) and says
# what is left.
set -euo pipefail
cd "$(dirname "$0")/.."
limit=${TARVIK_TIDY_SECONDS:-90}
tidy=$(command -v clang-tidy-14 || command -v clang-tidy)

changed() {
    local base
    base=$(git merge-base HEAD '@{upstream}' 2>/dev/null || git rev-parse HEAD)
    [ "$base" != "$(git rev-parse HEAD)" ] || base=$(git rev-parse -q --verify HEAD~1 || echo "$base")
    { git diff --name-only --diff-filter=d "$base"; git ls-files --others --exclude-standard; } |
        grep -E '^(imagelib|src|demo|simulator)/.*\.(h|cpp)$' | sed 's/\.h$/.cpp/' | sort -u
}
case ${1:-} in
--all) limit=86400 && mapfile -t files < <(git ls-files 'imagelib/*.cpp' 'src/*.cpp' 'demo/*.cpp' 'simulator/*.cpp') ;;
'') mapfile -t files < <(changed) ;;
*) limit=86400 && files=("$@") ;;
esac

# Passes when the file and the header of the same name do; other headers are checked on their own.
look() {
    local file=$1 stamp=build/tidy/$1.passed own
    [ -e "$file" ] && grep -qF "/$file\"" build/ci/compile_commands.json || return 0
    [ -z "$(find "$file" "${file%.cpp}.h" .clang-tidy -cnewer "$stamp" 2>/dev/null)" ] && [ -e "$stamp" ] && return 0
    [ "$(date +%s)" -lt "$end" ] || { echo "$file" >>build/tidy/left; return 0; }
    own=$(basename "$file" .cpp)
    "$tidy" -p build/tidy --quiet --extra-arg=-Wno-unknown-warning-option \
        --header-filter="/$own\.h$" "$file" 2>/dev/null || { echo "clang-tidy finds fault with $file" && return 1; }
    mkdir -p "$(dirname "$stamp")"
    touch "$stamp"
}
export -f look
export tidy end=$(($(date +%s) + limit))
mkdir -p build/tidy
rm -f build/tidy/left
# clang can't read what the compiler has precompiled.
sed 's/ -Winvalid-pch -include [^ ]*cmake_pch.hxx//' build/ci/compile_commands.json >build/tidy/compile_commands.json
printf '%s\0' "${files[@]}" | xargs -0 -r -n 1 -P "$(nproc)" bash -c 'look "$1"' look
[ ! -e build/tidy/left ] ||
    echo "clang-tidy: $(wc -l <build/tidy/left) changed files are left for tools/check-tidy.sh --all, as time is up"
