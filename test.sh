#!/usr/bin/env bash
# Installs what is missing, builds and runs the whole test suite headless: first the Release
# build, then a second build under AddressSanitizer and UndefinedBehaviorSanitizer (clang),
# which also runs each fuzz target for a few seconds.
set -euo pipefail
cd "$(dirname "$0")"
source scripts/setup.sh
export QT_QPA_PLATFORM=offscreen
jobs=$(nproc 2>/dev/null || echo 2)

ctest --test-dir build --output-on-failure -j "$jobs"

if [ "${MARVOLENDO_SKIP_SANITIZERS:-0}" != 1 ]; then
    CC=clang CXX=clang++ cmake -S . -B build-asan -G Ninja -DCMAKE_BUILD_TYPE=Debug \
        -DMARVOLENDO_SANITIZE=ON -DMARVOLENDO_FUZZ=ON \
        -DMARVOLENDO_TEST_DATA="$(cd .. && pwd)/shared/data" >/dev/null
    cmake --build build-asan -j "$jobs"
    export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1
    export LSAN_OPTIONS=suppressions="$PWD/scripts/lsan.supp":print_suppressions=0
    export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
    ctest --test-dir build-asan --output-on-failure -j "$jobs"
fi
