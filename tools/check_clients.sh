# ./dev check-clients, run by it: lets other paint programs open the OpenRaster files that we
# write, and compares their picture of each with ours. The programs are large; what is not to be
# had is skipped.
install_packages "${build_packages[@]}" xauth xvfb
for program in krita gimp; do
    install_packages "$program" || true
done
build_preset native client_pictures
client_pictures=build/native/bin/client_pictures
clients=$PWD/build/clients
rm -rf "$clients"
mkdir -p "$clients/home"
"$client_pictures" write "$clients"

# Runs a command that ends by itself; a program that asks a question instead never does.
ends() {
    env HOME="$clients/home" GIMP2_DIRECTORY="$clients/home/gimp" timeout 180 xvfb-run -a "$@"
}

krita_shows() {
    local picture=$clients/$1-krita.png
    ends krita --export --export-filename "$picture" "$clients/$1.ora" \
        >"$clients/$1-krita.log" 2>&1 && [ -f "$picture" ] &&
        "$client_pictures" compare "$clients/$1.ora" "$picture"
}

gimp_shows() {
    local picture=$clients/$1-gimp.png
    ends gimp -i -d -f -b "
        (let* ((image (car (gimp-file-load RUN-NONINTERACTIVE \"$clients/$1.ora\" \"\")))
               (layer (car (gimp-image-merge-visible-layers image CLIP-TO-IMAGE))))
          (gimp-file-save RUN-NONINTERACTIVE image layer \"$picture\" \"\"))" \
        -b '(gimp-quit 1)' >"$clients/$1-gimp.log" 2>&1 && [ -f "$picture" ] &&
        "$client_pictures" compare "$clients/$1.ora" "$picture"
}

# Skips a program that cannot open OpenRaster, else shows it every document.
try_client() {
    local program=$1 reason=$2 document
    if [ -n "$reason" ]; then
        echo "SKIPPED: $program ($reason)"
        skipped=$((skipped + 1))
        return
    fi
    for document in normal8 normal16 groups8 groups16 modes8 modes16; do
        run_check "${program}_shows" "$document"
    done
}

missing() {
    command -v "$1" >/dev/null || echo "cannot be installed"
}

gimp_reason=$(missing gimp)
if [ -z "$gimp_reason" ] &&
    ! find /usr/lib -path '*gimp*' -name '*openraster*' 2>/dev/null | grep -q .; then
    gimp_reason="its OpenRaster plug-in needs Python support that this GIMP lacks"
fi
try_client krita "$(missing krita)"
try_client gimp "$gimp_reason"
summary
