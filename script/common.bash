# SPDX-License-Identifier: MIT
# What the scripts of this directory share; sourced, never run.
# shellcheck shell=bash

# shellcheck disable=SC2034 # the sourcing scripts use it
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

say() {
    printf '==> %s\n' "$*"
}

fail() {
    printf '%s: %s\n' "${0##*/}" "$*" >&2
    exit 1
}

# The comment block at the head of the calling script is its help text.
print_help() {
    awk 'NR > 2 { if (!/^#/) { exit } sub(/^# ?/, ""); print }' "$0"
}

wrong_usage() {
    printf '%s: %s\nTry %s --help\n' "${0##*/}" "$*" "$0" >&2
    exit 2
}

# configure PRESET: makes or refreshes build/PRESET, with ccache where there is one.
configure() {
    local preset=$1
    shift
    if command -v ccache >/dev/null; then
        # Beside the build trees: the home directory may be read-only.
        export CCACHE_DIR=${CCACHE_DIR:-$root/.cache/ccache}
        export CMAKE_CXX_COMPILER_LAUNCHER=ccache
        # Else ccache takes no file that uses a precompiled header.
        export CCACHE_SLOPPINESS=${CCACHE_SLOPPINESS:-pch_defines,time_macros,include_file_mtime,include_file_ctime}
    fi
    say "configuring build/$preset"
    (cd "$root" && cmake --preset "$preset" "$@" >"$(configure_log "$preset")") || {
        cat "$(configure_log "$preset")" >&2
        fail "cmake could not configure build/$preset"
    }
}

configure_log() {
    mkdir -p "$root/build/$1"
    printf '%s/build/%s/configure.log' "$root" "$1"
}

# build PRESET [TARGET…]: two jobs, the size of the machines that this is checked on; JOBS overrides.
build() {
    local preset=$1
    shift
    say "building build/$preset"
    cmake --build "$root/build/$preset" --parallel "${JOBS:-2}" ${1:+--target "$@"}
}
