# Sourced by run.sh and test.sh: installs the Debian packages the project needs when they are
# missing, then configures and builds the program in build/.
packages=(build-essential cmake ninja-build pkg-config qt6-base-dev qt6-base-dev-tools qt6-multimedia-dev libgl-dev
          unixodbc-dev odbc-mdbtools fonts-liberation fonts-dejavu-core
          xvfb xauth xdotool x11-utils clang clang-format libclang-rt-14-dev
          dpkg-dev fakeroot lintian appstream desktop-file-utils openbox wmctrl poppler-utils libxtst-dev
          qt6-translations-l10n chromium)

missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
    if [ "$(id -u)" -eq 0 ]; then
        echo "Instalando: ${missing[*]}"
        export DEBIAN_FRONTEND=noninteractive
        apt-get update -qq
        apt-get install -y -qq --no-install-recommends "${missing[@]}"
    else
        echo "Faltan paquetes. Instálalos con:"
        echo "  sudo apt-get install -y ${missing[*]}"
        exit 1
    fi
fi

jobs=$(nproc 2>/dev/null || echo 2)
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release \
      -DMARVOLENDO_TEST_DATA="$(cd .. && pwd)/shared/data" >/dev/null
cmake --build build -j "$jobs"
