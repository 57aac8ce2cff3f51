#!/usr/bin/env bash
# The real program under Xvfb: finishes by F1, the last one removed as a double press and a
# missed runner added through the menu "Carrera", more finishes, then SIGKILL. Started again,
# the recovery brings back the race with the removal and the addition in it.
#   edit_recovery.sh <program>
APP=$1
source "$(dirname "$0")/xsession.sh"


# A race that has been running for two minutes, in the "Lap" mode, in Milesimas.
running_race 120
start_app

# An entry of the menu "Carrera" (the second title of the menu bar), by its place among the
# entries the running race enables: 1 Asignar dorsales, 2 Borrar llegada, 3 Añadir llegada.
carrera() {
    xdotool mousemove --window "$APP_WIN" 104 12 click 1
    sleep 0.5
    xdotool key --delay 100 $(printf 'Down %.0s' $(seq "$1")) Return
    sleep 0.5
}

xdotool key --delay 40 $(printf 'F1 %.0s' $(seq 20))
sleep 0.5
# The last finish was a double press: Borrar llegada, and OK in the question (Cancel is the
# default: Tab to OK, then space).
carrera 2
box=$(wait_window 'Borrar llegada')
xdotool key --delay 150 Tab space
sleep 0.5
# A runner missed at 0:00:30: Añadir llegada, time and bib.
carrera 3
wait_window 'Añadir llegada' >/dev/null
xdotool type --delay 40 '0:00:30'
xdotool key Tab
xdotool type --delay 40 '77'
xdotool key Return
sleep 0.5
xdotool windowfocus --sync "$APP_WIN"
xdotool key --delay 40 $(printf 'F1 %.0s' $(seq 10))
sleep 1
kill -9 "$APP_PID"
wait "$APP_PID" 2>/dev/null || true
APP_PID=
grep -q $'^R\t19\t' "$WORK/MARVO.jrn" || fail "no removal of the 20th finish in the journal"
grep -q $'^I\t0\t' "$WORK/MARVO.jrn" || fail "no finish added at the top of the journal"

recover 30
kill -9 "$APP_PID"; wait "$APP_PID" 2>/dev/null || true; APP_PID=
list1_of "$WORK/MARVO.dat" >"$WORK/recovered.txt"
[ "$(wc -l <"$WORK/recovered.txt")" = 30 ] || fail "$(wc -l <"$WORK/recovered.txt") lines recovered, 30 expected"
head -n 1 "$WORK/recovered.txt" | grep -q '^   1-  77- 00:00:30:000 - 0:00:00:000$' ||
    fail "the added finish is not the first: $(head -n 1 "$WORK/recovered.txt")"
awk '{ if ($1 + 0 != NR) { print "FAIL: rank " $1 " at line " NR; exit 1 } }' FS=- "$WORK/recovered.txt"
echo "recovered 30 finishes with the removal and the addition"
