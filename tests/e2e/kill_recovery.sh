#!/usr/bin/env bash
# The real program under Xvfb records finishes with F1 key presses, is killed with SIGKILL at a
# random moment, is started again and recovers: every finish recorded before the kill must
# come back, line for line.   kill_recovery.sh <program> [rounds]
APP=$1
ROUNDS=${2:-3}
source "$(dirname "$0")/xsession.sh"

total_sent=0
total_confirmed=0
total_lost=0
for round in $(seq "$ROUNDS"); do
    rm -f "$WORK"/MARVO.* "$WORK"/*.jrn
    # A race that has been running for a minute, in the "Lap" mode.
    running_race 60
    start_app

    # A first batch that is surely handled, then a second one cut by the kill.
    first=$((40 + RANDOM % 60))
    second=$((200 - first))
    xdotool key --delay 15 $(printf 'F1 %.0s' $(seq "$first"))
    sleep 1
    xdotool key --delay 15 $(printf 'F1 %.0s' $(seq "$second")) &
    keys=$!
    sleep "0.$((RANDOM % 9 + 1))"
    kill -9 "$APP_PID"
    wait "$APP_PID" 2>/dev/null || true
    kill "$keys" 2>/dev/null || true
    wait "$keys" 2>/dev/null || true
    # Killed between a press and its release, xdotool leaves F1 down in the X server: the next
    # round's first press would come as a held key's repeat.
    xdotool keyup F1
    APP_PID=
    cp "$WORK/MARVO.jrn" "$WORK/killed.jrn"
    journal_list1_of "$WORK/killed.jrn" >"$WORK/journal.txt"

    # Started again: the recovery question, answered with Enter ("Sí" is the default).
    recover "$first"
    list1_of "$WORK/MARVO.dat" >"$WORK/recovered.txt"
    kill -9 "$APP_PID"; wait "$APP_PID" 2>/dev/null || true; APP_PID=

    recovered=$(wc -l <"$WORK/recovered.txt")
    journaled=$(wc -l <"$WORK/journal.txt")
    lost=$((journaled - recovered))
    [ "$lost" -lt 0 ] && lost=0
    echo "round $round: $first + up to $second presses, $journaled recorded before the kill, $recovered recovered"
    total_sent=$((total_sent + journaled))
    total_lost=$((total_lost + lost))
    total_confirmed=$((total_confirmed + first))
    if ! cmp -s "$WORK/journal.txt" "$WORK/recovered.txt"; then
        echo "FAIL: the recovered list differs from the finishes recorded before the kill"
        diff "$WORK/journal.txt" "$WORK/recovered.txt" | head -n 20
        exit 1
    fi
    if [ "$recovered" -lt "$first" ]; then
        echo "FAIL: $first finishes were surely recorded, only $recovered came back"
        exit 1
    fi
    # The ranks run 1, 2, 3... without a gap.
    awk '{ if ($1 + 0 != NR) { print "FAIL: rank " $1 " at line " NR; exit 1 } }' FS=- "$WORK/recovered.txt"
done
echo "finishes lost across $ROUNDS kills: $total_lost of $total_sent"
