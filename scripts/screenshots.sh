#!/usr/bin/env bash
# Pictures of the window, written into docs/ without a display:
#   scripts/screenshots.sh [build folder]        (SCALE=2 for the four at 200% as well)
# At screen size (100%), for the guide and the README:
#   docs/ventana-normal.png            the "Lap" mode with a race running
#   docs/ventana-dorsales-tiempos.png  "Activar captura de dorsales y tiempos"
#   docs/ventana-solo-dorsales.png     "Activar solo captura de dorsales"
#   docs/ventana-compacta.png          the compact window ("Minimizar")
# The results office, on a race with entrants, statuses and teams:
#   docs/situacion-corredores.png, docs/categorias-edad.png, docs/opciones-resultados.png,
#   docs/temporada.png                 its windows
#   docs/resultados-estados.png        the page of resultados.pdf with the unclassified and the
#                                      incidents
#   docs/premios-pdf.png, docs/equipos-pdf.png   the first page of premios.pdf and equipos.pdf
#   docs/resultados-movil.png          resultados.html on a phone (when chromium is there)
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
scaled=$(mktemp -d)
published=$(mktemp -d)
trap 'rm -rf "$scaled" "$published"' EXIT
# Nothing goes to the user's settings or home folder: the tool keeps its settings in a folder of
# its own, and the browser below gets a home of its own.
QT_QPA_PLATFORM=offscreen QT_SCALE_FACTOR="${SCALE:-1}" "$build/tools/screenshots" docs "$published"
# A published page at 60 dots an inch: enough to read it in the guide, small in the repository.
page() {
    pdftoppm -png -r 60 -f "$2" -l "$2" -singlefile "$published/$1" "$published/page"
    mv "$published/page.png" "docs/$3"
}
# The first page that lists the unclassified and the incidents.
pages=$(pdfinfo "$published/resultados.pdf" | awk '/^Pages:/ { print $2 }')
shown=1
for ((n = 1; n <= pages; n++)); do
    if pdftotext -f "$n" -l "$n" "$published/resultados.pdf" - | grep -q 'No clasificados'; then
        shown=$n
        break
    fi
done
page resultados.pdf "$shown" resultados-estados.png
page premios.pdf 1 premios-pdf.png
page equipos.pdf 1 equipos-pdf.png
if command -v chromium >/dev/null; then
    HOME="$published" chromium --headless --no-sandbox --disable-gpu --hide-scrollbars \
        --user-data-dir="$published/browser" --window-size=390,800 \
        --screenshot="$PWD/docs/resultados-movil.png" "file://$published/resultados.html" \
        >/dev/null 2>&1 || echo "resultados-movil.png no se pudo hacer" >&2
fi
shots 2 "$scaled"
cp "$scaled/ventana-normal.png" docs/escala-200-normal.png
cp "$scaled/ventana-dorsales-tiempos.png" docs/escala-200-dorsales-tiempos.png
