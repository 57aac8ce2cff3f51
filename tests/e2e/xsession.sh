# Shared by the end-to-end tests: a private X server, a private folder, and helpers to drive
# the real program with xdotool. Source it; it sets DISPLAY, WORK and the drive variables.
set -euo pipefail

for tool in Xvfb xdotool; do
    if ! command -v "$tool" >/dev/null; then
        echo "SKIP: $tool is not installed (./test.sh installs it)"
        exit 77
    fi
done

WORK=$(mktemp -d)
export MARVOLENDO_DRIVE_C="$WORK/C" MARVOLENDO_DRIVE_D="$WORK/D" HOME="$WORK/home"
mkdir -p "$MARVOLENDO_DRIVE_C" "$MARVOLENDO_DRIVE_D" "$HOME"
unset QT_QPA_PLATFORM

display=$((100 + RANDOM % 400))
while [ -e "/tmp/.X11-unix/X$display" ] || [ -e "/tmp/.X$display-lock" ]; do
    display=$((display + 1))
done
Xvfb ":$display" -screen 0 1280x1024x24 -nolisten tcp -noreset >/dev/null 2>&1 &
XVFB_PID=$!
export DISPLAY=":$display"
APP_PID=
cleanup() {
    [ -n "$APP_PID" ] && kill -9 "$APP_PID" 2>/dev/null || true
    kill "$XVFB_PID" 2>/dev/null || true
    rm -rf "$WORK"
}
trap cleanup EXIT
for _ in $(seq 50); do
    xdotool getmouselocation >/dev/null 2>&1 && break
    sleep 0.1
done

# Starts the program in $WORK; sets APP_PID.
launch_app() {
    (cd "$WORK" && exec "$APP" >"$WORK/app.log" 2>&1) &
    APP_PID=$!
}

# Waits (20 s at most) for a window whose title matches, focuses it and prints its id.
wait_window() {
    local id
    id=$(timeout 20 xdotool search --sync --onlyvisible --name "$1" | head -n 1) || true
    if [ -z "$id" ]; then
        echo "FAIL: no window named '$1' appeared" >&2
        cat "$WORK/app.log" >&2 || true
        exit 1
    fi
    xdotool windowfocus --sync "$id"
    echo "$id"
}

# Starts the program and waits for its main window; sets APP_PID and APP_WIN.
start_app() {
    launch_app
    APP_WIN=$(wait_window '^Marvolendo$')
}

# The List1 lines of a state file, one per line (the second of each pair after line 9).
list1_of() {
    tr -d '\r' <"$1" | awk 'NR==9 { n = $1 } NR > 9 && NR <= 9 + 2 * n && (NR - 9) % 2 == 0'
}

# The List1 lines the journal holds, in order: the snapshot's pairs, then each finish's line.
# An entry a full disk cut short is left out as the program leaves it out: the last line when
# it has no line end, and a line whose fields are not all there.
journal_list1_of() {
    local torn=0
    [ -s "$1" ] && [ "$(tail -c 1 "$1" | od -An -c | tr -d ' ')" != '\n' ] && torn=1
    tr -d '\r' <"$1" | awk -F'\t' -v torn="$torn" '
        { entry[NR] = $0 }
        END {
            for (e = 1; e <= NR - torn; e++) {
                k = split(entry[e], f, "\t")
                if (f[k] !~ /^[0-9]+$/) continue
                if (f[1] == "S" && k >= 15 && k == 15 + 2 * f[13] + f[14 + 2 * f[13]]) {
                    count = 0
                    for (i = 0; i < f[13]; i++) lines[count++] = f[15 + 2 * i]
                }
                if (f[1] == "F" && k == 10 && f[3] == "1") lines[count++] = f[5]
            }
            for (i = 0; i < count; i++) print lines[i]
        }'
}

# Ends the test as failed, with the end of the program's output.
fail() {
    echo "FAIL: $*"
    tail -n 20 "$WORK/app.log" 2>/dev/null || true
    exit 1
}

# Writes $WORK/MARVO.dat: a race in Milesimas, running for $1 seconds, in the "Lap" mode or
# ($2 = 1) the bibs-and-times mode, with $3 finishes listed (none by default) and a start order
# of $4 lines (none by default).
running_race() {
    local now midnight inicio finishes=${3:-0} first=
    now=$(date +%s)
    midnight=$(date -d 'today 00:00' +%s)
    inicio=$(( (now - midnight - $1) * 1000000 ))
    [ "$finishes" -gt 0 ] && first=00:00:01:001
    {
        printf ' %s \r\n 0 \r\n00:00\r\n%s\r\n\r\n\r\n 2 \r\n %s \r\n %s \r\n' \
            "$inicio" "$first" "${2:-0}" "$finishes"
        awk -v n="$finishes" -v s="${4:-0}" 'BEGIN {
            for (i = 1; i <= n; i++) {
                t = sprintf("00:%02d:%02d:%03d", int(i / 60) % 60, i % 60, i % 1000)
                printf "%4d- %s - 0:00:00:000\r\n%4d-%4d- %s - 0:00:00:000\r\n", i, t, i, i % 3000, t
            }
            printf " %d \r\n", s
            for (i = 1; i <= s; i++)
                printf "%4d-%4d - 0:%02d:%02d\r\n", i, i, int(i / 2) % 60, (i * 30) % 60
        }'
    } >"$WORK/MARVO.dat"
}

# Starts the program again, answers its recovery question with Enter ("Sí") and waits (10 s
# at most) until the state file holds $1 finishes; sets RECOVERED to how many it holds.
recover() {
    launch_app
    wait_window 'Recuperar la carrera' >/dev/null
    xdotool key Return
    for _ in $(seq 100); do
        [ "$(list1_of "$WORK/MARVO.dat" | wc -l)" -ge "$1" ] && break
        sleep 0.1
    done
    RECOVERED=$(list1_of "$WORK/MARVO.dat" | wc -l)
}

# The race's folder made a small tmpfs of 512 KiB, to fill at will (skips with 77 where
# mounting is not allowed): sets disk and WORK to it, unmounted at the end.
small_disk() {
    disk="$WORK/disk"
    mkdir -p "$disk"
    mount -t tmpfs -o size=512k tmpfs "$disk" 2>/dev/null ||
        { echo "SKIP: mounting a small tmpfs is not allowed here"; exit 77; }
    trap 'umount -l "$disk" 2>/dev/null; cleanup' EXIT
    WORK=$disk # the program runs in the mounted folder
}
