#!/usr/bin/env bash
# Installs what is missing, builds and runs the whole test suite headless.
set -euo pipefail
cd "$(dirname "$0")"
source scripts/setup.sh
export QT_QPA_PLATFORM=offscreen
ctest --test-dir build --output-on-failure -j "$(nproc 2>/dev/null || echo 2)"
