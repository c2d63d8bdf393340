#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
#
# make-package.sh: builds and makes the Debian packages, build/ci/packages/*.deb, and prints their names. Where lintian is
# installed its errors are reported and make the exit code 1.
set -euo pipefail
cd "$(dirname "$0")/.."
tools/setup.sh
tools/build.sh
rm -rf build/ci/packages
tools/quietly.sh build/package.log "Making the packages (log: build/package.log) ..." \
    cmake --build build/ci --target package
rm -rf build/ci/packages/_CPack_Packages
printf '%s\n' build/ci/packages/*.deb
! command -v lintian >/dev/null || lintian --allow-root --profile debian --fail-on error build/ci/packages/*.deb
