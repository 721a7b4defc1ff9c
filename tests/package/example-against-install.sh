#!/usr/bin/env bash
# Installs the build into a temporary prefix, builds the examples against the installed CMake
# package (core-host asking for the Core component with Qt out of reach, presenter-demo for
# everything) and runs them: the library is usable by a host that only has the package.
# Usage: example-against-install.sh BUILD-DIR SOURCE-DIR
set -euo pipefail
build_dir=$1
source_dir=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake --install "$build_dir" --prefix "$work/prefix" >/dev/null
# Every core header compiles without Qt, and every inline function in them, emitted whole, links
# against what the core library exports: whatever of them a host calls finds its symbols.
include=$work/prefix/include/KoQdDeConfig
(cd "$include" && find platform xml model store presenter rules host -name '*.h' -not -path 'host/ui/*' |
  sort | sed 's/.*/#include "&"/') >"$work/core-headers.cpp"
core=$(find "$work/prefix" -name libKoQdDeConfigCore.so)
"${CXX:-c++}" -std=c++20 -fPIC -shared -fkeep-inline-functions -I"$include" "$work/core-headers.cpp" \
  -o "$work/core-headers.so" "$core" -lpugixml -Wl,--no-undefined ||
  { echo "FAIL: the core headers need Qt or symbols the core library keeps" >&2; exit 1; }
configure() {
  cmake -S "$source_dir/examples/$1" -B "$work/$1" -G Ninja -DCMAKE_PREFIX_PATH="$work/prefix" \
    "${@:2}" >"$work/$1.log" 2>&1 || { cat "$work/$1.log" >&2; exit 1; }
  cmake --build "$work/$1" >>"$work/$1.log" 2>&1 || { cat "$work/$1.log" >&2; exit 1; }
}
configure core-host -DCMAKE_DISABLE_FIND_PACKAGE_Qt6=ON
configure presenter-demo
"$(dirname "$0")/run-examples.sh" "$work/core-host/core-host" "$work/presenter-demo/presenter-demo"
