#!/usr/bin/env bash
# Pictures of the window, written into docs/ without a display:
#   scripts/screenshots.sh [build folder]        (SCALE=2 for the four at 200% as well)
# At screen size (100%), for the guide and the README:
#   docs/ventana-normal.png            the "Lap" mode with a race running
#   docs/ventana-dorsales-tiempos.png  "Activar captura de dorsales y tiempos"
#   docs/ventana-solo-dorsales.png     "Activar solo captura de dorsales"
#   docs/ventana-compacta.png          the compact window ("Minimizar")
# At 200%, to show the window keeps its columns and captions on a high-density screen:
#   docs/escala-200-normal.png, docs/escala-200-dorsales-tiempos.png
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
if [ ! -f "$build/build.ninja" ]; then
    cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
fi
cmake --build "$build" --target screenshots
shots() {
    QT_QPA_PLATFORM=offscreen QT_SCALE_FACTOR="$1" "$build/tools/screenshots" "$2"
}
shots "${SCALE:-1}" docs
scaled=$(mktemp -d)
trap 'rm -rf "$scaled"' EXIT
shots 2 "$scaled"
cp "$scaled/ventana-normal.png" docs/escala-200-normal.png
cp "$scaled/ventana-dorsales-tiempos.png" docs/escala-200-dorsales-tiempos.png
