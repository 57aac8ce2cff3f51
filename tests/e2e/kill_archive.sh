#!/usr/bin/env bash
# The real program under Xvfb makes a kept race the current one ("Carreras anteriores",
# "Recuperar", then OK in the confirmation) and is killed with SIGKILL at a random moment
# around the confirmation. Started again (a recovery question answered "Sí"), it must show one
# race whole, the old one or the kept one, never a mix of their finishes or of their first and
# last times; and no race is lost: the one not shown is in MARVO-archivo. Odd rounds recover
# another race, even rounds an earlier copy of the same race (the same first finisher).
#   kill_archive.sh <program> [rounds]
APP=$1
ROUNDS=${2:-6}
source "$(dirname "$0")/xsession.sh"

# Writes the state file $1 as the program saves a stopped race (inicio 0) in Milesimas, in the
# "Lap" mode: $2 finishes whose bibs start at $3 + 1 and whose times start at $3 seconds, the
# first and the last time on lines 4 and 5; no start order.
stopped_race() {
    awk -v n="$2" -v from="$3" 'BEGIN {
        for (i = 1; i <= n; i++) {
            s = from + i
            t[i] = sprintf("00:%02d:%02d:%03d", int(s / 60) % 60, s % 60, (s * 7) % 1000)
        }
        printf " 0 \r\n 0 \r\n00:00\r\n%s\r\n%s\r\n0:00:00:000\r\n 2 \r\n 0 \r\n %d \r\n",
               t[1], t[n], n
        for (i = 1; i <= n; i++)
            printf "%4d- %s - 0:00:00:000\r\n%4d-%4d- %s - 0:00:00:000\r\n", i, t[i], i, from + i, t[i]
        printf " 0 \r\n"
    }' >"$1"
}

# The race the program holds now, from the snapshot that opens its journal: its List1 lines in
# shown.txt, its first and last time (tempsPrimer and Label5) in shown-times.txt.
shown_race() {
    tr -d '\r' <"$WORK/MARVO.jrn" | awk -F'\t' -v times="$WORK/shown-times.txt" '$1 == "S" {
        print $5 > times
        print $6 > times
        for (i = 0; i < $13; i++) print $(15 + 2 * i)
        exit }' >"$WORK/shown.txt"
}

# The first and the last time a state file holds (lines 4 and 5).
times_of() {
    tr -d '\r' <"$1" | sed -n '4p;5p'
}

# Whether some kept race in MARVO-archivo has the List1 lines of the file $1.
kept_in_archive() {
    local kept
    for kept in "$WORK"/MARVO-archivo/MARVO-*.dat; do
        [ -f "$kept" ] && list1_of "$kept" | cmp -s - "$1" && return 0
    done
    return 1
}

# Starts the program; a recovery question, when one comes, is answered with Enter ("Sí").
# Waits for the main window; sets ASKED to 1 when there was a question.
restart() {
    local id=
    launch_app
    ASKED=0
    for _ in $(seq 200); do
        if id=$(xdotool search --onlyvisible --name '^Recuperar la carrera$' | head -n 1) &&
            [ -n "$id" ]; then
            xdotool windowfocus --sync "$id"
            xdotool key Return
            ASKED=1
            break
        fi
        xdotool search --onlyvisible --name '^Marvolendo$' >/dev/null && break
        kill -0 "$APP_PID" 2>/dev/null || fail "the program ended at start-up"
        sleep 0.1
    done
    APP_WIN=$(wait_window '^Marvolendo$')
}

old_count=0
kept_count=0
for round in $(seq "$ROUNDS"); do
    rm -rf "$WORK"/MARVO.* "$WORK"/MARVO-archivo "$WORK"/*.jrn
    mkdir -p "$WORK/MARVO-archivo"
    old=$((20 + RANDOM % 30))
    stopped_race "$WORK/MARVO.dat" "$old" 0
    if [ $((round % 2)) = 1 ]; then
        # Another race, with more finishes.
        kept=$((60 + RANDOM % 30))
        stopped_race "$WORK/MARVO-archivo/MARVO-20260101-100000.dat" "$kept" 500
    else
        # An earlier copy of the same race, as a recovery keeps the state file it replaces:
        # the same first finisher, fewer finishes.
        kept=$((old - 1 - RANDOM % 10))
        stopped_race "$WORK/MARVO-archivo/MARVO-20260101-100000.dat" "$kept" 0
    fi
    list1_of "$WORK/MARVO.dat" >"$WORK/old.txt"
    list1_of "$WORK/MARVO-archivo/MARVO-20260101-100000.dat" >"$WORK/kept.txt"
    times_of "$WORK/MARVO.dat" >"$WORK/old-times.txt"
    times_of "$WORK/MARVO-archivo/MARVO-20260101-100000.dat" >"$WORK/kept-times.txt"
    start_app

    # Carrera → Carreras anteriores... (the entry before the last, Acerca de).
    xdotool mousemove --window "$APP_WIN" 104 12 click 1
    sleep 0.5
    xdotool key --delay 100 Up Up Return
    list=$(wait_window '^Carreras anteriores$')
    # The only kept race is chosen already; "Recuperar" is the second button, bottom left.
    eval "$(xdotool getwindowgeometry --shell "$list")"
    xdotool mousemove --window "$list" 130 $((HEIGHT - 24)) click 1
    wait_window '^Recuperar una carrera$' >/dev/null
    # Cancel is the default: Tab to OK, then space. The kill comes 0 to 60 ms after the space is
    # sent: before the program has taken it, while it makes the change, or after.
    xdotool key Tab
    sleep 0.2
    delay=$(printf '0.%03d' $((RANDOM % 60)))
    xdotool key space &
    keys=$!
    sleep "$delay"
    kill -9 "$APP_PID"
    wait "$APP_PID" 2>/dev/null || true
    APP_PID=
    wait "$keys" 2>/dev/null || true
    # What the program had written at the kill.
    if cmp -s <(list1_of "$WORK/MARVO.dat") "$WORK/kept.txt"; then
        written="the kept race written"
    else
        written="the old race in MARVO.dat"
    fi

    restart
    shown_race
    kill -9 "$APP_PID"; wait "$APP_PID" 2>/dev/null || true; APP_PID=
    question=
    [ "$ASKED" = 1 ] && question=", after a recovery question"

    if cmp -s "$WORK/shown.txt" "$WORK/old.txt"; then
        shown="the old race ($old finishes)"
        cmp -s "$WORK/shown-times.txt" "$WORK/old-times.txt" ||
            fail "round $round ($written$question): the old race is shown with the first and last times $(echo $(cat "$WORK/shown-times.txt")), not its own $(echo $(cat "$WORK/old-times.txt"))"
        old_count=$((old_count + 1))
        kept_in_archive "$WORK/kept.txt" || fail "round $round: the kept race is gone from MARVO-archivo"
    elif cmp -s "$WORK/shown.txt" "$WORK/kept.txt"; then
        shown="the kept race ($kept finishes)"
        cmp -s "$WORK/shown-times.txt" "$WORK/kept-times.txt" ||
            fail "round $round ($written$question): the kept race is shown with the first and last times $(echo $(cat "$WORK/shown-times.txt")), not its own $(echo $(cat "$WORK/kept-times.txt"))"
        kept_count=$((kept_count + 1))
        kept_in_archive "$WORK/old.txt" ||
            fail "round $round: the kept race is shown and the old one is not in MARVO-archivo"
    else
        echo "FAIL: round $round: the race shown ($(wc -l <"$WORK/shown.txt") finishes) is neither the old one nor the kept one"
        diff "$WORK/old.txt" "$WORK/shown.txt" | head -n 10
        exit 1
    fi
    echo "round $round: killed ${delay}s after the confirmation ($written); $shown shown$question"
done
echo "$ROUNDS kills: the old race shown $old_count times, the kept race $kept_count times"
