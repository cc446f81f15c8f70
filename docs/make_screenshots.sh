#!/usr/bin/env bash
# make_screenshots.sh BIN OUT [DPI]: pictures of the five options dialogs as OUT/dialog-FILTER.png
# and of the viewer with a preview as OUT/viewer.png.
# Needs a display of its own without a window manager (xvfb-run), a Wine prefix (WINEPREFIX) and
# BIN with show_dialog.exe and imgbasic-viewer.exe beside imgbasic.dll.
set -euo pipefail

bin=$1
out=$2
dpi=${3:-96}
mkdir -p "$out"

set_dpi() {
    wine reg add 'HKCU\Control Panel\Desktop' /v LogPixels /t REG_DWORD /d "$1" /f >/dev/null
    wineserver -w
}

# The picture is whole when two in a row are the same and show more than the empty screen.
take_picture() {
    local picture=$1 before='' now
    for _ in $(seq 60); do
        sleep 0.5
        import -window root -trim +repage "$picture"
        now=$(identify -format '%wx%h %#' "$picture")
        if [ "${now%% *}" != 1x1 ] && [ "$now" = "$before" ]; then
            return
        fi
        before=$now
    done
    echo "make_screenshots: no dialog on the screen for $picture" >&2
    return 1
}

# Wine itself draws the frames of the windows; the cross in their close box is a font's.
marlett=/usr/share/wine/fonts/marlett.ttf
[ ! -f "$marlett" ] || cp "$marlett" "$WINEPREFIX/drive_c/windows/Fonts/"
wine reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d N /f >/dev/null
# The dialogs show the options of a first use.
wine reg delete 'HKCU\Software\orvex\brelo2\plugin\imgbasic' /f >/dev/null 2>&1 || true
set_dpi "$dpi"
for filter in nega gray mono col_reduce scaling; do
    wine "$bin/show_dialog.exe" "$filter" >/dev/null &
    take_picture "$out/dialog-$filter.png"
    xdotool key Escape
    wait $!
done

# The viewer with a preview of the two-level conversion, its dialog still open: Alt+I opens the menu
# of filters.
wine "$bin/imgbasic-viewer.exe" samples/landscape.ora >/dev/null &
take_picture "$out/viewer.png"
xdotool key alt+i
sleep 1
xdotool key Down Down Return
take_picture "$out/viewer.png"
xdotool key Down Down Tab Tab Tab space
take_picture "$out/viewer.png"
xdotool key Escape
sleep 1
xdotool key alt+F4
wait $!
set_dpi 96
