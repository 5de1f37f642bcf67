# Shared by the scripts in this folder, which source it.
# shellcheck shell=bash

SCRIPTS=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")" && pwd)
ROOT=$(dirname -- "$SCRIPTS")

say() { printf '\n== %s\n' "$*"; }

fail() {
    printf '%s: %s\n' "${0##*/}" "$*" >&2
    exit 1
}

# Wrong usage: says so and where to read more.
refuse() {
    printf '%s: %s (see %s --help)\n' "${0##*/}" "$1" "${0##*/}" >&2
    exit 2
}

# Puts the networks for faces and persons where the build of a preset looks for them: provide_networks PRESET
# Everything works without them, so that what keeps them away is told and no more.
provide_networks() {
    local first=$ROOT/build/release place=$ROOT/build/$1/assets/networks why
    if [[ $1 != release ]]; then
        leave_out_networks "$1"
        [[ ! -d $first/assets/networks ]] || { mkdir -p -- "${place%/*}" && ln -s -- ../../release/assets/networks "$place"; }
        return
    fi
    { why=$("$SCRIPTS/networks" --into "$place" --sources "$first/networkSources" 2>&1 >&3); } 3>&1 ||
        say "Going on without the networks for faces and persons: ${why##*networks: }"
}

# Takes them away from there: leave_out_networks PRESET
leave_out_networks() { rm -rf -- "$ROOT/build/$1/assets/networks"; }

# Unpacks an npm package into a new folder: unpack_npm PACKAGE VERSION FOLDER
unpack_npm() {
    mkdir -- "$3"
    (cd -- "$3" && npm pack --silent --prefer-offline --fetch-retries 1 --fetch-retry-mintimeout 1000 \
        --fetch-timeout 60000 "$1@$2" && tar -xzf ./*.tgz --strip-components=1) </dev/null >/dev/null 2>&1 ||
        fail "the npm package $1 $2 cannot be fetched; is the network within reach?"
}

# Configures and builds a preset: build_preset NAME [TARGET...]
build_preset() {
    local preset=$1
    shift
    cd -- "$ROOT" || return
    cmake --preset "$preset" >/dev/null || fail "configuring the $preset preset failed"
    local targets=()
    (($# == 0)) || targets=(--target "$@")
    cmake --build --preset "$preset" --parallel "$(nproc)" "${targets[@]}" ||
        fail "building the $preset preset failed"
}
