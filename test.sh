#!/usr/bin/env bash
# Builds the dev preset (Debug, sanitizers, warnings as errors) and runs every test.
set -euo pipefail
cd "$(dirname "$0")"
scripts/deps.sh build test docs desktop
# hiredis and redis-server for the cache server's remote tier; without them it is built without
# the tier and its tests skip.
scripts/deps.sh cache || echo "test.sh: cache packages unavailable; the remote tier's tests will skip" >&2
# Chromium, three.js and node for the debug-drawing viewer's checks; they skip when missing.
scripts/deps.sh browser || echo "test.sh: browser packages unavailable; their checks will skip" >&2
cmake --preset dev >/dev/null
scripts/install-test-tools.sh build/dev
cmake --build --preset dev
ctest --preset dev
