#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
#
# Installs exactly the packages of packaging/debian-packages.txt that are missing. Quick if none is
# missing.
set -euo pipefail
cd "$(dirname "$0")/.."

wanted=$(sed 's/#.*//; s/[[:space:]]//g; /^$/d' packaging/debian-packages.txt | sort -u)
# One query for all: it fails when a name is unknown, and still reports the others.
present=$(xargs dpkg-query -W -f='${db:Status-Status} ${Package}\n' <<<"$wanted" 2>/dev/null || true)
mapfile -t missing < <(comm -23 <(echo "$wanted") <(sed -n 's/^installed //p' <<<"$present" | sort -u))
[ ${#missing[@]} -gt 0 ] || exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || {
        echo "Missing packages: ${missing[*]}. Install them as root, or install sudo." >&2
        exit 1
    }
    echo "${#missing[@]} packages are missing; sudo may ask for your password to install them."
    sudo -v
    as_root=(sudo)
fi
install='apt-get update -q && apt-get install -y -q --no-install-recommends "$@"'
tools/quietly.sh build/setup.log "Installing ${#missing[@]} packages (log: build/setup.log) ..." \
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive bash -c "$install" install "${missing[@]}"
