#!/usr/bin/env bash
# The process CPU share of the real program under Xvfb while the race clock runs, on its
# heaviest screen (Milesimas, bibs and times, 10,000 finishes listed, a start order of 500),
# then of a bare Qt label updated 60 times a second, in the same X server for the same time.
#   bench/cpu_xvfb.sh [program] [seconds]
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
APP=$(realpath "${1:-$here/../build/marvolendo}")
SECONDS_RUN=${2:-20}
REFERENCE=$(dirname "$APP")/bench/reference_label
source "$here/../tests/e2e/xsession.sh"

# A race started five seconds ago, in the state file's own layout.
now=$(date +%s)
midnight=$(date -d 'today 00:00' +%s)
{
    printf ' %s \r\n 0 \r\n00:00\r\n00:00:00:000\r\n\r\n\r\n 2 \r\n 1 \r\n 10000 \r\n' \
        "$(( (now - midnight - 5) * 1000000 ))"
    awk 'BEGIN {
        for (i = 1; i <= 10000; i++) {
            t = sprintf("00:%02d:%02d:%03d", int(i / 60) % 60, i % 60, i % 1000)
            printf "%4d- %s - 0:00:00:000\r\n%4d-%4d- %s - 0:00:00:000\r\n", i, t, i, i % 3000, t
        }
        printf " 500 \r\n"
        for (i = 1; i <= 500; i++) printf "%4d-%4d - 0:%02d:%02d\r\n", i, i, int(i / 2) % 60, (i * 30) % 60
    }'
} >"$WORK/MARVO.dat"

hz=$(getconf CLK_TCK)
ticks() { awk '{ print $14 + $15 }' "/proc/$1/stat"; }
# The share of one core the process used over SECONDS_RUN, in percent.
share() {
    local before after
    before=$(ticks "$1")
    sleep "$SECONDS_RUN"
    after=$(ticks "$1")
    awk -v t=$((after - before)) -v hz="$hz" -v s="$SECONDS_RUN" 'BEGIN { printf "%.2f", 100 * t / hz / s }'
}

start_app
sleep 3 # the 10,000 lines drawn, the clock running
program=$(share "$APP_PID")
kill "$APP_PID" 2>/dev/null || true
APP_PID=

"$REFERENCE" >/dev/null 2>&1 &
APP_PID=$!
wait_window '^reference_label$' >/dev/null
sleep 3
reference=$(share "$APP_PID")

awk -v p="$program" -v r="$reference" -v s="$SECONDS_RUN" 'BEGIN {
    printf "process CPU under Xvfb over %d s, clock running, 10,000 lines and a start order: %.2f %% of one core  (target < 2.0) %s\n", s, p, p < 2.0 ? "ok" : "HIGH"
    printf "a bare Qt label at 60 Hz, same server, same time: %.2f %%\n", r
    printf "ratio program / label: %.2f  (target <= 0.7) %s\n", p / r, p / r <= 0.7 ? "ok" : "HIGH"
}'
