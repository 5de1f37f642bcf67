# The builds for Windows under Wine: sourced by scripts/windows.
# shellcheck shell=bash

readonly CASCADES=/usr/share/opencv4/haarcascades CASCADE=haarcascade_frontalface_default.xml

# The 32-bit Wine lives in a small system of its own: this one may have no 32-bit packages. Its packages:
readonly WINE32_PACKAGES=(wine32 wine xvfb xauth libgl1 libgl1-mesa-dri libgnutls30)

# Runs as root or through sudo.
as_root() {
    if ((EUID == 0)); then "$@"; else sudo -- "$@"; fi
}

# Makes the small system, once.
make_wine32() {
    local system=$DEPENDENCIES/i386
    [[ ! -e $system/.whole ]] || return 0
    say "Making a 32-bit system for Wine"
    as_root rm -rf -- "$system"
    as_root debootstrap --arch=i386 --variant=minbase bookworm "$system" "$(debian_archive)" >"$DEPENDENCIES/i386.log" 2>&1 ||
        fail "it cannot be made; all that was said is in $DEPENDENCIES/i386.log"
    # shellcheck disable=SC2016 # its own arguments
    as_root unshare --mount bash -euc '
        mount -t proc proc "$1/proc"
        mount --bind /dev "$1/dev"
        export DEBIAN_FRONTEND=noninteractive
        chroot "$1" apt-get -q -y install --no-install-recommends "${@:2}"' \
        - "$system" "${WINE32_PACKAGES[@]}" >>"$DEPENDENCIES/i386.log" 2>&1 ||
        fail "Wine cannot be installed in it; all that was said is in $DEPENDENCIES/i386.log"
    as_root touch -- "$system/.whole"
}

# Runs scripts/windowsSteps.sh on one processor's build: run_steps MACHINE FOLDER
# FOLDER, below the tree, holds what the steps read and takes what they write.
run_steps() {
    local machine=$1 folder=$2 system=$DEPENDENCIES/i386
    local steps=("$SCRIPTS/windowsSteps.sh" "$ROOT/build/windows-$machine" "$folder")
    if [[ $machine == x64 ]]; then
        WINEPREFIX=$DEPENDENCIES/wine-x64 WINE=/usr/lib/wine/wine64 xvfb-run -a "${steps[@]}"
        return
    fi
    make_wine32
    # The tree appears at the path that it has outside.
    # shellcheck disable=SC2016 # its own arguments
    as_root unshare --mount bash -euc '
        mount -t proc proc "$1/proc"
        mount --bind /dev "$1/dev"
        mkdir -p "$1$2"
        mount --bind "$2" "$1$2"
        shift 2
        exec chroot "$@"' - "$system" "$ROOT" "$system" env HOME=/root WINEARCH=win32 WINEPREFIX=/root/wine-x86 \
        WINE=wine xvfb-run -a "${steps[@]}"
}

# Draws the portraits that the table is made of, with what goes with them: draw_portraits FOLDER
draw_portraits() {
    local folder=$1 zel=$ROOT/build/release/cli/zel name size seed words word settings
    while read -r name size seed words; do
        settings=()
        for word in $words; do settings+=(--set "$word"); done
        "$zel" portrait -o "$folder/$name.png" --faces "$folder/$name.json" --size "$size" --seed "$seed" \
            --truth "$folder/$name" --quiet "${settings[@]}" || fail "the portrait $name cannot be drawn"
    done <<'PORTRAITS'
p01 97x121 3 skinTone=porcelain moles=6 scratches=2 wrinkles=0.8 darkCircles=0.9
p02 161x203 11 skinTone=ebony moles=10 scratches=3 wrinkles=0.5 darkCircles=0.7
p03 241x320 7 skinTone=fair moles=12 scratches=3 wrinkles=0.7 darkCircles=0.8 freckles=0.4
p04 333x251 21 skinTone=olive moles=8 scratches=4 wrinkles=0.6 darkCircles=0.5 background=streetLights
p05 301x400 5 skinTone=tan moles=20 freckles=0.9 scratches=3 wrinkles=0.9 darkCircles=1 roll=12
p06 384x480 42 skinTone=beige moles=14 scratches=5 wrinkles=0.6 darkCircles=0.9 background=streetLights
p07 319x427 13 skinTone=brown moles=9 scratches=4 wrinkles=0.8 darkCircles=0.6 eyeOpen=0.3 yaw=15
p08 405x541 99 skinTone=fair moles=25 scratches=6 wrinkles=0.7 darkCircles=0.8 irisColour=paleBlue hairStyle=longWavy
p09 361x480 1234 skinTone=ebony moles=12 scratches=5 wrinkles=0.6 darkCircles=0.7 lightContrast=0.9
p10 450x600 77 skinTone=beige moles=30 scratches=8 wrinkles=0.9 darkCircles=0.9 hairStyle=curly
PORTRAITS
}

# What this machine makes of the portraits: the table, and the results of the clients and the command.
make_own_results() {
    local folder=$1 native=$ROOT/build/release
    mkdir -p -- "$folder/own"
    ZEL_ASSETS=$native/assets "$native/tests/windows/effectTable" "$folder/portraits" "$folder/own/table.txt" ||
        fail "the table cannot be made"
    # What the clients say would fill the screen.
    local log=$folder/own.log
    exec 3>&1 4>&2 >"$log" 2>&1
    # Depth of networks hangs on the processor where it has vectors of 512 bits; those under Wine do not use them.
    export OPENCV_CPU_DISABLE=AVX512-SKX
    "$native/tests/windows/openGlDefocus" "$folder/portraits/p10.png" "$folder/portraits/p10/depth.png" "$native/assets" \
        "$folder/own/openGlDefocus.ppm"
    "$native/examples/retouch" "$folder/portraits/p10.png" "$folder/own/retouch.ppm"
    "$native/cli/zel" apply auto-slim-face + nature-smooth "$folder/portraits/p10.png" -o "$folder/own/applied.png" --quiet \
        --faces "$folder/portraits/p10.json"
    "$native/cli/zel" depth "$folder/portraits/p10.png" -o "$folder/own/depth.png" --quiet --set subject=none
    unset OPENCV_CPU_DISABLE
    exec >&3 2>&4
}

# Builds are there: runs everything of one processor under Wine and compares. test_under_wine MACHINE
test_under_wine() {
    local machine=$1 folder=$ROOT/build/windows-test result failed=()
    # Made anew where this machine's build is younger.
    if [[ ! $folder/own/depth.png -nt $ROOT/build/release/libzel/libzel.so ]]; then
        say "Making this machine's results"
        rm -rf -- "$folder"
        mkdir -p -- "$folder/portraits"
        draw_portraits "$folder/portraits"
        make_own_results "$folder"
    fi
    say "Running what was built for $machine under Wine"
    rm -rf -- "${folder:?}/$machine"
    mkdir -- "$folder/$machine"
    mkdir -p -- "$ROOT/build/windows-$machine/assets/cascades"
    cp -- "$CASCADES/$CASCADE" "$ROOT/build/windows-$machine/assets/cascades/"
    cp -- "$ROOT/cmake/windows/zel_effects-$machine.def" "$folder/$machine/zel_effects.def"
    run_steps "$machine" "$folder" || failed+=("steps")
    for result in "$folder"/own/*; do
        result=${result##*/}
        cmp -- "$folder/own/$result" "$folder/$machine/$result" || failed+=("$result")
    done
    ((${#failed[@]} == 0)) || fail "$machine failed: ${failed[*]}"
    say "All of $machine is well: $(wc -l <"$folder/own/table.txt") lines of the table are this machine's"
}
