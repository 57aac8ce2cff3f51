#!/usr/bin/env bash
# The process CPU share of the real program under Xvfb while the race clock runs, on its
# heaviest screen (Milesimas, bibs and times, 10,000 finishes listed, a start order of 500),
# then of a bare Qt label updated 60 times a second, in the same X server for the same time.
#   bench/cpu_xvfb.sh [program] [seconds]
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
APP=$(realpath "${1:-$here/../build/marvolendo}")
SECONDS_RUN=${2:-20}
REFERENCE=${REFERENCE:-$(dirname "$APP")/bench/reference_label}
source "$here/../tests/e2e/xsession.sh"

# A race started five seconds ago, bibs and times, 10,000 finishes, a start order of 500.
running_race 5 1 10000 500

hz=$(getconf CLK_TCK)
ticks() { awk '{ print $14 + $15 }' "/proc/$1/stat"; }

# Both run side by side over the same seconds, so that whatever else the machine does weighs
# on both alike.
"$REFERENCE" >"$WORK/reference.log" 2>&1 &
REFERENCE_PID=$!
trap 'kill -9 "$REFERENCE_PID" 2>/dev/null || true; cleanup' EXIT
wait_window '^reference_label$' >/dev/null
start_app
sleep 3 # the 10,000 lines drawn, the clock running
app_before=$(ticks "$APP_PID")
reference_before=$(ticks "$REFERENCE_PID")
sleep "$SECONDS_RUN"
app_after=$(ticks "$APP_PID")
reference_after=$(ticks "$REFERENCE_PID")

awk -v p=$((app_after - app_before)) -v r=$((reference_after - reference_before)) -v hz="$hz" \
    -v s="$SECONDS_RUN" 'BEGIN {
    p = 100 * p / hz / s; r = 100 * r / hz / s
    printf "process CPU under Xvfb over %d s, clock running, 10,000 lines and a start order: %.2f %% of one core  (target < 2.0) %s\n", s, p, p < 2.0 ? "ok" : "HIGH"
    printf "a bare Qt label at 60 Hz, same server, same seconds: %.2f %%\n", r
    printf "ratio program / label: %.2f  (target <= 0.7) %s\n", p / r, p / r <= 0.7 ? "ok" : "HIGH"
}'
