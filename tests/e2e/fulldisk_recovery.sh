#!/usr/bin/env bash
# A full disk under the real program: the race's folder is a small tmpfs.
#  1. The fallback folder takes no journal either: 50 finishes, the disk fills, 100 more, the
#     disk is freed, 50 more, SIGKILL. Started again, the recovery brings back all 200: once
#     there is room the journal takes the whole race again.
#  2. The fallback folder has room: 50 finishes, the disk fills, 100 more, SIGKILL while it is
#     still full. The journal went on in the fallback folder: the recovery brings back all 150.
#   fulldisk_recovery.sh <program>
APP=$1
[ "$(id -u)" = 0 ] || { echo "SKIP: mounting a tmpfs needs root"; exit 77; }
source "$(dirname "$0")/xsession.sh"
small_disk

press() {
    xdotool key --delay 30 $(printf 'F1 %.0s' $(seq "$1"))
    sleep 0.5
}

killed() {
    kill -9 "$APP_PID"; wait "$APP_PID" 2>/dev/null || true; APP_PID=
}

# 1. Nowhere else to go: a folder stands where the fallback journal would be.
mkdir -p "$MARVOLENDO_DRIVE_D/MARVO.jrn"
running_race 60
start_app
press 50
dd if=/dev/zero of="$disk/relleno" bs=4k 2>/dev/null || true
press 100
rm -f "$disk/relleno"
sleep 1.5 # the journal is made whole again within a second
press 50
sleep 1
killed
# The journal was refused while the disk was full and made whole after by a second snapshot of
# the race (the first one opens it).
[ "$(grep -c $'^S\t' "$disk/MARVO.jrn")" -ge 2 ] || fail "the disk never refused the journal"
recover 200
killed
[ "$RECOVERED" = 200 ] || fail "$RECOVERED of 200 finishes recovered"
echo "full disk filled and freed: 200 of 200 finishes recovered"

# 2. The fallback folder has room: the journal goes on there.
rmdir "$MARVOLENDO_DRIVE_D/MARVO.jrn"
rm -f "$disk"/MARVO*.jrn
running_race 60
start_app
press 50
dd if=/dev/zero of="$disk/relleno" bs=4k 2>/dev/null || true
press 100
sleep 1
killed
[ "$(journal_list1_of "$MARVOLENDO_DRIVE_D/MARVO.jrn" | wc -l)" = 150 ] ||
    fail "the fallback journal holds $(journal_list1_of "$MARVOLENDO_DRIVE_D/MARVO.jrn" | wc -l) of 150 finishes"
rm -f "$disk/relleno"
recover 150
killed
[ "$RECOVERED" = 150 ] || fail "$RECOVERED of 150 finishes recovered from the fallback folder"
echo "full disk with room in the fallback folder: 150 of 150 finishes recovered"
