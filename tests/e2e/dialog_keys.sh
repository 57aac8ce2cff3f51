#!/usr/bin/env bash
# F1 pressed in the main window and while the program's own boxes, windows and menu have the
# keyboard, under a window manager: each press is one finish in the journal, a key held down
# (which the X server repeats) is one, and nothing is lost to the box in front.
#   dialog_keys.sh <program>
APP=$1
command -v openbox >/dev/null || { echo "SKIP: openbox is not installed (./test.sh installs it)"; exit 77; }
source "$(dirname "$0")/xsession.sh"
openbox >/dev/null 2>&1 &
WM_PID=$!
trap 'kill "$WM_PID" 2>/dev/null; cleanup' EXIT
sleep 1

# Opens the menu "Carrera" (the second title of the menu bar) and goes to an entry with the
# keys given: Down n for the n-th entry the running race enables (1 Asignar dorsales, 2 Borrar
# llegada, 3 Añadir llegada, 4 Cargar inscritos, 5 Resultados, 6 Situación de los corredores,
# 7 Carreras anteriores), Up for the last one (Acerca de).
carrera() {
    xdotool windowfocus --sync "$APP_WIN"
    xdotool mousemove --window "$APP_WIN" 104 12 click 1
    sleep 0.5
    xdotool key --delay 100 "$@"
    sleep 0.3
}

# Five presses of F1 in the window named $1, then Escape closes it.
presses_in() {
    wait_window "$1" >/dev/null
    xdotool key --delay 60 F1 F1 F1 F1 F1
    sleep 0.3
    xdotool key Escape
    sleep 0.5
}

running_race 120
start_app
taken=0
xdotool key --delay 60 F1 F1 F1 F1 F1 && taken=$((taken + 5))
# F1 held down for a second in the main window: one finish.
xdotool keydown F1 && sleep 1 && xdotool keyup F1 && taken=$((taken + 1))
carrera Down Down Down Return && presses_in '^Añadir llegada$' && taken=$((taken + 5))
carrera Down Down Down Down Return && presses_in '^Cargar inscritos' && taken=$((taken + 5))
carrera $(printf 'Down %.0s' $(seq 5)) Return && presses_in '^Resultados$' && taken=$((taken + 5))
carrera $(printf 'Down %.0s' $(seq 6)) Return && presses_in '^Situación de los corredores$' &&
    taken=$((taken + 5))
carrera $(printf 'Down %.0s' $(seq 7)) Return && presses_in '^Carreras anteriores$' &&
    taken=$((taken + 5))
carrera Up Return && presses_in '^Acerca de Marvolendo$' && taken=$((taken + 5))
# The menu itself open.
carrera Down
xdotool key --delay 60 F1 F1 F1 F1 F1 Escape Escape && taken=$((taken + 5))
sleep 0.3
# A confirmation box, then F1 held down for a second in it: one finish.
xdotool windowfocus --sync "$APP_WIN"
xdotool key F3 && taken=$((taken + 1))
sleep 0.3
carrera Down Down Return
wait_window '^Borrar llegada$' >/dev/null
xdotool key --delay 60 F1 F1 F1 && taken=$((taken + 3))
xdotool keydown F1 && sleep 1 && xdotool keyup F1 && taken=$((taken + 1))
sleep 0.3
xdotool key Escape
sleep 1

kill -9 "$APP_PID"
wait "$APP_PID" 2>/dev/null || true
APP_PID=
got=$(journal_list1_of "$WORK/MARVO.jrn" | wc -l)
[ "$got" = "$taken" ] || fail "$got finishes in the journal, $taken presses"
echo "$taken presses, $got finishes"
