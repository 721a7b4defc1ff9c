#!/usr/bin/env bash
# Writes the templates of the bundled pack's cloud disk (data/sample/cloud/自动套模板) with the
# command-line tool, on a copy of the pack, so that they are files the module itself wrote.
# Run it again after a change of the file format or of the sample libraries.
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD:-$root/build}
out="$root/data/sample/cloud/自动套模板"
ninja -C "$build" -j"${JOBS:-2}" koqdde

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp -r "$root/data/sample" "$work/pack"
rm -rf "$work/pack/cloud"
bill='{6B1E2F40-3C7A-4D19-9E25-0A8F4C61D2B7}'
quota='{A3D95C12-7E48-4B06-8F1C-5D2E90B7A4E3}'

template() { # name, then the edits as one function
  local name=$1
  # new makes files in the configuration folder only.
  local file="$work/config/自动套配置/$name.xml"
  opts=(--data "$work/pack" --config-dir "$work/config" --file "$file")
  "$build/apps/koqdde" --data "$work/pack" --config-dir "$work/config" new "$file" >/dev/null
  "$2"
  mkdir -p "$out"
  cp "$file" "$out/$name.xml"
}
cli() { "$build/apps/koqdde" "${opts[@]}" "$@" >/dev/null; }

residential() {
  local pipe='管道\给水管' drain='管道\排水管'
  cli config add "$pipe"
  cli condition add "$pipe" 2 --attr 材质 --eq 镀锌钢管
  cli qd add "$pipe" 2 --number 031001001001 --name 镀锌钢管 --unit m --unit-code 1 \
    --code "$bill" --formula L --annex 是
  cli de add "$pipe" 2 --qd 1 --number 10-1-2 --name '室内镀锌钢管螺纹连接 DN25' --unit 10m \
    --unit-code 10 --code "$quota" --formula L --annex 是
  cli config add "$pipe"
  cli condition add "$pipe" 3 --attr 材质 --eq PP-R管
  cli qd add "$pipe" 3 --number 031001006001 --name 塑料管 --unit m --unit-code 1 \
    --code "$bill" --formula L --annex 是
  cli config add "$drain"
  cli condition add "$drain" 2 --attr 材质 --eq PVC-U管
  cli qd add "$drain" 2 --number 031001006002 --name 塑料管 --unit m --unit-code 1 \
    --code "$bill" --formula L --annex 是
}

valves() {
  local pipe='管道\给水管'
  cli config add "$pipe"
  cli condition add "$pipe" 2 --attr '管径(mm)' --gt 50 --le 100
  cli qd add "$pipe" 2 --number 031001002001 --name 钢管 --unit m --unit-code 1 \
    --code "$bill" --formula L --annex 是
  cli de add "$pipe" 2 --qd 1 --number 10-1-6 --name '室内焊接钢管螺纹连接 DN50' --unit 10m \
    --unit-code 10 --code "$quota" --formula L --annex 是
}

template 住宅给排水 residential
template 大管径钢管 valves
echo "wrote $out"
