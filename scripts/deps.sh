#!/usr/bin/env bash
# Installs the Debian 12 packages that a task needs, and nothing when they are all there.
# Usage: scripts/deps.sh build|test|bench|fuzz ...
set -euo pipefail

packages_for() {
  case "$1" in
    build) echo "g++ cmake ninja-build pkg-config libboost-dev libsqlite3-dev" ;;
    test)  echo "libgtest-dev libgmock-dev liblapack-dev" ;;
    bench) echo "libbenchmark-dev libeigen3-dev liblapack-dev libopenblas-dev" ;;
    fuzz)  echo "clang libclang-rt-14-dev" ;;
    *) echo "scripts/deps.sh: unknown group '$1'" >&2; exit 2 ;;
  esac
}

wanted=()
for group in "$@"; do
  for p in $(packages_for "$group"); do wanted+=("$p"); done
done

missing=()
for p in "${wanted[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
sudo=""
[ "$(id -u)" -ne 0 ] && sudo="sudo"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
