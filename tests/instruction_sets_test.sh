#!/usr/bin/env bash
# Object files compiled for an instruction set (name_avx2.cpp, name_avx512.cpp) define nothing that
# the linker could put into the baseline code: no weak symbol, and no global one but their forms,
# whose names end in the set. An optimizing compiler hides the fault by inlining, so that the files
# are compiled without optimization.
set -euo pipefail
cd "$(dirname "$0")/.."
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# Prints the symbols of the object file $2 that are no forms for the instruction set $1, which is
# what their names end in; names in namespaces and templates end before their parameters.
foreign_symbols() {
    nm -C --defined-only "$2" | sed -n 's/^[0-9a-f]* \([A-Zuvw] .*\)/\1/p' |
        grep -viE "^[TDRB] [a-z0-9_:]*$1(\(|$)" || true
}

# The check must see what it is for.
cat >"$folder/planted.cpp" <<'TEXT'
inline int Shared(int value) { return value; }
int FormAvx2(int value) { return Shared(value); }
TEXT
c++ -O0 -c -o "$folder/planted.o" "$folder/planted.cpp"
if [ "$(foreign_symbols avx2 "$folder/planted.o")" != 'W Shared(int)' ]; then
    echo 'the planted weak symbol is not seen'
    exit 1
fi

status=0
count=0
while IFS= read -r command; do
    set=$(sed 's/.*_\(avx[0-9]*\)\.cpp.*/\1/' <<<"$command")
    bash -c "$(sed "s|-o [^ ]*|-O0 -o $folder/form.o|" <<<"$command")"
    foreign=$(foreign_symbols "$set" "$folder/form.o")
    count=$((count + 1))
    if [ -n "$foreign" ]; then
        status=1
        echo "${command##*/} defines more than its forms:"
        sed 's/^/  /' <<<"$foreign"
    fi
done < <(sed -n 's/^ *"command": "\(.*_avx[0-9]*\.cpp\)",$/\1/p' build/native/compile_commands.json)

# Nor may a baseline object define a form.
if nm -C -A --defined-only build/native/lib/libimgbasic_image.a |
    grep -vE '_avx[0-9]+\.cpp\.o:' | grep -iE ':[0-9a-f]* [A-Zuvw] [a-z0-9_:]*avx[0-9]+(\(|$)'; then
    status=1
fi
echo "$count files for an instruction set"
[ "$count" -gt 0 ] && [ "$status" -eq 0 ]
