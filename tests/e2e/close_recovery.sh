#!/usr/bin/env bash
# Closing the window through the window manager in the middle of a race saves nothing, as it
# always did, but loses nothing either: the next start offers the recovery and every finish
# comes back. A close with nothing unsaved asks nothing next time.   close_recovery.sh <program>
APP=$1
for tool in openbox wmctrl; do
    command -v "$tool" >/dev/null || { echo "SKIP: $tool is not installed (./test.sh installs it)"; exit 77; }
done
source "$(dirname "$0")/xsession.sh"
openbox >/dev/null 2>&1 &
WM_PID=$!
trap 'kill "$WM_PID" 2>/dev/null; cleanup' EXIT
sleep 1


# Waits for the program to end by itself; fails after 10 s.
wait_end() {
    for _ in $(seq 100); do
        kill -0 "$APP_PID" 2>/dev/null || { APP_PID=; return 0; }
        sleep 0.1
    done
    fail "the program did not end when its window was closed"
}

# A race running for a minute, in the "Lap" mode; 15 finishes, then the window is closed.
running_race 60
start_app
xdotool key --delay 40 $(printf 'F1 %.0s' $(seq 15))
sleep 1
wmctrl -c '^Marvolendo$' || wmctrl -c Marvolendo
wait_end
[ "$(list1_of "$WORK/MARVO.dat" | wc -l)" = 0 ] || fail "closing the window saved the race"

recover 15
[ "$RECOVERED" = 15 ] || fail "$RECOVERED finishes came back, 15 expected"
# Nothing unsaved now: closing again is a normal end, and the next start asks nothing.
APP_WIN=$(wait_window '^Marvolendo$')
wmctrl -c '^Marvolendo$' || wmctrl -c Marvolendo
wait_end
start_app
sleep 1
if xdotool search --onlyvisible --name 'Recuperar la carrera' >/dev/null 2>&1; then
    fail "a close with nothing unsaved was taken as an abnormal end"
fi
echo "closed with 15 unsaved finishes: all 15 recovered; closed with nothing unsaved: no question"
