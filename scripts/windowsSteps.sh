#!/usr/bin/env bash
# Runs the programs of a build for Windows; Wine's side of scripts/windows test. Usage: windowsSteps.sh BUILD FOLDER
# The variables WINE and WINEPREFIX say by which Wine. Nothing but this script's own folder of results is written.
set -uo pipefail
build=$1 folder=$2 machine=${1##*-}
out=$folder/$machine portraits=$folder/portraits
export WINEDEBUG=-all
# Wine reads the names of files by it.
export LC_ALL=C.UTF-8
failures=0

# Runs one step and tells how it went: step NAME COMMAND...
step() {
    local name=$1 started=$SECONDS
    shift
    if "$@" >"$out/$name.log" 2>&1 </dev/null; then
        printf '  %-14s done, %d s\n' "$name" $((SECONDS - started))
    else
        printf '  %-14s FAILED, status %d:\n' "$name" $?
        tail -n 12 "$out/$name.log" | sed 's/^/    /'
        failures=$((failures + 1))
    fi
}

# A program of the build, which finds the libraries beside itself: wine PROGRAM ARGUMENT...
wine() { "$WINE" "$@"; }

# Everything that hosts load in one folder, as on a user's machine.
mkdir -p -- "$out/bin/zel"
cp -- "$build/src/zel_effects.dll" "$build/libzel/zel.dll" "$build/cli/zel.exe" "$build"/examples/*.exe \
    "$build/tests/zel_tests.exe" "$build/tests/windows/"*.exe "$out/bin/"
cp -- "$build/zel/zel_networks.dll" "$out/bin/zel/"
ln -sfn -- "$build/assets" "$out/bin/assets"
cp -- "$out/zel_effects.def" "$out/bin/"
cd -- "$out/bin" || exit 1

# Names, the five calls, and what is too large.
step names wine vendorNames.exe .
# The tests find assets in the working folder; what draws by OpenGL finds the display.
step tests wine zel_tests.exe --gtest_brief=1
step table wine effectTable.exe "$portraits" "$out/table.txt"
step openGL wine openGlDefocus.exe "$portraits/p10.png" "$portraits/p10/depth.png" assets "$out/openGlDefocus.ppm"
step retouch wine retouch.exe "$portraits/p10.png" "$out/retouch.ppm"
step depthOfField wine depthOfField.exe "$portraits/p10.png" assets "$out/depthOfField.ppm"
step command wine zel.exe apply auto-slim-face + nature-smooth "$portraits/p10.png" -o "$out/applied.png" --quiet \
    --faces "$portraits/p10.json"
step depth wine zel.exe depth "$portraits/p10.png" -o "$out/depth.png" --quiet --set subject=none
# A face is found, by the cascade or a network, in a file whose name no code page has; the second result takes the place of
# the first.
name=$'\u043f\u00e9\u4e2d'
cp -- "$portraits/p10.png" "$out/$name.png"
for effect in mosaic auto-eye-bright; do
    step "wide-$effect" wine zel.exe apply "$effect" "$out/$name.png" -o "$out/$name-out.png" --quiet
done
# Without a window there is no OpenGL: a message and no crash.
without_window() {
    local said
    said=$(env -u DISPLAY "$WINE" openGlDefocus.exe "$portraits/p01.png" "$portraits/p01/depth.png" assets "$out/none.ppm" 2>&1)
    printf '%s\n' "$said"
    [[ $said == *"no OpenGL: "*failed* ]]
}
step noWindow without_window
((failures == 0))
