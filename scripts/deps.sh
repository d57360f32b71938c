#!/usr/bin/env bash
# Installs the Debian 12 packages that a task needs, and nothing when they are all there.
# Usage: scripts/deps.sh build|test|docs|desktop|cache|bench|fuzz|windows|browser|npm ...
set -euo pipefail

packages_for() {
  case "$1" in
    build) echo "g++ cmake ninja-build pkg-config libboost-dev libsqlite3-dev" ;;
    # GDB runs the pretty-printers' test; dpkg-dev brings dpkg-shlibdeps, which the Debian
    # packages' test needs for their dependencies.
    test)  echo "libgtest-dev libgmock-dev liblapack-dev python3 gdb dpkg-dev" ;;
    # The API reference (target docs, test api_reference).
    docs)  echo "doxygen" ;;
    # The warning box's GTK dialog, and the X server, input and screenshot tools of its test.
    desktop) echo "libgtk-3-dev xvfb xdotool imagemagick" ;;
    # The cache server's Redis tier: the client library, SHA-256 from OpenSSL's libcrypto, and
    # the server its tests start on loopback.
    cache) echo "libhiredis-dev libssl-dev redis-server" ;;
    bench) echo "libbenchmark-dev libeigen3-dev liblapack-dev libopenblas-dev" ;;
    fuzz)  echo "clang libclang-rt-14-dev" ;;
    # The Windows leg: the mingw-w64 cross compiler with the posix thread model, Wine to run
    # its programs (wine64 alone puts no `wine` on PATH), and GoogleTest's sources to build
    # for Windows.
    windows) echo "g++-mingw-w64-x86-64-posix binutils-mingw-w64 wine wine64 googletest" ;;
    # The debug-drawing viewer's checks: Chromium opens the page headless, three.js is inlined
    # into it, and node runs the glTF validator (installed by scripts/install-test-tools.sh).
    browser) echo "chromium libjs-three nodejs" ;;
    # npm, for a node that does not bring its own (Debian's does not).
    npm) echo "npm" ;;
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

sudo=""
if [ "$(id -u)" -ne 0 ]; then
  if ! command -v sudo >/dev/null 2>&1; then
    echo "scripts/deps.sh: cannot install ${missing[*]}: run as root or install sudo" >&2
    exit 1
  fi
  sudo="sudo"
fi
echo "Installing: ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
