#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
#
# Installs exactly the packages of packaging/debian-packages.txt that are missing. Quick when none is.
set -euo pipefail
cd "$(dirname "$0")/.."

mapfile -t wanted < <(sed 's/#.*//; s/[[:space:]]//g; /^$/d' packaging/debian-packages.txt)
missing=()
for package in "${wanted[@]}"; do
    status=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
    [ "$status" = installed ] || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || {
        echo "Missing packages: ${missing[*]}. Install them as root, or install sudo." >&2
        exit 1
    }
    as_root=(sudo)
fi
echo "Installing packages: ${missing[*]}"
"${as_root[@]}" apt-get update -q
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -q --no-install-recommends "${missing[@]}"
