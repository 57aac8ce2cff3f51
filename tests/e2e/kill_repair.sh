#!/usr/bin/env bash
# The real program under Xvfb is killed with SIGKILL while it makes its journal whole again.
# The race folder is a small tmpfs and a folder stands where the fallback journal would be: F1
# presses go to the journal, the disk fills, more presses are refused, the disk is freed, and
# the program writes the whole race into the journal again (at the next finish, or within a
# second when none comes). The kill comes at a random moment 0 to 1.5 s after the freeing.
# Started again and recovered ("Sí"), the race must be the one the journal held at the kill,
# line for line, with ranks 1 to n, and the program must show that race.
#   kill_repair.sh <program> [rounds]
APP=$1
ROUNDS=${2:-4}
[ "$(id -u)" = 0 ] || { echo "SKIP: mounting a tmpfs needs root"; exit 77; }
source "$(dirname "$0")/xsession.sh"
small_disk
# Nowhere else to go: the journal waits for room on the full disk.
mkdir -p "$MARVOLENDO_DRIVE_D/MARVO.jrn"

killed() {
    kill -9 "$APP_PID"; wait "$APP_PID" 2>/dev/null || true; APP_PID=
}

before_repair=0
after_repair=0
for round in $(seq "$ROUNDS"); do
    rm -rf "$disk"/MARVO* "$disk/relleno"
    running_race 60
    start_app

    first=$((20 + RANDOM % 20))
    xdotool key --delay 30 $(printf 'F1 %.0s' $(seq "$first"))
    sleep 0.5
    dd if=/dev/zero of="$disk/relleno" bs=4k 2>/dev/null || true
    # More than the journal's last page of the disk holds: the disk refuses the journal.
    second=$((40 + RANDOM % 20))
    xdotool key --delay 30 $(printf 'F1 %.0s' $(seq "$second"))
    sleep 0.5
    rm -f "$disk/relleno"
    # Odd rounds: finishes go on, and the next one makes the journal whole; even rounds: no
    # finish, the retry within a second does.
    keys=
    if [ $((round % 2)) = 1 ]; then
        xdotool key --delay 30 $(printf 'F1 %.0s' $(seq 60)) &
        keys=$!
    fi
    delay=$((RANDOM % 1500))
    sleep "$(printf '%d.%03d' $((delay / 1000)) $((delay % 1000)))"
    killed
    if [ -n "$keys" ]; then
        kill "$keys" 2>/dev/null || true
        wait "$keys" 2>/dev/null || true
        # Killed between a press and its release, xdotool leaves F1 down in the X server: the
        # next press would come as a held key's repeat.
        xdotool keyup F1
    fi
    cp "$disk/MARVO.jrn" "$WORK/killed.jrn"
    journal_list1_of "$WORK/killed.jrn" >"$WORK/journal.txt"
    journaled=$(wc -l <"$WORK/journal.txt")
    # The journal opens with a snapshot; a second one is the repair.
    if [ "$(grep -c $'^S\t' "$WORK/killed.jrn")" -ge 2 ]; then
        repaired=1
        after_repair=$((after_repair + 1))
    else
        repaired=0
        before_repair=$((before_repair + 1))
    fi

    recover "$journaled"
    list1_of "$disk/MARVO.dat" >"$WORK/recovered.txt"
    # The race the program shows: the snapshot that opens its new journal.
    tr -d '\r' <"$disk/MARVO.jrn" | awk -F'\t' '$1 == "S" {
        for (i = 0; i < $13; i++) print $(15 + 2 * i)
        exit }' >"$WORK/shown.txt"
    killed

    recovered=$(wc -l <"$WORK/recovered.txt")
    echo "round $round: $first finishes, the disk full for $second more, killed ${delay} ms after" \
         "it was freed, $([ "$repaired" = 1 ] && echo after || echo before) the repair:" \
         "$journaled in the journal, $recovered recovered"
    if ! cmp -s "$WORK/journal.txt" "$WORK/recovered.txt"; then
        echo "FAIL: the recovered list differs from the journal at the kill"
        diff "$WORK/journal.txt" "$WORK/recovered.txt" | head -n 20
        exit 1
    fi
    [ "$recovered" -ge "$first" ] ||
        fail "$first finishes went into the journal before the disk filled, only $recovered came back"
    # The repair writes the whole race: what was taken while the disk was full is in it too.
    [ "$repaired" = 0 ] || [ "$recovered" -ge $((first + second)) ] ||
        fail "the journal was made whole, yet only $recovered of $((first + second)) finishes came back"
    awk '{ if ($1 + 0 != NR) { print "FAIL: rank " $1 " at line " NR; exit 1 } }' FS=- "$WORK/recovered.txt"
    cmp -s "$WORK/shown.txt" "$WORK/recovered.txt" ||
        fail "the program shows $(wc -l <"$WORK/shown.txt") finishes, not the $recovered recovered"
done
echo "$ROUNDS kills: $before_repair before the journal was made whole, $after_repair after"
