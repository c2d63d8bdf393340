#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
#
# make-screenshots.sh [BUILD [OUT]]: pictures of the viewer at work, on generated data and a virtual
# screen, into OUT (screenshots/ in the build folder). BUILD is the build folder (build/ci).
# docs/images holds some of them, made smaller: convert X.png -resize 900x600 +dither -colors 40 X.png
# (from-python.png to 600x400; TARVIK_PYTHON is the Python with NumPy)
# and of the panel its column: convert view-panel.png -crop 346x704+832+60 +repage +dither -colors 100 view-panel.png
# Needs xvfb, xdotool, ImageMagick and NumPy, of which packaging/debian-packages.txt has all.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
build=$(cd "${1:-$here/build/ci}" && pwd)
out=${2:-$build/screenshots}
mkdir -p "$out"
out=$(cd "$out" && pwd)

if [ -z "${TARVIK_ON_VIRTUAL_SCREEN:-}" ]; then
    export TARVIK_ON_VIRTUAL_SCREEN=1
    exec xvfb-run -a -s "-screen 0 1200x800x24" "$0" "$build" "$out"
fi

work=$(mktemp -d)
export XDG_CONFIG_HOME=$work/config
program=
stop() {
    [ -z "$program" ] || kill "$program" 2>/dev/null || true
    [ -z "$program" ] || wait "$program" 2>/dev/null || true
    program=
}
trap 'stop; rm -rf "$work"' EXIT

"$build/bin/tarvik-demo-data" "$work/demo" --size 1m --frames 6 --formats cbf >/dev/null
frames=("$work"/demo/1m/cbf/*.cbf)
rm "${frames[3]}"

# start FILE...: runs the viewer until it shows all files.
start() {
    : >"$work/log"
    "$build/bin/tarvik" "$@" >"$work/log" 2>&1 &
    program=$!
    for _ in $(seq 300); do
        [ "$(grep -c 'TOTAL TIME LOADING' "$work/log")" -lt $# ] || break
        kill -0 "$program" || { cat "$work/log" >&2; exit 1; }
        sleep 0.1
    done
    settle
}
# Two equal pictures in a row show that the last paint is done.
settle() {
    for _ in $(seq 30); do
        sleep 0.3
        import -window root "$work/new.ppm"
        ! cmp -s "$work/old.ppm" "$work/new.ppm" || break
        cp "$work/new.ppm" "$work/old.ppm"
    done
}
take() {
    settle
    import -window root -strip -define png:compression-level=9 "$out/$1.png"
    echo "$out/$1.png"
}
click() { xdotool mousemove "$1" "$2" click 1; sleep 0.3; }
key() { xdotool key "$@"; sleep 0.3; }

start
take empty-window
stop

start "${frames[0]}"
xdotool mousemove 420 420
take one-image
# The tabs stand in a row at the top.
tab=0
for x in 20 130 255 345; do
    click "$x" 12
    tab=$((tab + 1))
    take "ribbon-$tab"
done
click 25 12
key ctrl+o
take open-dialog
key Escape
key ctrl+0
take fitted
stop

# A window that remembers no place stands where these clicks go.
XDG_CONFIG_HOME=$work/fresh start "${frames[0]}"
click 1143 46  # Tools
take view-panel
# The arrow beside the choice of a contrast.
click 1057 555
take contrast-ranges
stop

start "${frames[0]}"
click 600 500
key ctrl+p
take export-name
xdotool type "$work/picture.png"
key Return
take export-dialog
stop

start "${frames[@]:0:3}" "${frames[4]}"
take four-frames
stop

echo "no image" >"$work/broken.cbf"
"$build/bin/tarvik" "${frames[0]}" "$work/broken.cbf" >"$work/log" 2>&1 &
program=$!
sleep 3
take error-dialog
stop

start "${frames[2]}"
click 600 500
key Escape
take keyboard-mode
stop

start "${frames[2]}"
click 600 500
key n  # the keyboard mode is still on
take strip-with-a-missing-image
stop

# The lines of README.md, with the image of a file as array.
cat >"$work/script.py" <<'END'
import sys, tarvik

with tarvik.open_main_frame(700, 500) as window:
    source = window.open_sub_frame()
    source.load_file(sys.argv[1])
    source.wait_for_image()
    array = source.image().copy()
view = tarvik.show(array)
view.wait_for_image()
view.set_paint_list([tarvik.Ellipse(each.x + 0.5, each.y + 0.5, 9, 9, 0, (255, 80, 80, 255))
                     for each in view.peaks()[:60]])
print("shown", flush=True)
view.wait_for_click(timeout=600)
END
PYTHONPATH=$here/python/src TARVIK=$build/bin/tarvik "${TARVIK_PYTHON:-python3}" "$work/script.py" "${frames[0]}" \
    >"$work/log" &
program=$!
for _ in $(seq 300); do
    ! grep -q shown "$work/log" || break
    sleep 0.1
done
take from-python
stop

QT_SCALE_FACTOR=2 start "${frames[0]}"
take scale-2
stop
