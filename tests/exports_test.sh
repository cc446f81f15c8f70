#!/usr/bin/env bash
# The modules export the thirteen functions and nothing else, and the Windows one needs nothing
# but the system's own libraries.
set -euo pipefail
cd "$(dirname "$0")/.."

plain='ImagePluginAdjustLocate2
ImagePluginBatchDispose
ImagePluginBatchPrepare
ImagePluginDialog
ImagePluginDispose
ImagePluginExecute4
ImagePluginGetPhase
ImagePluginIsBatchEnable
ImagePluginIsSizeChange
ImagePluginPhase2
ImagePluginPrepare2
PluginGetName'

expect_equal() {
    if [ "$2" != "$3" ]; then
        echo "$1"
        diff <(echo "$2") <(echo "$3") | sed 's/^</  missing:/;s/^>/  unexpected:/' | grep ': '
        exit 1
    fi
}

native=$(nm -D --defined-only build/native/bin/libimgbasic.so | awk '{print $3}' | LC_ALL=C sort)
expect_equal 'libimgbasic.so exports' \
    "$(printf '%s\n_Z22ImagePluginAdjustScalePKcPviiPdS2_' "$plain")" "$native"

dll=build/win64/bin/imgbasic.dll
tables=$(LC_ALL=C x86_64-w64-mingw32-objdump -p "$dll")
windows=$(sed -n '/\[Ordinal\/Name Pointer\] Table/,/^$/p' <<<"$tables" |
    sed -n 's/^[[:space:]]*\[[^]]*\] *//p' | grep -v Table | LC_ALL=C sort)
expect_equal 'imgbasic.dll exports' \
    "$(printf '?ImagePluginAdjustScale@@YAXPEBDPEAXHHPEAN2@Z\n%s' "$plain")" "$windows"

system='advapi32 comctl32 gdi32 kernel32 msvcrt user32'
imports=$(sed -n 's/.*DLL Name: \(.*\)\.dll$/\1/Ip' <<<"$tables" | tr '[:upper:]' '[:lower:]')
[ -n "$imports" ]
for library in $imports; do
    case " $system " in
    *" $library "*) ;;
    *) echo "imgbasic.dll imports $library.dll, which is not the system's"; exit 1 ;;
    esac
done
