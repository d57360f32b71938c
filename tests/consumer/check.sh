#!/usr/bin/env bash
# Installs the build tree into a scratch prefix (or takes an unpacked one as the third
# argument), then builds and runs a consumer and the two quick-start programs of
# docs/quickstart.md against it, once through find_package(ObrixBase) and once through
# pkg-config. Nothing here names a language level: the package brings it.
# Usage: check.sh <build folder> <scratch folder> [<prefix>]
set -euo pipefail
build=$1
work=$2
prefix=${3:-$work/prefix}
here=$(cd "$(dirname "$0")" && pwd)
cmake=${CMAKE_COMMAND:-cmake}
flags=""
[ "${OBRIX_SANITIZE:-OFF}" = "ON" ] && flags="-fsanitize=address,undefined"

rm -rf "$work"
mkdir -p "$work/quickstart"
# The programs exactly as the document shows them: the first ```cpp and ```c blocks.
for lang in cpp c; do
    awk -v fence='```'"$lang" '$0 == fence {on = 1; next} on && $0 == "```" {exit} on' \
        "$here/../../docs/quickstart.md" > "$work/quickstart/quickstart.$lang"
    [ -s "$work/quickstart/quickstart.$lang" ] || { echo "no $lang block in quickstart.md" >&2; exit 1; }
done
[ -n "${3:-}" ] || "$cmake" --install "$build" --prefix "$prefix" >/dev/null
libdir=$(ls -d "$prefix"/lib* | head -n 1)
# The inline element access of the headers follows the library's own build option.
cmp "$build/generated/ObrixBase/ObrixBuildOptions.h" "$prefix/include/ObrixBase/ObrixBuildOptions.h"
# Consumers need nothing of Boost: no installed header may include it.
if grep -rlE '^[[:space:]]*#[[:space:]]*include[[:space:]]*[<"]boost/' "$prefix/include"; then
    echo "the installed headers above include Boost" >&2
    exit 1
fi

# CMake is told about the prefix and nothing else.
"$cmake" -S "$here" -B "$work/cmake-build" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
    -DCMAKE_FIND_USE_SYSTEM_PACKAGE_REGISTRY=OFF -DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF \
    -DCMAKE_CXX_COMPILER="${CXX:-c++}" -DCMAKE_CXX_FLAGS="$flags" \
    -DCMAKE_C_COMPILER="${CC:-cc}" -DCMAKE_C_FLAGS="$flags" \
    -DQUICKSTART_DIR="$work/quickstart" >"$work/cmake.log" 2>&1 || { cat "$work/cmake.log"; exit 1; }
grep -q "ObrixBase_DIR:PATH=$libdir/cmake/ObrixBase" "$work/cmake-build/CMakeCache.txt" ||
    { echo "find_package(ObrixBase) did not take the package in $prefix" >&2; exit 1; }
"$cmake" --build "$work/cmake-build" >"$work/build.log" 2>&1 || { cat "$work/build.log"; exit 1; }
# No LD_LIBRARY_PATH: CMake's run path for libObrixBase and libObrixBase's own for libBase
# must be enough.
"$work/cmake-build/consumer"
"$work/cmake-build/quickstart_cpp" >/dev/null
"$work/cmake-build/quickstart_c" >/dev/null

export PKG_CONFIG_PATH="$libdir/pkgconfig"
export PKG_CONFIG_LIBDIR="$libdir/pkgconfig"
# shellcheck disable=SC2046
"${CXX:-c++}" $flags "$here/main.cpp" -o "$work/consumer-pc" $(pkg-config --cflags --libs obrixbase)
# shellcheck disable=SC2046
"${CXX:-c++}" $flags -Wall -Wextra -Werror "$work/quickstart/quickstart.cpp" \
    -o "$work/quickstart-pc" $(pkg-config --cflags --libs obrixbase)
# The C package must carry nothing a C compiler refuses.
# shellcheck disable=SC2046
"${CC:-cc}" -std=c11 $flags -Wall -Wextra -Werror "$work/quickstart/quickstart.c" \
    -o "$work/quickstart-c-pc" $(pkg-config --cflags --libs obrixbase-c)
# pkg-config gives no run path: point the loader at the prefix, as its users do.
LD_LIBRARY_PATH="$libdir" "$work/consumer-pc"
LD_LIBRARY_PATH="$libdir" "$work/quickstart-pc"
LD_LIBRARY_PATH="$libdir" "$work/quickstart-c-pc"
