#!/usr/bin/env bash
# A newcomer's first run, as the README tells it: clone the repository, ./run.sh, and the window
# opens and takes a finish. The clone is of the committed HEAD of this repository (work not yet
# committed is not in it), built from nothing in its own folder: one Release build, a few
# minutes on two cores. "./test.sh passes in a fresh clone" is what CI itself checks
# (.ci/run), so this test stops at the window.   newcomer.sh
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
command -v git >/dev/null || { echo "SKIP: git is not installed"; exit 77; }
top=$(git -C "$here" rev-parse --show-toplevel)
# The clone is made with the caller's git settings, before the session moves HOME.
clone_home=$HOME
source "$here/xsession.sh"

clone="$WORK/marvolendo"
HOME=$clone_home git clone --quiet "$top" "$clone"
echo "cloned $(git -C "$clone" log -1 --format='%h %s')"

# ./run.sh in its own process group, so that a build cut short leaves no compiler behind.
RUN_PGID=
trap '[ -n "$RUN_PGID" ] && kill -9 -- "-$RUN_PGID" 2>/dev/null; cleanup' EXIT
(cd "$clone" && exec setsid ./run.sh >"$WORK/app.log" 2>&1) &
APP_PID=$!
RUN_PGID=$APP_PID
disown "$APP_PID" # killed at the end: no job notice

# The first build takes minutes: up to 15 for the window to appear.
started=$(date +%s)
win=
while [ -z "$win" ]; do
    if ! kill -0 "$APP_PID" 2>/dev/null; then
        echo "FAIL: ./run.sh ended before the window appeared"
        tail -n 40 "$WORK/app.log"
        exit 1
    fi
    if [ $(($(date +%s) - started)) -gt 900 ]; then
        echo "FAIL: no window named 'Marvolendo' after 15 minutes"
        tail -n 40 "$WORK/app.log"
        exit 1
    fi
    sleep 2
    win=$(xdotool search --onlyvisible --name '^Marvolendo$' 2>/dev/null | head -n 1) || true
done
echo "window after $(($(date +%s) - started)) s"
xdotool windowfocus --sync "$win"

# The line of a state file, without its CR.
line_of() {
    tr -d '\r' <"$1" | sed -n "${2}p"
}
# Waits (10 s at most) until line $2 of the state file matches the pattern $3.
wait_line() {
    for _ in $(seq 100); do
        [ -f "$1" ] && line_of "$1" "$2" | grep -Eq "$3" && return 0
        sleep 0.1
    done
    echo "FAIL: line $2 of $1 is '$( [ -f "$1" ] && line_of "$1" "$2")'; expected $3"
    tail -n 20 "$WORK/app.log"
    exit 1
}

# "Start", the first button under the menu bar (a menu bar of 10 to 35 pixels puts the button
# under this point), then F1 for the first finisher. Start saves the start mark on line 1; the
# first finish saves its time on line 4 (with the clock never started that time is empty).
state="$clone/MARVO.dat"
xdotool mousemove --window "$win" 40 36 click 1
wait_line "$state" 1 '[1-9]'
xdotool key F1
wait_line "$state" 4 '^[0-9]{2}:[0-9]{2}:[0-9]{2}:[0-9]{3}$'
echo "first finish recorded: $(line_of "$state" 4)"
