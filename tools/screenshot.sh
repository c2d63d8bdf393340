#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
#
# screenshot.sh OUT.png PROGRAM ARGS...: starts a program on a virtual screen of 1200 by 800 pixels,
# waits until it has shown all the image files among its arguments (or, without any, some seconds for
# its window), saves a picture of the screen, ends the program and prints the picture's name. When
# the images don't come within a minute the picture is taken all the same, and the exit code is 1.
set -euo pipefail
[ $# -ge 2 ] || { sed -n '5,8s/^# //p' "$0" >&2; exit 2; }

if [ -z "${TARVIK_ON_VIRTUAL_SCREEN:-}" ]; then
    export TARVIK_ON_VIRTUAL_SCREEN=1
    exec xvfb-run -a -s "-screen 0 1200x800x24" "$0" "$@"
fi

out=$1
shift
work=$(mktemp -d)
trap 'kill "${program:-}" 2>/dev/null || true; rm -rf "$work"' EXIT

touch "$work/out" "$work/err"
"$@" >"$work/out" 2>"$work/err" &
program=$!

images=0
for argument in "${@:2}"; do
    if [ -f "$argument" ]; then images=$((images + 1)); fi
done
# The program prints one such line for each image that is ready to be shown.
ready() {
    if [ "$images" -gt 0 ]; then
        [ "$(grep -c 'TOTAL TIME LOADING IMAGE' "$work/out")" -ge "$images" ]
    else
        [ "$tries" -ge 30 ]
    fi
}
complain() {
    echo "$1" >&2
    cat "$work/out" "$work/err" >&2
    failed=1
}
failed=0
tries=0
until ready; do
    kill -0 "$program" 2>/dev/null || { complain "The program ended before its images were shown."; exit 1; }
    tries=$((tries + 1))
    [ "$tries" -lt 600 ] || { complain "Not all images were shown within a minute."; break; }
    sleep 0.1
done
# A last paint may still be under way: two equal pictures in a row tell that it is done.
for _ in $(seq 20); do
    sleep 0.3
    import -window root "$work/new.png"
    if [ -e "$work/old.png" ] && cmp -s <(convert "$work/old.png" rgb:-) \
        <(convert "$work/new.png" rgb:-); then
        break
    fi
    mv "$work/new.png" "$work/old.png"
done
[ -e "$work/new.png" ] || mv "$work/old.png" "$work/new.png"
cp "$work/new.png" "$out"
echo "$out"
exit "$failed"
