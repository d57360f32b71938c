#!/usr/bin/env bash
# Builds the three Debian packages from a build folder, checks what they declare and hold, and
# uses them from a clean root: a folder that holds nothing but what `dpkg -x` unpacked from
# them. Their dependencies must resolve against the system's Debian packages (apt's
# simulation); tests/consumer/check.sh builds its programs against the root, and a program
# that needs the helper programs runs with them found in the root.
# Usage: check_deb.sh <build folder> <scratch folder>
set -euo pipefail
build=$1
work=$2
here=$(cd "$(dirname "$0")" && pwd)
cpack=${CPACK_COMMAND:-cpack}
version=${OBRIX_VERSION:?}

rm -rf "$work"
mkdir -p "$work/packages" "$work/root"
"$cpack" -G DEB --config "$build/CPackConfig.cmake" -B "$work/packages" >"$work/cpack.log" 2>&1 ||
    { cat "$work/cpack.log"; exit 1; }
runtime=$(ls "$work"/packages/libobrixbase0_*.deb)
dev=$(ls "$work"/packages/libobrixbase-dev_*.deb)
helpers=$(ls "$work"/packages/obrixbase-helpers_*.deb)

field() { dpkg-deb -f "$1" "$2"; }
expect() { # what, got, wanted
    [ "$2" = "$3" ] || { echo "$1: '$2', expected '$3'" >&2; exit 1; }
}
expect "runtime package name" "$(field "$runtime" Package)" libobrixbase0
expect "dev package name" "$(field "$dev" Package)" libobrixbase-dev
expect "helpers package name" "$(field "$helpers" Package)" obrixbase-helpers
expect "runtime version" "$(field "$runtime" Version)" "$version"
expect "helpers recommended" "$(field "$runtime" Recommends)" "obrixbase-helpers (= $version)"
# The link names and the CMake files name one architecture's libraries.
expect "dev architecture" "$(field "$dev" Architecture)" "$(field "$runtime" Architecture)"
# depends PACKAGE-FILE NAME...: the package's Depends names each of them.
depends() {
    local deb=$1 lib
    shift
    for lib in "$@"; do
        case ", $(field "$deb" Depends), " in
            *", $lib "*|*", $lib,"*) ;;
            *) echo "$(field "$deb" Package) does not depend on $lib: $(field "$deb" Depends)" >&2
               exit 1 ;;
        esac
    done
}
# The dev package's link names and headers, and the helper programs, belong to one build of
# the runtime.
depends "$dev" "libobrixbase0 (= $version)"
depends "$helpers" "libobrixbase0 (= $version)"
# What the files link, found by dpkg-shlibdeps: the C and C++ runtimes for the libraries, and
# SQLite (the cache server's index) for the helpers. The libraries pull in no GUI toolkit nor
# database: that is why the helpers are a package of their own.
depends "$runtime" libc6 libstdc++6
depends "$helpers" libc6 libsqlite3-0
if [[ "$(field "$runtime" Depends)" == *gtk* || "$(field "$runtime" Depends)" == *sqlite* ]]; then
    echo "libobrixbase0 depends on the helpers' libraries: $(field "$runtime" Depends)" >&2
    exit 1
fi

# Each file in the package it belongs to.
dpkg-deb -c "$runtime" | awk '{print $6}' >"$work/runtime.files"
dpkg-deb -c "$dev" | awk '{print $6}' >"$work/dev.files"
dpkg-deb -c "$helpers" | awk '{print $6}' >"$work/helpers.files"
for f in ./usr/lib/libObrixBase.so.$version ./usr/lib/libBase.so.$version \
         ./usr/share/doc/libobrixbase0/copyright; do
    grep -qxF "$f" "$work/runtime.files" || { echo "libobrixbase0 lacks $f" >&2; exit 1; }
done
for f in ./usr/bin/qvcached ./usr/bin/veskoWarning ./usr/bin/veskoTraceDump \
         ./usr/share/doc/obrixbase-helpers/copyright; do
    grep -qxF "$f" "$work/helpers.files" || { echo "obrixbase-helpers lacks $f" >&2; exit 1; }
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
    if ! apt-get install -s -qq --no-install-recommends "$runtime" "$dev" "$helpers" >"$work/apt.log" 2>&1; then
        cat "$work/apt.log" >&2
        echo "the packages' dependencies do not resolve" >&2
        exit 1
    fi
fi

dpkg -x "$runtime" "$work/root"
dpkg -x "$dev" "$work/root"
dpkg -x "$helpers" "$work/root"

# The consumers and the quick-start programs, built against the root only.
bash "$here/../consumer/check.sh" "$build" "$work/use" "$work/root/usr"
# The helper programs: found by the root's libBase in the root's program folder, with the
# run paths alone (CMake's for the program, $ORIGIN-relative ones for the libraries and helpers).
mkdir -p "$work/cache"
env -u LD_LIBRARY_PATH "$work/use/cmake-build/helpers_consumer" "$work/root/usr/bin" "$work/cache"
