#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
#
# screenshot.sh OUT.png PROGRAM [FILE...]: starts the viewer on a virtual screen of 1200 by 800
# pixels, waits until it has shown all files (or, without any, some seconds for its window), saves a
# picture of the screen and ends the program. A file that can't be shown is reported at once, and the
# exit code is 1; a picture is still taken if other files are shown.
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

files=0
for argument in "${@:2}"; do
    [ "$argument" = --disableGLSL ] || files=$((files + 1))
done
# The program prints one such line for each image that is shown, and one for each that is not.
shown() { grep -c 'TOTAL TIME LOADING IMAGE' "$work/out" || true; }
failed() { grep -c '^ERROR: ' "$work/err" || true; }
ready() {
    if [ "$files" -gt 0 ]; then
        [ $(($(shown) + $(failed))) -ge "$files" ]
    else
        [ "$tries" -ge 30 ]
    fi
}
reason=
tries=0
until ready; do
    if ! kill -0 "$program" 2>/dev/null; then
        tail -n 20 "$work/err" >&2
        echo "The viewer ended before its images were shown." >&2
        exit 1
    fi
    tries=$((tries + 1))
    [ "$tries" -lt 600 ] || { reason="Not all images were shown within a minute."; break; }
    sleep 0.1
done

if [ "$files" -eq 0 ] || [ "$(shown)" -gt 0 ]; then
    # A last paint may still be under way; two equal pictures in a row show that it is done.
    for _ in $(seq 20); do
        sleep 0.3
        import -window root "$work/new.ppm"
        ! cmp -s "$work/old.ppm" "$work/new.ppm" || break
        cp "$work/new.ppm" "$work/old.ppm"
    done
    convert "$work/new.ppm" "$out"
    echo "Saved a picture of the window: $out"
fi
{
    sed -n 's/^ERROR: //p' "$work/err"
    [ -z "$reason" ] || echo "$reason"
} >&2
[ -z "$reason" ] && [ "$(failed)" -eq 0 ]
