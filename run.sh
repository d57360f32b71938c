#!/usr/bin/env bash
# Builds the release preset and runs the tour.
set -euo pipefail
cd "$(dirname "$0")"
scripts/deps.sh build
cmake --preset release >/dev/null
cmake --build --preset release --target tour
./build/release/bin/tour
