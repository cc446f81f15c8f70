# ./dev dist, run by it: packs what there is for users into dist/. Two builds of one commit give the
# same files: all times in them are the commit's.
install_packages "${test_packages[@]}" file zip
export SOURCE_DATE_EPOCH TZ=UTC
SOURCE_DATE_EPOCH=$(git log -1 --format=%ct)
build_preset native imgbasic_texts imgbasic_gimp python_package
build_preset win64 imgbasic_module imgbasic_viewer
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:.*=//p' build/native/CMakeCache.txt)
linux=imgbasic-$version-linux-x86_64
windows=imgbasic-$version-win64
rm -rf dist
mkdir -p dist/stage

umask 022
cmake --install build/native --strip --prefix "dist/stage/$linux" >/dev/null
(cd build/native && cpack -B "$OLDPWD/dist/stage" >/dev/null)
mv dist/stage/*.deb dist

# What the programs of a folder need of the system: the libraries, how new those of the compiler
# must be, and the packages that have them.
tell_requirements() {
    local programs
    mapfile -t programs < <(find "$1" -type f -exec file {} + | sed -n 's/: *ELF .*//p' | sort)
    echo "These programs need the following libraries of the system:"
    objdump -p "${programs[@]}" | sed -n 's/^ *NEEDED */    /p' | sort -u | grep -v imgbasic
    echo "with at least the versions"
    for name in GLIBC GLIBCXX; do
        objdump -T "${programs[@]}" | grep -o "\b${name}_[0-9.]*[0-9]" | sort -uV | tail -n 1
    done | sed 's/^/    /'
    echo "On Debian they are in the packages"
    dpkg-deb -f dist/*.deb Depends | tr , '\n' | sed 's/^ */    /'
}
tell_requirements "dist/stage/$linux" >"dist/stage/requirements.txt"
mv dist/stage/requirements.txt "dist/stage/$linux"
tar -C dist/stage --sort=name --mtime="@$SOURCE_DATE_EPOCH" --owner=0 --group=0 --numeric-owner \
    -c "$linux" | gzip -n9 >"dist/$linux.tar.gz"

# The libraries in the programs want their licences to come with them.
install -D -m 644 -t "dist/stage/$windows/licenses" \
    build/mingw/licenses/{libpng1.6,libzip,mingw-w64,pugixml,zlib}.txt
install -m 644 -t "dist/stage/$windows" README.md CHANGELOG.md LICENSE
install -s --strip-program=x86_64-w64-mingw32-strip -t "dist/stage/$windows" \
    build/win64/bin/imgbasic.dll build/win64/bin/imgbasic-viewer.exe
cp -r "dist/stage/$linux"/share/doc/imgbasic/{README.ja.md,docs} "dist/stage/$windows"
find "dist/stage/$windows" -exec touch -d "@$SOURCE_DATE_EPOCH" {} +
(cd dist/stage && find "$windows" | LC_ALL=C sort | zip -qX -@ "../$windows.zip")

python/make_wheel.py build/native/python/imgbasic \
    "$(find "dist/stage/$linux" -name libimgbasic.so)" dist >/dev/null
rm -rf dist/stage
sums=$(cd dist && sha256sum -- *) # complete before its own file is there
echo "$sums" | tee dist/SHA256SUMS
