#!/usr/bin/env bash
# The Debian package as a club gets it: CPack makes it from this build, lintian, appstreamcli
# and desktop-file-validate accept it, and the program unpacked from it (dpkg-deb -x) opens
# under Xvfb and takes a finish.   package.sh <build folder> <version>
set -euo pipefail
build=$1
version=$2
for tool in cpack lintian appstreamcli desktop-file-validate dpkg-deb; do
    command -v "$tool" >/dev/null || { echo "SKIP: $tool is not installed (./test.sh installs it)"; exit 77; }
done
source "$(dirname "$0")/xsession.sh"

cpack --config "$build/CPackConfig.cmake" -B "$WORK/package" >"$WORK/cpack.log" 2>&1 ||
    { cat "$WORK/cpack.log"; fail "cpack did not make the package"; }
deb=$(ls "$WORK"/package/marvolendo_"$version"_*.deb) || fail "no marvolendo_${version}_*.deb"
echo "package: $(basename "$deb")"

lintian --fail-on error "$deb" 2>&1 | grep -v 'root privileges' || true
lintian --fail-on error "$deb" >/dev/null 2>&1 || fail "lintian reports errors"

root="$WORK/root"
dpkg-deb -x "$deb" "$root"
appstreamcli validate --no-net "$root"/usr/share/metainfo/*.metainfo.xml >/dev/null ||
    fail "appstreamcli rejects the metainfo"
desktop-file-validate "$root/usr/share/applications/marvolendo.desktop" ||
    fail "desktop-file-validate rejects the desktop entry"
for f in usr/share/man/man1/marvolendo.1.gz usr/share/doc/marvolendo/guia.md \
    usr/share/doc/marvolendo/ventana-normal.png usr/share/icons/hicolor/48x48/apps/marvolendo.png; do
    [ -f "$root/$f" ] || fail "the package lacks $f"
done
[ "$("$root/usr/bin/marvolendo" --version)" = "marvolendo $version" ] ||
    fail "--version does not say $version"

# The unpacked program opens and takes a finish: Start, the first button under the menu bar,
# then F1; the first finish saves its time on line 4 of MARVO.dat.
APP="$root/usr/bin/marvolendo"
start_app
xdotool mousemove --window "$APP_WIN" 40 36 click 1
state="$WORK/MARVO.dat"
for _ in $(seq 100); do
    [ -f "$state" ] && [ "$(tr -d '\r' <"$state" | sed -n 1p | tr -d ' ')" != 0 ] && break
    sleep 0.1
done
xdotool key F1
for _ in $(seq 100); do
    tr -d '\r' <"$state" | sed -n 4p | grep -Eq '^[0-9]{2}:[0-9]{2}:[0-9]{2}:[0-9]{3}$' && break
    sleep 0.1
done
first=$(tr -d '\r' <"$state" | sed -n 4p)
[[ $first =~ ^[0-9]{2}:[0-9]{2}:[0-9]{2}:[0-9]{3}$ ]] || fail "no finish in MARVO.dat (line 4: '$first')"
echo "the packaged program took a finish at $first"
