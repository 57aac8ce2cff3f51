#!/usr/bin/env bash
# Pictures of the window in its four layouts, written into docs/ without a display:
#   scripts/screenshots.sh [build folder]        (SCALE=1 for pictures at screen size)
# docs/ventana-normal.png            the "Lap" mode with a race running
# docs/ventana-dorsales-tiempos.png  "Activar captura de dorsales y tiempos"
# docs/ventana-solo-dorsales.png     "Activar solo captura de dorsales"
# docs/ventana-compacta.png          the compact window ("Minimizar")
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
if [ ! -f "$build/build.ninja" ]; then
    cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
fi
cmake --build "$build" --target screenshots
QT_QPA_PLATFORM=offscreen QT_SCALE_FACTOR="${SCALE:-2}" "$build/tools/screenshots" docs
