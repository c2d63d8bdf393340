#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
#
# quietly.sh LOG HEADLINE COMMAND...: prints the headline and runs a command with its output in a
# file. Meanwhile the latest line of that file is shown with the elapsed time: on a terminal every
# second in one line, elsewhere every half minute. When the command fails, the end of its output
# follows on standard error. The exit code is the command's.
set -euo pipefail
[ $# -ge 3 ] || { sed -n '5,8s/^# //p' "$0" >&2; exit 2; }
log=$1
headline=$2
shift 2

clock() { printf '%d:%02d' $((SECONDS / 60)) $((SECONDS % 60)); }

latest() { tail -c 1000 "$log" | tr '\r\t' '\n ' | tr -d '\000-\011\013-\037' | grep . | tail -n 1 | cut -c 1-70; }

# Waits without a process that could outlive this one.
exec {never}<> <(:)
show() {
    local pause=30 begin='' end='\n'
    [ ! -t 1 ] || { pause=1 begin='\r\033[K' end=''; }
    while ! read -rt "$pause" -u "$never"; do
        printf "$begin  %s  %s$end" "$(clock)" "$(latest || true)"
    done
}
showing=
hush() {
    [ -n "$showing" ] || return 0
    kill "$showing" 2>/dev/null || true
    wait "$showing" 2>/dev/null || true
    showing=
    [ ! -t 1 ] || printf '\r\033[K'
}

mkdir -p "$(dirname "$log")"
echo "$headline"
: >"$log"
SECONDS=0
show &
showing=$!
trap hush EXIT
code=0
"$@" >"$log" 2>&1 || code=$?
hush
if [ "$code" -ne 0 ]; then
    tail -n 30 "$log" >&2
    echo "This failed; the lines above are the end of $log." >&2
elif [ "$SECONDS" -ge 10 ]; then
    echo "  done after $(clock)"
fi
exit "$code"
