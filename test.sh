#!/usr/bin/env bash
# Builds the dev preset (Debug, sanitizers, warnings as errors) and runs every test.
set -euo pipefail
cd "$(dirname "$0")"
scripts/deps.sh build test desktop
cmake --preset dev >/dev/null
cmake --build --preset dev
ctest --preset dev
