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
running_race 60 0 10000
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
