#!/usr/bin/env bash
# What users get works away from the tree: dist_test.sh FILE VERSION unpacks or installs a file of
# dist/ into an empty folder and uses it once. For the one for Windows, run it where Wine can be.
set -euo pipefail
cd "$(dirname "$0")/.."
tree=$PWD
file=$(realpath "$1")
version=$2
place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT
cd "$place"

# The program below a prefix finds its module, knows its version and has its manual page.
use_program() {
    "$1/bin/imgbasic" nega "$tree/samples/landscape.ora" --quiet -o inverted.png
    "$1/bin/imgbasic" info inverted.png >/dev/null
    "$1/bin/imgbasic" --version | grep -qwF "$version"
    man -l "$1/share/man/man1/imgbasic.1" | grep -qF col_reduce
    (cd "$1" && ls lib/gimp/2.0/plug-ins/imgbasic-gimp/imgbasic-gimp include/imgbasic_host.h \
        share/bash-completion/completions/imgbasic share/doc/imgbasic/docs/index.md) >/dev/null
}

# The viewer shows a picture, runs a filter of the module that lies beside it, and ends when asked to.
use_viewer() {
    WINEDEBUG=+loaddll wine imgbasic-viewer.exe "$tree/samples/landscape.ora" 2>loaded &
    timeout 60 xdotool search --sync --onlyvisible --name '^landscape\.ora .* 1200 ' >/dev/null
    sleep 2
    xdotool key alt+i # the menu of filters; splitting channels asks for nothing
    sleep 1
    xdotool key Down Down Down Down Return
    timeout 60 xdotool search --sync --onlyvisible --name '^landscape\.ora\*.* ms ' >/dev/null
    xdotool key ctrl+z alt+F4
    wait $!
    grep -F "${PWD##*/}\\\\imgbasic.dll" loaded | grep -qF native
}

case "$file" in
*.deb)
    dpkg-deb -x "$file" .
    use_program usr
    # The system has what the package depends on.
    apt-get install --simulate "$file" 2>&1 | grep -qF "Inst imgbasic ($version"
    ;;
*.tar.gz)
    tar -xzf "$file"
    use_program imgbasic-*
    grep -qF 'libvips.so' imgbasic-*/requirements.txt
    ;;
*.zip)
    unzip -q "$file"
    cd imgbasic-*
    ls README.ja.md docs/images/filter-gray.png imgbasic-viewer.exe >/dev/null
    "$tree/tests/minimal_host_test.sh" wine "$tree/build/win64/bin/minimal_host.exe" imgbasic.dll
    ls README.md LICENSE licenses/libzip.txt >/dev/null
    use_viewer
    ;;
*.whl)
    /usr/bin/python3 -m venv --system-site-packages venv # which have numpy
    venv/bin/pip install --quiet --no-index "$file"
    PATH=/usr/bin:/bin venv/bin/python - "$version" <<'PYTHON'
import sys
import imgbasic
import numpy

grey = imgbasic.gray(numpy.array([[[32, 16, 8]]], numpy.uint8), method="ntsc")
assert "/venv/" in imgbasic.__file__, imgbasic.__file__
assert (imgbasic.__version__, grey.tolist()) == (sys.argv[1], [[[20, 20, 20]]]), grey
PYTHON
    ;;
*)
    echo "dist_test.sh: $file is no file of dist/" >&2
    exit 2
    ;;
esac
