#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installed tools run in any prefix, and what the demo builds can be installed.
#
# usage: installed_tools_test.sh BUILD-DIR
set -euo pipefail
build_dir=$1
work=$(mktemp -d "${TMPDIR:-/tmp}/installed-tools.XXXXXX")
trap 'rm -rf "$work"' EXIT
failed=0

fail() {
    printf 'FAILED: %s\n' "$*"
    failed=1
}

prefix="$work/an odd \$prefix/ü"
cmake --install "$build_dir" --prefix "$prefix" >"$work/log" || fail "$(cat "$work/log")"
mv "$prefix" "$work/moved"
for program in selector process-data-simulator; do
    for folder in "$work/moved" "$prefix"; do
        [[ $folder != "$prefix" ]] || mv "$work/moved" "$prefix"
        output=$(cd / && env -i "$folder/bin/$program" --version 2>&1) || fail "$program does not start: $output"
        [[ $output == "$program "* ]] || fail "$program --version printed: $output"
        [[ $folder != "$prefix" ]] || mv "$prefix" "$work/moved"
    done
    # Not from the build tree, which is there as well.
    if readelf -d "$work/moved/bin/$program" | grep -F "$build_dir"; then
        fail "$program names the build tree"
    fi
done

# What is installed from the build tree is made by the target that the demo builds.
grep -q '^ *build release installed ' "$(dirname "$0")/../../script/demo" || fail "the demo builds something else"
# The list of inputs leaves out those that it begins with.
for question in inputs query; do
    ninja -C "$build_dir" -t "$question" installed | sed 's/^ *//' >>"$work/inputs"
done
mapfile -t files < <(find "$build_dir" -name cmake_install.cmake -exec grep -hoE "FILES \"$build_dir/(bin|lib)/[^\"]+\"" {} + |
    sed 's/^FILES "//; s/"$//')
((${#files[@]} >= 4)) || fail "found only ${#files[@]} built files that are installed"
for file in "${files[@]}"; do
    grep -qxF -e "$file" -e "${file#"$build_dir"/}" "$work/inputs" || fail "the target installed does not make $file"
done
# A cross build may have none (docs/processors.md).
if grep -qF "$build_dir/tools/selector/man/" "$build_dir/tools/selector/cmake_install.cmake"; then
    grep -qx tools/selector/selector-man "$work/inputs" || fail "the target installed does not make the manual pages"
fi
exit "$failed"
