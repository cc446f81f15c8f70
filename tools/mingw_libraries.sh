#!/usr/bin/env bash
# Builds what no package has for Windows, from the sources of the system's own packages, into
# build/mingw: the libraries that the viewer shares with the command line, and the benchmarks'. Run
# it by ./dev.
set -euo pipefail
cd "$(dirname "$0")/.."

prefix=$PWD/build/mingw
work=$prefix/work
rm -rf "$prefix"
mkdir -p "$work/state/lists/partial" "$work/cache/archives/partial" "$work/sources"

# The system may have no source packages among its sources; these are apt's own, aside from it.
repository=$(apt-get indextargets --format '$(REPO_URI) $(CODENAME)' 'Created-By: Packages' \
    'Origin: Debian' 'Label: Debian' | head -n 1)
echo "deb-src [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] $repository main" \
    >"$work/sources.list"
aside=(-qq -o Dir::Etc::SourceList="$work/sources.list" -o Dir::Etc::SourceParts=-
    -o Dir::State="$work/state" -o Dir::Cache="$work/cache" -o APT::Sandbox::User=)
apt-get "${aside[@]}" update
(cd "$work/sources" && apt-get "${aside[@]}" --download-only source \
    benchmark libpng1.6 libzip pugixml)

# One library: the name of its source package, and what its own build is told.
build() {
    local name=$1
    shift
    dpkg-source --no-check -x "$work/sources/${name}_"*.dsc "$work/$name" >/dev/null
    cmake -S "$work/$name" -B "$work/build-$name" -G Ninja -DBUILD_SHARED_LIBS=OFF \
        -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/mingw-w64.cmake" -DCMAKE_BUILD_TYPE=Release \
        -DZLIB_USE_STATIC_LIBS=ON -DCMAKE_INSTALL_PREFIX="$prefix" -Wno-dev "$@" >"$work/$name.log" 2>&1
    cmake --build "$work/build-$name" --target install >>"$work/$name.log" 2>&1
    install -D -m 644 "$work/$name/debian/copyright" "$prefix/licenses/$name.txt"
}
build libpng1.6 -DPNG_SHARED=OFF -DPNG_TESTS=OFF
build pugixml
build benchmark -DBENCHMARK_ENABLE_TESTING=OFF -DGIT_VERSION=0.0.0 # which stands for its own
build libzip -DENABLE_WINDOWS_CRYPTO=OFF -DENABLE_BZIP2=OFF -DENABLE_LZMA=OFF -DENABLE_OPENSSL=OFF \
    -DENABLE_GNUTLS=OFF -DENABLE_MBEDTLS=OFF -DENABLE_COMMONCRYPTO=OFF -DBUILD_TOOLS=OFF \
    -DBUILD_REGRESS=OFF -DBUILD_EXAMPLES=OFF -DBUILD_DOC=OFF
# What else is linked in statically.
install -m 644 /usr/share/doc/libz-mingw-w64-dev/copyright "$prefix/licenses/zlib.txt"
install -m 644 /usr/share/doc/mingw-w64-x86-64-dev/copyright "$prefix/licenses/mingw-w64.txt"
rm -rf "$work"
touch "$prefix/.complete"
