#!/usr/bin/env bash
# Installs the library into a temporary prefix, builds the example against the installed
# CMake package, and runs it: the library is usable by a host that only has the package.
set -euo pipefail
build_dir=$1
source_dir=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake --install "$build_dir" --prefix "$work/prefix" >/dev/null
cmake -S "$source_dir/examples/presenter-demo" -B "$work/build" -G Ninja \
  -DCMAKE_PREFIX_PATH="$work/prefix" >/dev/null
cmake --build "$work/build" >/dev/null
mkdir -p "$work/run"
output=$("$work/build/presenter-demo" "$work/run")
echo "$output"
grep -q '其它' <<<"$output"
grep -q '材质＝镀锌钢管;' <<<"$output"
grep -q '031001001001 镀锌钢管' <<<"$output"
echo "1 passed, 0 failed"
