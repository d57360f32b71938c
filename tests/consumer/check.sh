#!/usr/bin/env bash
# Installs the build tree into a scratch prefix, then builds and runs a consumer against it,
# once through find_package(ObrixBase) and once through pkg-config.
set -euo pipefail
build=$1
work=$2
here=$(cd "$(dirname "$0")" && pwd)
cmake=${CMAKE_COMMAND:-cmake}
flags=""
[ "${OBRIX_SANITIZE:-OFF}" = "ON" ] && flags="-fsanitize=address,undefined"

rm -rf "$work"
mkdir -p "$work"
"$cmake" --install "$build" --prefix "$work/prefix" >/dev/null
libdir=$(ls -d "$work"/prefix/lib* | head -n 1)

"$cmake" -S "$here" -B "$work/cmake-build" -G Ninja -DCMAKE_PREFIX_PATH="$work/prefix" \
    -DCMAKE_CXX_COMPILER="${CXX:-c++}" -DCMAKE_CXX_FLAGS="$flags" >/dev/null
"$cmake" --build "$work/cmake-build" >/dev/null
# No LD_LIBRARY_PATH: CMake's run path for libObrixBase and libObrixBase's own for libBase
# must be enough.
"$work/cmake-build/consumer"

export PKG_CONFIG_PATH="$libdir/pkgconfig"
# shellcheck disable=SC2046
"${CXX:-c++}" -std=c++20 $flags "$here/main.cpp" -o "$work/consumer-pc" $(pkg-config --cflags --libs obrixbase)
# pkg-config gives no run path: point the loader at the prefix, as its users do.
LD_LIBRARY_PATH="$libdir" "$work/consumer-pc"
