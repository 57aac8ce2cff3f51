#!/usr/bin/env bash
# Installs what is missing, builds and starts the stopwatch.
set -euo pipefail
cd "$(dirname "$0")"
source scripts/setup.sh
exec build/marvolendo "$@"
