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

# One configuration of a small category: its conditions (ATTR=VALUE, joined by ";"), then
# its bill (number, name, unit, unit code, formula) and the quota under it (the same fields).
rule() {
  local category=$1 conditions=$2 number=$3 name=$4 unit=$5 ucode=$6 formula=$7
  local id
  id=$("$build/apps/koqdde" "${opts[@]}" config add "$category")
  local condition
  IFS=';' read -ra condition <<<"$conditions"
  for c in "${condition[@]}"; do
    cli condition add "$category" "$id" --attr "${c%%=*}" --eq "${c#*=}"
  done
  cli qd add "$category" "$id" --number "$number" --name "$name" --unit "$unit" \
    --unit-code "$ucode" --code "$bill" --formula "$formula" --annex 是
  shift 7
  if [ $# -gt 0 ]; then
    cli de add "$category" "$id" --qd 1 --number "$1" --name "$2" --unit "$3" \
      --unit-code "$4" --code "$quota" --formula "$5" --annex 是
  fi
}

# A residential building's plumbing: pipes by material, valves by connection, the meter and
# the fixtures by type. What it leaves to the default shows in `koqdde apply`'s list.
residential() {
  local supply='管道\给水管' drain='管道\排水管' hot='管道\热水管'
  rule "$supply" '材质=钢塑复合管' 031001007001 复合管 m 1 L 10-1-20 '室内钢塑复合管螺纹连接 DN25' 10m 10 L
  rule "$supply" '材质=PP-R管' 031001006001 塑料管 m 1 L 10-1-16 '室内塑料给水管热熔连接 De20' 10m 10 L
  rule "$supply" '材质=薄壁不锈钢管' 031001003001 不锈钢管 m 1 L 10-1-8 '室内薄壁不锈钢管卡压连接 DN20' 10m 10 L
  rule "$supply" '材质=镀锌钢管' 031001001001 镀锌钢管 m 1 L 10-1-2 '室内镀锌钢管螺纹连接 DN25' 10m 10 L
  rule "$drain" '材质=PVC-U排水管' 031001006002 塑料管 m 1 L 10-1-18 '室内塑料排水管粘接 De50' 10m 10 L
  rule "$drain" '材质=PVC-U螺旋消音管' 031001006002 塑料管 m 1 L 10-1-19 '室内塑料排水管粘接 De110' 10m 10 L
  rule "$drain" '材质=柔性铸铁排水管' 031001005001 铸铁管 m 1 L 10-1-14 '室内柔性铸铁排水管卡箍连接 DN100' 10m 10 L
  rule "$hot" '材质=PP-R管' 031001006003 塑料管 m 1 L 10-1-17 '室内塑料给水管热熔连接 De32' 10m 10 L
  rule "$hot" '材质=薄壁不锈钢管' 031001003002 不锈钢管 m 1 L 10-1-9 '室内薄壁不锈钢管卡压连接 DN50' 10m 10 L
  rule "$hot" '材质=铜管' 031001004001 铜管 m 1 L 10-1-12 '室内铜管钎焊 DN25' 10m 10 L
  rule '管道\雨水管' '材质=PVC-U排水管' 031001006004 塑料管 m 1 L 10-1-19 '室内塑料排水管粘接 De110' 10m 10 L
  rule '管道\雨水管' '材质=镀锌钢管' 031001001002 镀锌钢管 m 1 L 10-1-3 '室内镀锌钢管螺纹连接 DN50' 10m 10 L
  rule '管道\压力排水管' '材质=镀锌钢管' 031001001003 镀锌钢管 m 1 L 10-1-4 '室内镀锌钢管螺纹连接 DN100' 10m 10 L
  rule '管道\压力排水管' '材质=钢塑复合管' 031001007002 复合管 m 1 L 10-1-22 '室内衬塑钢管沟槽连接 DN100' 10m 10 L
  rule '阀门法兰\阀门' '连接方式=螺纹连接' 031003001001 螺纹阀门 个 1 N 10-3-1 '螺纹阀门安装 DN20' 个 1 N
  rule '阀门法兰\阀门' '连接方式=法兰连接' 031003003001 焊接法兰阀门 个 1 N 10-3-4 '焊接法兰阀门安装 DN100' 个 1 N
  rule '阀门法兰\水表' '连接方式=螺纹连接' 031003013001 水表 组 1 N 10-3-14 '螺纹水表组成安装 DN20' 组 1 N
  rule '卫生器具\大便器' '类型=坐式大便器' 031004006001 大便器 组 1 N 10-4-7 '坐式大便器安装 连体水箱' 10组 10 N
  rule '卫生器具\大便器' '类型=蹲式大便器' 031004006002 大便器 组 1 N 10-4-8 '蹲式大便器安装 延时自闭阀' 10组 10 N
  rule '卫生器具\小便器' '类型=挂式小便器' 031004007001 小便器 组 1 N 10-4-9 '壁挂式小便器安装 感应冲洗阀' 10组 10 N
  rule '卫生器具\洗脸盆' '类型=台上盆' 031004003001 洗脸盆 组 1 N 10-4-3 '台式洗脸盆安装 冷热水' 10组 10 N
  rule '卫生器具\洗脸盆' '类型=立柱盆' 031004003002 洗脸盆 组 1 N 10-4-4 '立柱式洗脸盆安装 冷水' 10组 10 N
  rule '卫生器具\洗涤盆' '类型=单槽洗涤盆' 031004004001 洗涤盆 组 1 N 10-4-5 '单槽洗涤盆安装' 10组 10 N
  rule '卫生器具\洗涤盆' '类型=拖布池' 031004004002 洗涤盆 组 1 N 10-4-10 '拖布池安装' 10组 10 N
}

# Large welded steel supply pipes, one configuration per size: the sizes are words (DN100), so
# a range cannot pick them.
valves() {
  local pipe='管道\给水管'
  for size in DN100 DN150 DN200; do
    rule "$pipe" "材质=焊接钢管;管径(mm)=$size" 031001002001 钢管 m 1 L 10-1-7 "室内钢管电弧焊 DN100" 10m 10 L
  done
}

template 住宅给排水 residential
template 大管径钢管 valves
echo "wrote $out"
