#!/usr/bin/env bash
# What `cmake --install` puts in place works there: the program finds its module, and says where it
# looked for one that is missing. And the module builds without what stands around it.
set -euo pipefail
cd "$(dirname "$0")/.."
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT

cmake --install build/native --prefix "$prefix" >/dev/null
(cd "$prefix" && ls bin/imgbasic include/imgbasic_host.h share/doc/imgbasic/{README.md,LICENSE,docs/protocol.md}) >/dev/null
(cd "$prefix" && ls share/man/man1/imgbasic.1 share/bash-completion/completions/imgbasic) >/dev/null
"$prefix/bin/imgbasic" nega samples/landscape.ora --target merged --quiet -o "$prefix/inverted.png"
"$prefix/bin/imgbasic" info "$prefix/inverted.png" >/dev/null
if [ -e build/native/bin/imgbasic-gimp ]; then
    ls "$prefix/lib/gimp/2.0/plug-ins/imgbasic-gimp/imgbasic-gimp" >/dev/null
fi

module=$(find "$prefix" -name libimgbasic.so)
rm "$module"
message=$("$prefix/bin/imgbasic" list 2>&1) && exit 1
grep -qF "neither in $prefix/bin nor in ${module%/*};" <<<"$message"

# Another project that adds this one gets the module alone, for which no library is looked for.
cat >"$prefix/CMakeLists.txt" <<TEXT
cmake_minimum_required(VERSION 3.25)
project(other LANGUAGES CXX)
foreach(package PkgConfig ZLIB benchmark)
    set(CMAKE_DISABLE_FIND_PACKAGE_\${package} ON)
endforeach()
set(IMGBASIC_GOOGLETEST /nowhere)
add_subdirectory("$PWD" imgbasic)
TEXT
cmake -S "$prefix" -B "$prefix/other" >/dev/null
