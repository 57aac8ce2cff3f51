#!/usr/bin/env bash
# From an F1 press to its journal entry, with 10,000 finishes listed and the clock running:
# the real program under Xvfb, pressed through XTest; and its start-up seen from outside.
#   bench/f1_latency.sh [program] [presses]
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
APP=$(realpath "${1:-$here/../build/marvolendo}")
PRESSES=${2:-200}
TOOL=$(dirname "$APP")/bench/f1_latency
source "$here/../tests/e2e/xsession.sh"

# A race started a minute ago in Milesimas, Lap mode, with 10,000 finishes.
now=$(date +%s)
midnight=$(date -d 'today 00:00' +%s)
{
    printf ' %s \r\n 0 \r\n00:00\r\n00:00:01:001\r\n\r\n\r\n 2 \r\n 0 \r\n 10000 \r\n' \
        "$(( (now - midnight - 60) * 1000000 ))"
    awk 'BEGIN {
        for (i = 1; i <= 10000; i++) {
            t = sprintf("00:%02d:%02d:%03d", int(i / 60) % 60, i % 60, i % 1000)
            printf "%4d- %s - 0:00:00:000\r\n%4d-%4d- %s - 0:00:00:000\r\n", i, t, i, i % 3000, t
        }
        printf " 0 \r\n"
    }'
} >"$WORK/MARVO.dat"
mkdir -p "$MARVOLENDO_DRIVE_C/Carreras/copias"

# Start-up seen from outside: from the program's launch to its window mapped on the screen.
read -r ms APP_PID < <(cd "$WORK" && "$TOOL" --start-up "$WORK/app.log" "$APP")
[ "$ms" -ge 0 ] || fail "the window did not appear"
APP_WIN=$(wait_window '^Marvolendo$')
awk -v ms="$ms" 'BEGIN {
    printf "start-up with 10,000 finishers, launch to a window on the screen: %d ms  (target < 300 ms) %s\n", ms, ms < 300 ? "ok" : "SLOW" }'
sleep 2
[ -f "$WORK/MARVO.jrn" ] || fail "no journal beside the state file"
"$TOOL" "$WORK/MARVO.jrn" "$PRESSES"
