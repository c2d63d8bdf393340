#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
#
# make-screenshots.sh [BUILD [OUT]]: pictures of the viewer at work, on generated data and a virtual
# screen, into OUT (screenshots/ in the build folder). BUILD is the build folder (build/ci).
# Those of the guide are also made as small as it shows them, in OUT/guide, to be copied to docs/images.
# TARVIK_PYTHON is the Python with NumPy.
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
# for_guide NAME [CONVERT-ARGUMENT...]: the picture of that name as the guide shows it.
for_guide() {
    local name=$1
    shift
    [ $# -gt 0 ] || set -- -resize 900x600 +dither -colors 40
    mkdir -p "$out/guide"
    convert "$out/$name.png" "$@" -strip -define png:compression-level=9 "$out/guide/$name.png"
}
# drag BUTTON X Y X Y
drag() {
    xdotool mousemove "$2" "$3" mousedown "$1" mousemove "$((($2 + $4) / 2))" "$((($3 + $5) / 2))" \
        mousemove "$4" "$5"
    sleep 0.3
    xdotool mouseup "$1"
    sleep 0.3
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
for_guide view-panel -crop 346x704+832+60 +repage +dither -colors 100
# The arrow beside the choice of a contrast.
click 1057 555
take contrast-ranges
stop

# All panels folded but the ones for a measurement.
XDG_CONFIG_HOME=$work/measure start "${frames[0]}"
click 1143 46  # Tools
take window
for_guide window
click 900 75   # View, to fold it
click 900 105  # Statistics
click 920 135  # Region of Interest
click 849 197  # Circle Plot
xdotool mousemove 477 457 click --repeat 3 4
settle
drag 3 477 457 525 457
xdotool mousemove 250 250
take measure-spot
for_guide measure-spot
key ctrl+0
xdotool mousemove 1000 130 click --repeat 20 4
click 1015 197  # Powder Plot
drag 3 416 256 416 240
xdotool mousemove 250 140
take measure-ring
for_guide measure-ring
xdotool keydown ctrl
drag 3 420 422 420 252
xdotool keyup ctrl
xdotool mousemove 1000 130 click --repeat 20 4
sleep 0.3
click 900 105  # Statistics, to fold it
click 900 135  # Info
click 900 187  # Image Info
xdotool mousemove 1000 600 click --repeat 15 5
sleep 0.5
# Empties the angles, which are to stay as they are.
xdotool mousemove 982 421 click --repeat 2 1 key BackSpace
sleep 0.3
xdotool mousemove 1025 444 click --repeat 2 1 key BackSpace
sleep 0.3
click 1115 665 # Write To All
take header-preview
for_guide header-preview
stop

start "${frames[0]}"
click 600 500
key ctrl+p
take export-name
xdotool type "$work/picture.png"
key Return
take export-dialog
for_guide export-dialog
stop

start "${frames[@]:0:3}" "${frames[4]}"
take four-frames
for_guide four-frames
stop

# A series of a simulated detector, in the middle of it.
"$build/bin/tarvik-control-unit-simulator" --port 0 --frame-size 1030x1065 >"$work/unit" 2>&1 &
unit=$!
for _ in $(seq 100); do
    ! grep -q Listening "$work/unit" || break
    sleep 0.1
done
XDG_CONFIG_HOME=$work/acquisition start
click 70 46  # New Window
click 1143 46 # Tools
click 996 74  # View, to fold it
click 996 164 # Data Acquisition
# field X Y TEXT: types into a field of the panel.
field() {
    click "$1" "$2"
    key ctrl+a
    xdotool type "$3"
    key Tab
    sleep 1
}
click 876 249 # Connect
xdotool type "localhost:$(sed -n 's/Listening on port //p' "$work/unit")"
key Return
sleep 2
field 1066 350 100 # images
field 1066 384 0.1 # seconds between them
field 1076 513 "$work/lysozyme"
click 866 629 # Start
sleep 4
key ctrl+0
sleep 4
import -window root -strip -define png:compression-level=9 "$out/acquisition.png"
for_guide acquisition -crop 1192x764+0+0 +repage -resize 900x600 +dither -colors 60
stop
kill "$unit"

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
convert "$out/strip-with-a-missing-image.png" -crop 1192x90+4+92 +repage "$work/above.ppm"
convert "$out/strip-with-a-missing-image.png" -crop 1192x36+4+764 +repage "$work/below.ppm"
convert "$work/above.ppm" "$work/below.ppm" -append "$out/strip.png"
for_guide strip -resize 900x +dither -colors 40
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
for_guide from-python -resize 600x400 +dither -colors 40
stop

QT_SCALE_FACTOR=2 start "${frames[0]}"
take scale-2
stop
