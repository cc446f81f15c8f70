#!/usr/bin/env bash
# The commands of docs/many-machines.md, as they stand there, over 200 pictures of which one is
# broken, on two machines that are folders here: stopped in the middle and run again, they bring
# every good picture home once, the same as a run on one machine makes. Names the program's folder.
set -euo pipefail
page=$(realpath "$(dirname "$0")/../docs/many-machines.md")
PATH=$(realpath "$1"):$PATH
place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT
trap 'echo "many_machines_test: line $LINENO: $BASH_COMMAND" >&2; cat errors.txt run.log >&2' ERR
cd "$place"
# Whoever runs this may have no home to write to and any shell; what parallel says is kept.
mkdir home
export HOME=$place/home SHELL=/bin/sh

# The page's block of commands that begins with these words.
commands() {
    awk -v start="    $1" 'index($0, start) == 1 { found = 1 } found && !/^    / { exit } found' "$page" | grep .
}

# Stands for ssh: a machine is a folder, to which its user's home is moved.
cat >ssh <<'SCRIPT'
#!/bin/sh
while [ "${1#-}" != "$1" ]; do case $1 in -l | -p | -o) shift ;; esac; shift; done
cd "${0%/*}/machines/$1"
shift
[ "$1" != -- ] || shift
HOME=$PWD exec sh -c "$*"
SCRIPT
chmod +x ssh
export PARALLEL_SSH=$place/ssh
mkdir -p photos machines/one machines/two
printf '1/one\n1/two\n' >hosts.txt
convert -seed 1 -size 320x160 plasma: -crop 16x16 +repage photos/%03d.png
echo 'no picture' >photos/097.png
eval "$(commands 'ls photos')"
[ "$(wc -l <pictures.txt)" = 200 ]
[ "$(eval "$(commands 'parallel --sshloginfile hosts.txt --nonall')" | sort -u | wc -l)" = 1 ]

run=$(commands 'parallel --sshloginfile hosts.txt --workdir')
set -m # so that the run has a process group, as in a terminal
(eval "exec $run") 2>errors.txt &
while kill -0 %% && [ "$(find gray -type f 2>/dev/null | wc -l)" -lt 90 ]; do sleep 0.2; done
kill -INT -- -$!
wait $! && exit 1
set +m
halfway=$(find gray -type f | wc -l)
[ "$halfway" -lt 199 ]
stat -c '%n %i' $(awk '$7 == 0 { print "gray/" substr($0, match($0, /[0-9]+\.png/), 7) }' run.log) >done.txt

(eval "$run") 2>errors.txt && exit 1
grep -qF 'photos/097.png: is no image' errors.txt
[ "$(eval "$(commands 'while read')")" = photos/097.png ]
stat -c '%n %i' $(cut -d ' ' -f 1 done.txt) | diff done.txt - # nothing was done twice
imgbasic gray photos/*.png -o single/ --method ntsc --quiet 2>/dev/null && exit 1
diff -r single gray
# Slurm's array over what a run left undone.
rm -r gray/0[05]*.png
array=$(commands '#!/bin/sh')
for task in {0..15}; do
    SLURM_ARRAY_TASK_ID=$task sh -c "$array" 2>/dev/null || true # the broken one
done
diff -r single gray
# A machine keeps at most the folder of the picture that it was at when the run was cut off.
for machine in machines/*; do
    [ "$(find "$machine/.parallel/tmp" -mindepth 1 -maxdepth 1 2>/dev/null | wc -l)" -le 1 ]
done
echo "stopped after $halfway of 199, and finished"
