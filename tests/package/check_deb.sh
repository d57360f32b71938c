#!/usr/bin/env bash
# Builds the two Debian packages from a build folder, checks what they declare and hold, and
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

# The consumers and the quick-start programs, built against the root only.
bash "$here/../consumer/check.sh" "$build" "$work/use" "$work/root/usr"
# The helper programs: found by the root's libBase in the root's program folder, with the
# run paths alone (CMake's for the program, $ORIGIN-relative ones for the libraries and helpers).
mkdir -p "$work/cache"
env -u LD_LIBRARY_PATH "$work/use/cmake-build/helpers_consumer" "$work/root/usr/bin" "$work/cache"
