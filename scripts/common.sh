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
