#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
#
# try-package.sh: installs the packages of tools/make-package.sh in a bare Debian 12 below a temporary folder, without
# anything that the build needs, opens an image there as a desktop does for a double click, removes them and looks for
# what was left. As root; needs mmdebstrap and the packages of this machine's Debian mirror. Prints a line for each step
# and ends at the first one that fails.
set -euo pipefail
cd "$(dirname "$0")/.."
packages=(build/ci/packages/*.deb)
inside=("${packages[@]/#build\/ci/}")
[ -e "${packages[0]}" ] || { echo "No packages: run tools/make-package.sh first." >&2; exit 1; }

root=$(mktemp -d)
log=build/try-package.log
trap 'echo "Failed in line $LINENO; log: $log" >&2' ERR
trap 'umount "$root/proc" 2>/dev/null || true; rm -rf "$root"' EXIT
in_root() { chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive "$@"; }
# All files with their contents: what a removal must bring back. Caches and logs of dpkg, apt and ldconfig change by any
# installation; the folder of byte code is Python's own.
contents() {
    (cd "$root" && find etc usr opt srv var root home \( -path var/lib/dpkg -o -path var/lib/apt -o -path var/cache \
        -o -path var/log -o -path etc/ld.so.cache \) -prune -o -type f -print0 | sort -z | xargs -0 sha256sum)
}

: >"$log"
# The display, the desktop's opener and libraries, which a desktop has anyway; no recommended packages.
mmdebstrap --variant=apt --include=ca-certificates,xvfb,xauth,procps,libglib2.0-bin,shared-mime-info,desktop-file-utils,bash-completion \
    bookworm "$root" >>"$log" 2>&1
mount -t proc proc "$root/proc"
mkdir "$root/packages"
cp "${packages[@]}" "$root/packages"
in_root apt-get update -q >>"$log" 2>&1
# The libraries first, so that the list of files shows what our packages leave alone.
mapfile -t needs < <(in_root apt-get install -s "${inside[@]}" | sed -n 's/^Inst \([^ ]*\).*/\1/p' | grep -v tarvik)
in_root apt-get install -y -q "${needs[@]}" >>"$log" 2>&1
contents >"$root/before"
echo "A bare Debian 12 with ${#needs[@]} packages that ours need or recommend"

in_root apt-get install -y -q "${inside[@]}" >>"$log" 2>&1
echo "Installed: $(in_root dpkg-query -W -f '${Package} ${Version}, ' 'tarvik*' python3-tarvik)"
in_root tarvik-demo-data /tmp/demo --small >>"$log" 2>&1
image=$(cd "$root" && find tmp/demo -name '*.cbf' | sort | head -n 1)
master=$(cd "$root" && find tmp/demo -name '*_master.h5' | sort | head -n 1)
in_root tarvik-image info "/$master" >>"$log"
in_root gio info -a standard::content-type "/$image" | grep -q ' image/x-cbf$'
in_root gio mime image/x-cbf | grep -q '^Default .*: tarvik.desktop$'
echo "A CBF is known by its type, and TARVIK opens it"

for file in "$image" "$master"; do
    in_root timeout 120 xvfb-run -a bash -c '
        gio open "$0" >/tmp/said 2>&1 &
        for ((i = 0; i < 1000; i++)); do
            grep -q "TOTAL TIME LOADING IMAGE" /tmp/said && { pkill -x tarvik; exit 0; }
            sleep 0.1
        done
        cat /tmp/said; exit 1' "/$file" >>"$log" 2>&1
    echo "Opened by the desktop's opener: ${file##*/}"
done
in_root xvfb-run -a python3 -c "
import numpy, tarvik
view = tarvik.show(numpy.arange(10000, dtype=numpy.int32).reshape(100, 100))
print('python3-tarvik showed an array')"
[ "$(in_root bash -ic '. /usr/share/bash-completion/completions/tarvik-image
    COMP_WORDS=(tarvik-image con); COMP_CWORD=1; _tarvik tarvik-image; echo "${COMPREPLY[@]}"' 2>/dev/null)" = convert ]
echo "Completion completes"

in_root apt-get purge -y -q tarvik tarvik-simulator python3-tarvik >>"$log" 2>&1
rm -rf "$root"/root/.config "$root"/root/.cache "$root"/root/.local
contents >"$root/after"
left=$(diff "$root/before" "$root/after") || { echo "Left by the removal:"; echo "$left"; exit 1; }
[ -z "$(ls "$root/dev/shm" "$root/tmp" 2>/dev/null | grep -i tarvik)" ]
echo "Removed without a trace"
