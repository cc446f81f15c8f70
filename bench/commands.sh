#!/bin/bash
# Measures the command line beside other programs: CPU time, peak memory and the size of the file,
# medians of several runs, over a generated picture of 16 megapixels or over the JPEG photographs
# that are named, one after the other: then the times and the sizes are sums. Programs that are not
# installed are left out.
#
#     bench/commands.sh [PROGRAM [RUNS [PHOTO...]]]
set -euo pipefail

program=$(realpath "${1:-build/native/bin/imgbasic}")
runs=${2:-5}
photos=()
for photo in "${@:3}"; do
    photos+=("$(realpath "$photo")")
done
folder=$(mktemp -d)
trap 'rm -r "$folder"' EXIT
cd "$folder"

# A photo-like picture: soft shades, edges and grain.
generate() {
    vips perlin soft.v 4928 3264 --cell-size 700
    vips perlin fine.v 4928 3264 --cell-size 90 --seed 2
    vips gaussnoise grain.v 4928 3264 --sigma 3 --seed 3
    for band in 1 2 3; do
        vips linear soft.v a.v "$((50 + 15 * band))" 120
        vips linear fine.v b.v "$((35 - 8 * band))" 0
        vips sum "a.v b.v grain.v" "band$band.v"
    done
    vips bandjoin "band1.v band2.v band3.v" photo.v
    vips cast photo.v bytes.v uchar
    vips copy bytes.v photo.png --interpretation srgb
    vips copy "photo.png" "generated.jpg[Q=92,subsample_mode=off]"
    rm ./*.v photo.png
    photos=("$folder/generated.jpg")
}
[ ${#photos[@]} -gt 0 ] || generate
for i in "${!photos[@]}"; do
    vips copy "${photos[i]}" "$i.png"
done

median() { sort -n | sed -n "$(((runs + 1) / 2))p"; }

# measure LABEL OUTPUT COMMAND...   The command reads photo.jpg or photo.png.
measure() {
    local label=$1 output=$2
    shift 2
    command -v "$1" >/dev/null || return 0
    local run i size
    : >totals.txt
    for ((run = 0; run < runs; ++run)); do
        : >each.txt
        size=0
        for i in "${!photos[@]}"; do
            ln -sf "${photos[i]}" photo.jpg
            ln -sf "$i.png" photo.png
            rm -f "$output"
            /usr/bin/time -a -o each.txt -f "%U %S %M" "$@" >/dev/null
            size=$((size + $(stat -c %s "$output")))
        done
        awk '{ cpu += $1 + $2; if ($3 > peak) peak = $3 }
            END { printf "%.2f %.0f\n", cpu, peak / 1024 }' each.txt >>totals.txt
    done
    printf '| %s | %s | %s | %s |\n' "$label" "$(cut -d ' ' -f 1 totals.txt | median)" \
        "$(cut -d ' ' -f 2 totals.txt | median)" "$(awk "BEGIN { printf \"%.2f\", $size / 1e6 }")"
}

jpeg="[Q=95,subsample_mode=off]"
magick=(convert -limit thread 2)

echo "| command | CPU, s | peak, MB | file, MB |"
echo "| --- | --- | --- | --- |"
measure "nega, JPEG to PNG" o.png "$program" nega photo.jpg -o o.png
measure "  libvips invert" o.png vips invert photo.jpg o.png
measure "  ImageMagick -negate" o.png "${magick[@]}" photo.jpg -negate o.png
measure "nega, JPEG to JPEG" o.jpg "$program" nega photo.jpg -o o.jpg
measure "  libvips invert" o.jpg vips invert photo.jpg "o.jpg$jpeg"
measure "  ImageMagick -negate" o.jpg "${magick[@]}" photo.jpg -negate -quality 95 o.jpg
measure "gray, JPEG to PNG" o.png "$program" gray photo.jpg -o o.png
measure "  libvips colourspace b-w" o.png vips colourspace photo.jpg o.png b-w
measure "  ImageMagick -colorspace Gray" o.png "${magick[@]}" photo.jpg -colorspace Gray o.png
measure "gray, JPEG to JPEG" o.jpg "$program" gray photo.jpg -o o.jpg
measure "  libvips colourspace b-w" o.jpg vips colourspace photo.jpg "o.jpg$jpeg" b-w
measure "mono, JPEG to PNG" o.png "$program" mono photo.jpg -o o.png
measure "  libvips extract_band, threshold" o.png \
    bash -c 'vips extract_band photo.jpg r.v 0 && vips relational_const r.v "o.png[bitdepth=1]" moreeq 128'
measure "  ImageMagick -threshold" o.png "${magick[@]}" photo.jpg -channel R -separate +channel -threshold 50% o.png
measure "scaling to 50 %, average, JPEG to PNG" o.png "$program" scaling photo.jpg -o o.png --ratio 50 --interp average
measure "  libvips shrink" o.png vips shrink photo.jpg o.png 2 2
measure "  ImageMagick -scale" o.png "${magick[@]}" photo.jpg -scale 50% o.png
measure "scaling to 50 %, average, JPEG to JPEG" o.jpg "$program" scaling photo.jpg -o o.jpg --ratio 50 --interp average
measure "  libvips shrink" o.jpg vips shrink photo.jpg "o.jpg$jpeg" 2 2
measure "col_reduce to 64, PNG to PNG" o.png "$program" col_reduce photo.png -o o.png --colors 64
measure "  pngquant 64" o.png pngquant 64 photo.png -o o.png
measure "  ImageMagick -colors 64" o.png "${magick[@]}" photo.png -colors 64 o.png
