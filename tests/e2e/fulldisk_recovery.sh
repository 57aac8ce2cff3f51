#!/usr/bin/env bash
# A full disk under the real program: the race's folder is a small tmpfs. 50 finishes, the
# disk fills, 100 more, the disk is freed, 50 more, SIGKILL. Started again, the recovery brings
# back all 200: once there is room the journal takes the whole race again.
#   fulldisk_recovery.sh <program>
APP=$1
[ "$(id -u)" = 0 ] || { echo "SKIP: mounting a tmpfs needs root"; exit 77; }
source "$(dirname "$0")/xsession.sh"
disk="$WORK/disk"
mkdir -p "$disk"
mount -t tmpfs -o size=512k tmpfs "$disk" 2>/dev/null || { echo "SKIP: mounting a small tmpfs is not allowed here"; exit 77; }
trap 'umount -l "$disk" 2>/dev/null; cleanup' EXIT
WORK=$disk # the program runs in the mounted folder

fail() {
    echo "FAIL: $*"
    tail -n 20 "$WORK/app.log"
    exit 1
}
press() {
    xdotool key --delay 30 $(printf 'F1 %.0s' $(seq "$1"))
    sleep 0.5
}

now=$(date +%s)
midnight=$(date -d 'today 00:00' +%s)
inicio=$(( (now - midnight - 60) * 1000000 ))
printf ' %s \r\n 0 \r\n00:00\r\n\r\n\r\n\r\n 2 \r\n 0 \r\n 0 \r\n 0 \r\n' "$inicio" >"$disk/MARVO.dat"
start_app
press 50
dd if=/dev/zero of="$disk/relleno" bs=4k 2>/dev/null || true
press 100
rm -f "$disk/relleno"
sleep 1.5 # the journal is made whole again within a second
press 50
sleep 1
kill -9 "$APP_PID"; wait "$APP_PID" 2>/dev/null || true; APP_PID=
# The journal was refused while the disk was full and made whole after by a second snapshot of
# the race (the first one opens it).
[ "$(grep -c $'^S\t' "$disk/MARVO.jrn")" -ge 2 ] || fail "the disk never refused the journal"

launch_app
wait_window 'Recuperar la carrera' >/dev/null
xdotool key Return
for _ in $(seq 100); do
    [ "$(list1_of "$disk/MARVO.dat" | wc -l)" -ge 200 ] && break
    sleep 0.1
done
recovered=$(list1_of "$disk/MARVO.dat" | wc -l)
kill -9 "$APP_PID"; wait "$APP_PID" 2>/dev/null || true; APP_PID=
[ "$recovered" = 200 ] || fail "$recovered of 200 finishes recovered"
echo "full disk filled and freed: 200 of 200 finishes recovered"
