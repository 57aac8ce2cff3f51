#!/usr/bin/env bash
# The process CPU share of the real program under Xvfb while the race clock runs.
#   bench/cpu_xvfb.sh [program] [seconds]
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
APP=$(realpath "${1:-$here/../build/marvolendo}")
SECONDS_RUN=${2:-10}
source "$here/../tests/e2e/xsession.sh"

now=$(date +%s)
midnight=$(date -d 'today 00:00' +%s)
printf ' %s \r\n 0 \r\n00:00\r\n\r\n\r\n\r\n 2 \r\n 0 \r\n 0 \r\n 0 \r\n' \
    "$(( (now - midnight - 5) * 1000000 ))" >"$WORK/MARVO.dat"
start_app
sleep 2
ticks() { awk '{ print $14 + $15 }' "/proc/$APP_PID/stat"; }
hz=$(getconf CLK_TCK)
before=$(ticks)
sleep "$SECONDS_RUN"
after=$(ticks)
awk -v t=$((after - before)) -v hz="$hz" -v s="$SECONDS_RUN" \
    'BEGIN { printf "process CPU under Xvfb with the clock running: %.2f %% of one core over %d s\n", 100 * t / hz / s, s }'
