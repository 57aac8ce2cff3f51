#!/usr/bin/env bash
# Builds the program (as ./run.sh does) and makes the Debian package with CPack:
# build/package/marvolendo_<version>_<arch>.deb. Prints the package's path.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/setup.sh
rm -rf build/package
cpack --config build/CPackConfig.cmake -B build/package >build/package.log 2>&1 || {
    cat build/package.log
    exit 1
}
ls build/package/marvolendo_*.deb
