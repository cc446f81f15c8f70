#!/usr/bin/env bash
# make_pictures.sh COMMAND_LINE OUT: what each filter does, as OUT/filter-NAME.png, before on the left
# and after on the right, of a part of the sample picture. Needs ImageMagick.
set -euo pipefail
unset IMGBASIC_REMEMBERED # the defaults count
imgbasic=$(realpath "$1")
out=$(realpath "$2")
sample=$(realpath "$(dirname "$0")/../samples/landscape.ora")
place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT
cd "$place"

# Runs one filter: RESULT FILTER SOURCE OPTIONS...
run() {
    local result=$1 filter=$2 source=$3
    shift 3
    "$imgbasic" "$filter" "$source" --quiet -o "$result.png" "$@"
}

# Puts pictures side by side with an arrow before the last ones: NAME COUNT PICTURE..., of which COUNT
# stand before the arrow.
row() {
    local name=$1 count=$2
    shift 2
    convert "${@:1:count}" arrow.png "${@:count+1}" -background white -gravity center +smush 6 \
        -dither None -colors 160 -strip "PNG8:$out/filter-$name.png"
}

convert -size 20x24 xc:white -fill '#607080' -draw 'polygon 4,9 11,9 11,4 18,12 11,20 11,15 4,15' arrow.png
run whole scaling "$sample" --ratio 50 --interp average
convert whole.png -crop 204x138+342+150 +repage before.png

run grey gray before.png --method ntsc
run tinted gray before.png --method ntsc --tint draw --draw-color F0C890
row gray 1 before.png grey.png tinted.png

run two_levels mono before.png --threshold 205
row mono 1 before.png two_levels.png

run inverted nega before.png
row nega 1 before.png inverted.png

# With round corners, so that alpha has something to show.
convert before.png \( -size 204x138 xc:black -fill white -draw 'roundrectangle 0,0 203,137 40,40' \) \
    -alpha off -compose CopyOpacity -composite round.png
"$imgbasic" chan_decomp round.png --quiet -o channels.ora
unzip -q channels.ora 'data/*'
montage data/layer*.png -background white -resize 50% -geometry +2+2 -tile 2x2 channels.png
"$imgbasic" chan_merge channels.ora --layer 0 --quiet -o merged.png
row chan_decomp 1 round.png channels.png
row chan_merge 1 channels.png merged.png

run plain col_reduce before.png --colors 8 --dither none
run dithered col_reduce before.png --colors 8 --dither large
row col_reduce 1 before.png plain.png dithered.png

run full scaling "$sample" --ratio 100
convert full.png -crop 68x46+888+478 +repage detail.png
run hard scaling detail.png --ratio 300 --interp nearest
run smooth scaling detail.png --ratio 300 --interp bilinear
row scaling 1 detail.png hard.png smooth.png
