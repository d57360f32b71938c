#!/usr/bin/env bash
# Builds the two Debian packages from a build folder, checks what they declare and hold, and
# uses them from a clean root: a folder that holds nothing but what `dpkg -x` unpacked from
# them. Their dependencies must resolve against the system's Debian packages (apt's
# simulation); the consumers of tests/consumer and the quick-start programs are built
# against the root with only find_package(ObrixBase) or only pkg-config, and a program that
# needs the helper programs runs with them found in the root.
# Usage: check_deb.sh <build folder> <scratch folder>
set -euo pipefail
build=$1
work=$2
here=$(cd "$(dirname "$0")" && pwd)
source_dir=$(cd "$here/../.." && pwd)
cmake=${CMAKE_COMMAND:-cmake}
cpack=${CPACK_COMMAND:-cpack}
version=${OBRIX_VERSION:?}
flags=""
[ "${OBRIX_SANITIZE:-OFF}" = "ON" ] && flags="-fsanitize=address,undefined"

rm -rf "$work"
mkdir -p "$work/packages" "$work/root"
"$cpack" -G DEB --config "$build/CPackConfig.cmake" -B "$work/packages" >"$work/cpack.log" 2>&1 ||
    { cat "$work/cpack.log"; exit 1; }
runtime=$(ls "$work"/packages/libobrixbase0_*.deb)
dev=$(ls "$work"/packages/libobrixbase-dev_*.deb)

field() { dpkg-deb -f "$1" "$2"; }
expect() { # what, got, wanted
    [ "$2" = "$3" ] || { echo "$1: '$2', expected '$3'" >&2; exit 1; }
}
expect "runtime package name" "$(field "$runtime" Package)" libobrixbase0
expect "dev package name" "$(field "$dev" Package)" libobrixbase-dev
expect "runtime version" "$(field "$runtime" Version)" "$version"
# The link names and the CMake files name one architecture's libraries.
expect "dev architecture" "$(field "$dev" Architecture)" "$(field "$runtime" Architecture)"
# The dev package's link names and headers belong to one build of the runtime.
case ", $(field "$dev" Depends), " in
    *", libobrixbase0 (= $version), "*) ;;
    *) echo "libobrixbase-dev does not depend on libobrixbase0 (= $version): $(field "$dev" Depends)" >&2
       exit 1 ;;
esac
# What the libraries and programs link, found by dpkg-shlibdeps: at least the C and C++
# runtimes and SQLite (the cache server's index).
for lib in libc6 libstdc++6 libsqlite3-0; do
    case ", $(field "$runtime" Depends)" in
        *", $lib "*|*", $lib,"*) ;;
        *) echo "libobrixbase0 does not depend on $lib: $(field "$runtime" Depends)" >&2; exit 1 ;;
    esac
done

# Each file in the package it belongs to.
dpkg-deb -c "$runtime" | awk '{print $6}' >"$work/runtime.files"
dpkg-deb -c "$dev" | awk '{print $6}' >"$work/dev.files"
for f in ./usr/lib/libObrixBase.so.$version ./usr/lib/libBase.so.$version ./usr/bin/qvcached \
         ./usr/bin/veskoWarning ./usr/bin/veskoTraceDump ./usr/share/doc/libobrixbase0/copyright; do
    grep -qxF "$f" "$work/runtime.files" || { echo "libobrixbase0 lacks $f" >&2; exit 1; }
done
for f in ./usr/include/ObrixBase/ObrixBase.h ./usr/lib/cmake/ObrixBase/ObrixBaseConfig.cmake \
         ./usr/lib/pkgconfig/obrixbase.pc ./usr/lib/pkgconfig/obrixbase-c.pc \
         "./usr/share/gdb/auto-load/usr/lib/libObrixBase.so.$version-gdb.py" \
         ./usr/share/doc/libobrixbase-dev/copyright; do
    grep -qxF "$f" "$work/dev.files" || { echo "libobrixbase-dev lacks $f" >&2; exit 1; }
done
if grep -q '_internal\.h$\|\.so$' "$work/runtime.files"; then
    echo "libobrixbase0 ships a private header or a link name" >&2; exit 1
fi
if grep -q '_internal\.h$' "$work/dev.files"; then
    echo "libobrixbase-dev ships a private header" >&2; exit 1
fi

# Both install together on this system: apt resolves every dependency against the Debian
# packages it knows (simulation only, nothing changes).
if command -v apt-get >/dev/null; then
    if ! apt-get install -s -qq --no-install-recommends "$runtime" "$dev" >"$work/apt.log" 2>&1; then
        cat "$work/apt.log" >&2
        echo "the packages' dependencies do not resolve" >&2
        exit 1
    fi
fi

dpkg -x "$runtime" "$work/root"
dpkg -x "$dev" "$work/root"
prefix="$work/root/usr"

# The quick-start programs exactly as docs/quickstart.md shows them.
mkdir -p "$work/quickstart"
for lang in cpp c; do
    awk -v fence='```'"$lang" '$0 == fence {on = 1; next} on && $0 == "```" {exit} on' \
        "$source_dir/docs/quickstart.md" >"$work/quickstart/quickstart.$lang"
done

# CMake: the root is the only place it is told about.
"$cmake" -S "$source_dir/tests/consumer" -B "$work/cmake-build" -G Ninja \
    -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_FIND_USE_SYSTEM_PACKAGE_REGISTRY=OFF \
    -DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF \
    -DCMAKE_CXX_COMPILER="${CXX:-c++}" -DCMAKE_CXX_FLAGS="$flags" \
    -DCMAKE_C_COMPILER="${CC:-cc}" -DCMAKE_C_FLAGS="$flags" \
    -DQUICKSTART_DIR="$work/quickstart" >"$work/cmake.log" 2>&1 || { cat "$work/cmake.log"; exit 1; }
grep -q "ObrixBase_DIR:PATH=$prefix/lib/cmake/ObrixBase" "$work/cmake-build/CMakeCache.txt" ||
    { echo "find_package(ObrixBase) did not take the package in the root" >&2; exit 1; }
"$cmake" --build "$work/cmake-build" >"$work/build.log" 2>&1 || { cat "$work/build.log"; exit 1; }
"$work/cmake-build/consumer"
"$work/cmake-build/quickstart_cpp" >/dev/null
"$work/cmake-build/quickstart_c" >/dev/null

# pkg-config: the root's .pc files only.
export PKG_CONFIG_PATH="$prefix/lib/pkgconfig"
export PKG_CONFIG_LIBDIR="$prefix/lib/pkgconfig"
# shellcheck disable=SC2046
"${CXX:-c++}" $flags -Wall -Wextra -Werror "$work/quickstart/quickstart.cpp" -o "$work/quickstart-pc" \
    $(pkg-config --cflags --libs obrixbase)
# shellcheck disable=SC2046
"${CC:-cc}" -std=c11 $flags -Wall -Wextra -Werror "$work/quickstart/quickstart.c" \
    -o "$work/quickstart-c-pc" $(pkg-config --cflags --libs obrixbase-c)
# The root is not in the loader's path, as /usr would be after dpkg -i.
export LD_LIBRARY_PATH="$prefix/lib"
"$work/quickstart-pc" >/dev/null
"$work/quickstart-c-pc" >/dev/null
# The helper programs: found by the root's libBase in the root's program folder, with the
# run paths alone (CMake's for the program, $ORIGIN-relative ones for the libraries and helpers).
mkdir -p "$work/cache"
env -u LD_LIBRARY_PATH "$work/cmake-build/helpers_consumer" "$prefix/bin" "$work/cache"
