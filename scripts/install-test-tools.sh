#!/usr/bin/env bash
# Installs the test tools that come from npm into a folder of the build tree (never globally):
# the Khronos glTF validator, which the debug-drawing checks run through node.
# Usage: scripts/install-test-tools.sh <build dir>      (e.g. build/dev)
# Does nothing when they are there; without node or npm, says so and leaves the checks to skip.
set -euo pipefail
cd "$(dirname "$0")/.."
tools="${1:?usage: scripts/install-test-tools.sh <build dir>}/test-tools"
validator_version=2.0.0-dev.3.10

if [ -f "$tools/node_modules/gltf-validator/package.json" ] &&
   grep -q "\"version\": \"$validator_version\"" "$tools/node_modules/gltf-validator/package.json"; then
  exit 0
fi
if ! command -v npm >/dev/null 2>&1; then
  scripts/deps.sh npm || true
fi
if ! command -v node >/dev/null 2>&1 || ! command -v npm >/dev/null 2>&1; then
  echo "install-test-tools: node or npm is missing; the glTF validator check will be skipped" >&2
  exit 0
fi
mkdir -p "$tools"
[ -f "$tools/package.json" ] || echo '{"name": "obrix-test-tools", "private": true}' >"$tools/package.json"
if ! npm install --prefix "$tools" --no-audit --no-fund --loglevel=error \
     "gltf-validator@$validator_version" >/dev/null; then
  echo "install-test-tools: npm could not install gltf-validator; its check will be skipped" >&2
fi
