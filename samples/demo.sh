#!/usr/bin/env bash
# Runs every filter over the sample picture and lays the results out on contact sheets.
# Usage: samples/demo.sh COMMAND_LINE FOLDER
set -euo pipefail
unset IMGBASIC_REMEMBERED # the defaults count
imgbasic=$1
out=$2
sample=$(dirname "$0")/landscape.ora
pictures=$out/pictures
mkdir -p "$pictures"

# Runs one filter over the sample: NAME FILTER OPTIONS...
run() {
    local name=$1 filter=$2
    shift 2
    "$imgbasic" "$filter" "$sample" "$@" --quiet --force -o "$pictures/$name.png"
}

# Lays pictures out under their names: SHEET COLUMNS NAME...
sheet() {
    local file=$out/$1.png columns=$2 tiles=() name
    shift 2
    for name in "$@"; do
        tiles+=(-label "${name//_/ }" "$pictures/$name.png")
    done
    montage -font DejaVu-Sans -pointsize 13 "${tiles[@]}" \
        -geometry 300x200+6+4 -tile "${columns}x" "$file"
    echo "$file"
}

run original scaling --ratio 100
run inverted nega --target merged
run sepia gray --target merged --method ntsc --tint draw --draw-color F0C890
run two_levels mono --target merged --threshold 128
run 16_colours col_reduce --target merged --colors 16 --dither large
run a_twelfth scaling --ratio 8 --interp average
sheet filters 3 original inverted sepia two_levels 16_colours a_twelfth

methods=(average rgb ntsc value red green blue saturation cb cr)
for method in "${methods[@]}"; do
    run "$method" gray --target merged --method "$method"
done
tints=(white red green blue magenta cyan yellow draw back)
for tint in "${tints[@]}"; do
    run "tint_$tint" gray --target merged --method ntsc --tint "$tint" \
        --draw-color 336699 --back-color F0E0C0
done
sheet gray 5 "${methods[@]}" "${tints[@]/#/tint_}"

reduced=()
for colors in 2 4 16 256; do
    for dither in none pattern small large; do
        run "${colors}_colours,_$dither" col_reduce --target merged \
            --colors "$colors" --dither "$dither"
        reduced+=("${colors}_colours,_$dither")
    done
done
sheet col_reduce 4 "${reduced[@]}"

"$imgbasic" chan_decomp "$sample" --layer 0 --quiet --force -o "$out/channels.ora"
"$imgbasic" chan_merge "$out/channels.ora" --layer 0 --quiet --force -o "$out/merged.ora"
echo "$out/channels.ora"
echo "$out/merged.ora"
