#!/usr/bin/env bash
# The manual page and the completion that are installed, in man and in bash: whether they tell of
# every command and flag that the help does, and can be read at all.
#
#     tests/manual_test.sh PROGRAM MANUAL COMPLETION
set -euo pipefail
program=$1 manual=$2 completion=$3

fail() {
    echo "manual_test: $*" >&2
    exit 1
}

commands() { "$program" --help | sed -n '/^Subcommands:/,$s/^  \([a-z_]\+\) .*/\1/p'; }
flags() { "$program" "$@" --help | grep -oE '^  [^ ]+' | grep -oE -- '--[a-z-]+' | sort -u; }

# What completion offers behind the words given, one a line.
complete_words() {
    bash --norc -c 'source "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _imgbasic 2>/dev/null
        printf "%s\n" "${COMPREPLY[@]}"' bash "$completion" imgbasic "$@"
}
expect() {
    local want=$1
    shift
    local got
    got=$(complete_words "$@" | xargs)
    [ "$got" = "$want" ] || fail "completes $* to: $got"
}

page=$(cat "$manual")
if command -v man >/dev/null; then
    page=$(LC_ALL=C.UTF-8 MANWIDTH=10000 man --warnings -E UTF-8 -l "$manual" 2>&1 | col -b)
    ! grep -E "^(troff|grotty|<standard input>|an\.tmac|man):" <<<"$page" || fail "the page has faults"
fi
[ "$(commands | wc -l)" -ge 9 ] || fail "finds no commands in the help"
for command in $(commands); do
    grep -q "^ *$command\$" <<<"$page" || fail "the page lacks $command"
    grep -qx "$command" <<<"$(complete_words "")" || fail "completion lacks $command"
    offered=$(complete_words "$command" -)
    for flag in $(flags "$command"); do
        grep -q -e "$flag\b" <<<"${page//\\-/-}" || fail "the page lacks $flag of $command"
        grep -qx -e "$flag" <<<"$offered" || fail "completion lacks $flag of $command"
    done
done
expect "gray" gr
expect "ntsc" gray in.png --method n
expect "clip clamp" scaling --boundary = c
expect "none pattern small large" col_reduce --dither =
expect "" mono --threshold ""
expect "lzw" mono --compression l
expect "0 1 2 3 4 5 6 7 8 9 none lzw deflate group4" run --compression ""
expect "8 16" nega --depth ""
expect "tif tiff" gray --format = t
expect "mono" settings show m
expect "--threshold" --module x.so mono --thr
