#!/usr/bin/env bash
# cmake --install into a temporary prefix puts in place the program, its desktop entry, its
# icon in every hicolor size, the guide with its pictures, the metainfo and the manual page,
# and nothing else.   install.sh <build folder>
set -euo pipefail
cd "$(dirname "$0")/../.."
build=$1
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT

cmake --install "$build" --prefix "$prefix" >"$prefix.log" 2>&1 || {
    cat "$prefix.log"; rm -f "$prefix.log"; exit 1; }
rm -f "$prefix.log"

fail() {
    echo "FAIL: $*"
    exit 1
}

sizes="16 24 32 48 64 128 256"
expected="bin/marvolendo
share/applications/marvolendo.desktop
share/metainfo/org.marvolendo.Marvolendo.metainfo.xml
share/man/man1/marvolendo.1.gz
share/doc/marvolendo/copyright
share/doc/marvolendo/changelog.gz
share/doc/marvolendo/guia.md"
for png in docs/*.png; do
    expected+=$'\n'"share/doc/marvolendo/$(basename "$png")"
done
for n in $sizes; do
    expected+=$'\n'"share/icons/hicolor/${n}x${n}/apps/marvolendo.png"
done
installed=$(cd "$prefix" && find . -type f | sed 's|^\./||' | sort)
if [ "$installed" != "$(sort <<<"$expected")" ]; then
    diff <(sort <<<"$expected") <(echo "$installed") || true
    fail "the installed files differ from the expected ones (< expected, > installed)"
fi

[ -x "$prefix/bin/marvolendo" ] || fail "bin/marvolendo is not executable"

desktop="$prefix/share/applications/marvolendo.desktop"
for line in '[Desktop Entry]' 'Type=Application' 'Name=Marvolendo' 'Exec=marvolendo' \
            'Icon=marvolendo' 'Categories=Utility;Sports;'; do
    grep -qxF "$line" "$desktop" || fail "the desktop entry lacks the line $line"
done
grep -q '^Comment=.' "$desktop" || fail "the desktop entry has no comment"
# desktop-file-validate (Debian's desktop-file-utils) when it is there: no error, no warning.
# Its hints are suggestions ("Sports" could also be "Education") and pass.
if command -v desktop-file-validate >/dev/null; then
    out=$(desktop-file-validate "$desktop" 2>&1) || { echo "$out"; fail "desktop-file-validate"; }
    if grep -Eq ': (error|warning): ' <<<"$out"; then
        echo "$out"
        fail "desktop-file-validate warns"
    fi
fi

# Each icon is a PNG whose header gives the size of its folder.
for n in $sizes; do
    png="$prefix/share/icons/hicolor/${n}x${n}/apps/marvolendo.png"
    [ "$(od -An -tx1 -N8 "$png" | tr -d ' \n')" = 89504e470d0a1a0a ] || fail "$png is not a PNG"
    width=$((16#$(od -An -tx1 -j16 -N4 "$png" | tr -d ' \n')))
    height=$((16#$(od -An -tx1 -j20 -N4 "$png" | tr -d ' \n')))
    [ "$width" = "$n" ] && [ "$height" = "$n" ] || fail "$png is ${width}x${height}, not ${n}x${n}"
done
echo "installed: $(wc -l <<<"$installed") files"
