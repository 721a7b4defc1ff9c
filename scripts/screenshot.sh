#!/usr/bin/env bash
# Renders the workbench on a copy of the bundled pack into docs/workbench.png (or the file
# given as the first argument), then the workbench with the bill picker beside it into
# docs/workbench-picker.png and the bill number dialog that a pick opens into
# docs/bill-number.png (beside the first file). Two configurations of 给排水\管道\给水管 are
# written first through the command-line tool, so that the pictures show conditions and
# items. Then a few rules that do not do what they seem to are added, and the rule check
# (docs/lint-panel.png) and the trial window (docs/trial.png) are rendered beside the
# workbench. Nothing is written into the source tree but the pictures.
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD:-$root/build}
out=${1:-$root/docs/workbench.png}
case "$out" in /*) ;; *) out="$PWD/$out" ;; esac

if [ ! -f "$build/build.ninja" ]; then
  cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
fi
ninja -C "$build" -j"${JOBS:-2}" koqdde koqdde-workbench

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp -r "$root/data/sample" "$work/pack"
opts=(--data "$work/pack" --config-dir "$work/config")
cli() { "$build/apps/koqdde" "${opts[@]}" "$@" >/dev/null; }

bill='{6B1E2F40-3C7A-4D19-9E25-0A8F4C61D2B7}'
quota='{A3D95C12-7E48-4B06-8F1C-5D2E90B7A4E3}'
pipe='管道\给水管'

cli config add "$pipe"
cli condition add "$pipe" 2 --attr 材质 --eq 镀锌钢管
cli condition add "$pipe" 2 --attr '管径(mm)' --gt 50 --le 100
cli qd add "$pipe" 2 --number 031001001001 --name 镀锌钢管 --unit m --unit-code 1 \
  --code "$bill" --formula L --annex 是
cli de add "$pipe" 2 --qd 1 --number 10-1-15 --name '镀锌钢管螺纹连接 DN65' --unit 10m \
  --unit-code 10 --code "$quota" --formula L --annex 是
cli de add "$pipe" 2 --qd 1 --number 10-11-42 --name '管道消毒、冲洗 DN100以内' --unit 100m \
  --unit-code 100 --code "$quota" --formula L --annex 否
cli qd add "$pipe" 2 --number 031002001001 --name 管道支架 --unit 千克 --unit-code 1 \
  --code "$bill" --formula 'L*1.2' --annex 否

cli config add "$pipe"
cli condition add "$pipe" 3 --attr 材质 --eq PP-R管
cli qd add "$pipe" 3 --number 031001006001 --name 塑料管 --unit m --unit-code 1 \
  --code "$bill" --formula L --annex 是

QT_QPA_PLATFORM=offscreen "$build/apps/koqdde-workbench" "${opts[@]}" --screenshot "$out"
echo "wrote $out"
docs=$(dirname "$out")
QT_QPA_PLATFORM=offscreen "$build/apps/koqdde-workbench" "${opts[@]}" \
  --screenshot "$docs/workbench-picker.png" --picker --pick-bill "$docs/bill-number.png"
echo "wrote $docs/workbench-picker.png and $docs/bill-number.png"

# #3 takes every galvanised pipe, so #4 below it never matches and gives nothing besides;
# 排水管's first configuration tests nothing.
cli config add "$pipe"
cli condition add "$pipe" 4 --attr 材质 --eq 镀锌钢管
cli qd add "$pipe" 4 --number 031001001002 --name 镀锌钢管 --unit m --unit-code 1 \
  --code "$bill" --formula L --annex 是
cli de add "$pipe" 4 --qd 1 --number 10-1-4 --name '室内镀锌钢管螺纹连接 DN100' --unit 10m \
  --unit-code 10 --code "$quota" --formula L --annex 是
cli config add "$pipe"
cli condition add "$pipe" 5 --attr 材质 --eq 镀锌钢管
cli condition add "$pipe" 5 --attr '管径(mm)' --gt 100
cli config add '管道\排水管'
QT_QPA_PLATFORM=offscreen "$build/apps/koqdde-workbench" "${opts[@]}" --lint \
  --screenshot "$docs/lint-panel.png"
QT_QPA_PLATFORM=offscreen "$build/apps/koqdde-workbench" "${opts[@]}" --trial \
  --set 材质=镀锌钢管 --set '管径(mm)=120' --screenshot "$docs/trial.png"
echo "wrote $docs/lint-panel.png and $docs/trial.png"
