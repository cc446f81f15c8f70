#!/usr/bin/env bash
# What the command line does when the disk is full or read-only, and when it is killed while it
# saves: nothing is lost, nothing is half-written, nothing is left lying about.
# Usage: disk_faults.sh FOLDER_OF_THE_PROGRAMS; the exit status is 77 where that cannot be tried.
set -euo pipefail

# Disks of its own, in a mount namespace.
if [ "${2:-}" != inside ]; then
    script=$(realpath "$0")
    programs=$(realpath "$1")
    isolate=(unshare --mount)
    [ "$(id -u)" -eq 0 ] || isolate+=(--map-root-user)
    room=$(mktemp -d)
    trap 'rmdir "$room"' EXIT
    if ! "${isolate[@]}" mount -t tmpfs imgbasic "$room" 2>/dev/null; then
        echo "skipped: no disk can be mounted here; try it as root"
        exit 77
    fi
    "${isolate[@]}" "$script" "$programs" inside "$room"
    exit
fi

programs=$1
room=$3
sample=$(realpath "$(dirname "$0")/../../samples/landscape.ora")
mount -t tmpfs imgbasic "$room"
cd "$room"
mkdir home disk full
export HOME=$room/home
unset XDG_CONFIG_HOME IMGBASIC_REMEMBERED
settings=home/.config/imgbasic/settings.reg
output=disk/out.png

fail() {
    echo "disk_faults: $1" >&2
    cat said >&2
    exit 1
}

# Runs the program on which faults are inflicted: STATUS MESSAGE [FAULT=...] ARGUMENTS...
expect() {
    local wanted=$1 message=$2 status=0 faults=()
    shift 2
    while [[ $1 == FAULT_* ]]; do
        faults+=("$1")
        shift
    done
    {
        # A shell without a terminal starts what runs in the background with interrupts ignored.
        env --default-signal=INT ASAN_OPTIONS=verify_asan_link_order=0 LD_PRELOAD="$programs/libfailing_calls.so" \
            "${faults[@]}" "$programs/imgbasic" "$@" >said 2>&1 || status=$?
    } 2>/dev/null # where the shell tells of signals
    [ "$status" -eq "$wanted" ] || fail "${faults[*]} $*: exit status $status, not $wanted"
    [ -z "$message" ] || grep -q "$message" said ||
        fail "${faults[*]} $*: does not say '$message'"
}

# The folder holds these files and no other: FOLDER [NAME...]
holds() {
    local folder=$1
    shift
    [ "$(ls -A "$folder")" = "$(printf '%s\n' "$@")" ] ||
        fail "$folder holds $(ls -A "$folder" | tr '\n' ' ')"
}

expect 0 small.png scaling "$sample" -o small.png --ratio 25
sample=small.png
expect 0 "$output" nega "$sample" -o "$output" --target merged
cp "$output" inverted.png
expect 0 same.png mono "$sample" -o same.png --target merged

# A disk that is full, and one that cannot be written.
mount -t tmpfs -o size=16k imgbasic full
expect 1 'out.png: cannot be written (No space left.*make room' nega "$sample" -o full/out.png
holds full
echo old >full/out.png
expect 1 'make room' nega "$sample" -o full/out.png --force
[ "$(cat full/out.png)" = old ] || fail "a full disk cost the old file"
holds full out.png
mount -o remount,ro full
expect 1 'out.png: cannot be written (Read-only' nega "$sample" -o full/out.png --force
expect 1 'new.png: cannot be written (Read-only' nega "$sample" -o full/new.png

# A signal in the middle of a save, with and without files that have no name.
for named in '' FAULT_NAMED=1; do
    for signal in 2 9 15; do
        # shellcheck disable=SC2086 # nothing is no fault
        expect $((128 + signal)) '' $named FAULT_DIE_BY=$signal \
            mono "$sample" -o "$output" --target merged --force
        cmp "$output" inverted.png || fail "signal $signal cost the old file"
        [ "$signal$named" = 9FAULT_NAMED=1 ] || holds disk out.png
    done
    # Whatever was left goes with the next save; an interruption is none.
    # shellcheck disable=SC2086
    expect 0 "$output" $named FAULT_INTERRUPT=1 \
        mono "$sample" -o "$output" --target merged --force
    cmp "$output" same.png || fail "an interruption cost part of the file"
    holds disk out.png
    cp inverted.png "$output"
    # shellcheck disable=SC2086
    expect 1 'new.png: exists already' $named FAULT_RIVAL=disk/new.png \
        nega "$sample" -o disk/new.png
    [ ! -s disk/new.png ] || fail "what another process wrote was replaced"
    holds disk new.png out.png
    rm disk/new.png
done

# The stored options.
store() {
    expect "$1" "$2" "${@:4}" settings set mono --threshold "$3"
}
store 0 '' 7
grep -q 'Threshold"=dword:00000007' "$settings" || fail "the options are not stored"
cp "$settings" stored
store 137 '' 8 FAULT_DIE_BY=9
cmp "$settings" stored || fail "a killed save cost the stored options"
store 0 '' 7
store 0 '' 9 FAULT_INTERRUPT=1
holds "$(dirname "$settings")" settings.reg
cp "$settings" stored
mount -t tmpfs -o size=16k imgbasic home/.config
mkdir home/.config/imgbasic
cp stored "$settings"
dd if=/dev/zero of=home/.config/filling 2>/dev/null || true
store 1 'options of mono could not be stored' 10
cmp "$settings" stored || fail "a full disk cost the stored options"
rm "$output"
expect 1 'options of mono could not be stored' mono "$sample" -o "$output" --remember
holds disk out.png
mount -o remount,ro home/.config
store 1 'options of mono could not be stored' 11
store 0 '' 9
expect 1 'could not be removed' settings reset
holds "$(dirname "$settings")" settings.reg
