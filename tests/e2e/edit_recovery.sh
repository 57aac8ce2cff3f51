#!/usr/bin/env bash
# The real program under Xvfb: finishes by F1, the last one removed as a double press and a
# missed runner added through the menu "Carrera", more finishes, then SIGKILL. Started again,
# the recovery brings back the race with the removal and the addition in it.
#   edit_recovery.sh <program>
APP=$1
source "$(dirname "$0")/xsession.sh"

fail() {
    echo "FAIL: $*"
    tail -n 20 "$WORK/app.log"
    exit 1
}

# A race that has been running for two minutes, in the "Lap" mode, in Milesimas.
now=$(date +%s)
midnight=$(date -d 'today 00:00' +%s)
inicio=$(( (now - midnight - 120) * 1000000 ))
printf ' %s \r\n 0 \r\n00:00\r\n\r\n\r\n\r\n 2 \r\n 0 \r\n 0 \r\n 0 \r\n' "$inicio" >"$WORK/MARVO.dat"
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

launch_app
wait_window 'Recuperar la carrera' >/dev/null
xdotool key Return
for _ in $(seq 100); do
    [ "$(list1_of "$WORK/MARVO.dat" | wc -l)" -ge 30 ] && break
    sleep 0.1
done
kill -9 "$APP_PID"; wait "$APP_PID" 2>/dev/null || true; APP_PID=
list1_of "$WORK/MARVO.dat" >"$WORK/recovered.txt"
[ "$(wc -l <"$WORK/recovered.txt")" = 30 ] || fail "$(wc -l <"$WORK/recovered.txt") lines recovered, 30 expected"
head -n 1 "$WORK/recovered.txt" | grep -q '^   1-  77- 00:00:30:000 - 0:00:00:000$' ||
    fail "the added finish is not the first: $(head -n 1 "$WORK/recovered.txt")"
awk '{ if ($1 + 0 != NR) { print "FAIL: rank " $1 " at line " NR; exit 1 } }' FS=- "$WORK/recovered.txt"
echo "recovered 30 finishes with the removal and the addition"
