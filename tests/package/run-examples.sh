#!/usr/bin/env bash
# Runs the example hosts as a user would: presenter-demo writes a configuration into a fresh
# folder and core-host reads it back; a folder that does not exist and one the module cannot
# write into end each with a message and status 1, never an abort; core-host needs no Qt.
# Usage: run-examples.sh CORE-HOST PRESENTER-DEMO
set -euo pipefail
core_host=$1
presenter_demo=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

mkdir "$work/config"
demo=$("$presenter_demo" "$work/config") || fail "presenter-demo on a fresh folder"
grep -qxF 'config 2: 材质＝镀锌钢管; | 031001001001 镀锌钢管' <<<"$demo" || fail "presenter-demo wrote: $demo"
read_back=$("$core_host" "$work/config") || fail "core-host on the demo's folder"
expected="$work/config/自动套配置/DefaultConfig.xml
给排水\\管道\\给水管
  #1 材质＝镀锌钢管;
    031001001001 镀锌钢管 m
  #2 其它
给排水\\管道\\排水管
  #1 其它"
[ "$read_back" = "$expected" ] || fail "core-host read: $read_back"

# A folder that isn't there, and one whose configuration subfolder is a file.
mkdir "$work/blocked" && touch "$work/blocked/自动套配置"
for program in "$core_host" "$presenter_demo"; do
  name=$(basename "$program")
  for case in "missing|does not exist" "blocked|cannot write .*HRESULT 0x80004005"; do
    folder=$work/${case%%|*}
    status=0
    "$program" "$folder" >/dev/null 2>"$work/err" || status=$?
    [ "$status" -eq 1 ] || fail "$name $folder: status $status, $(cat "$work/err")"
    grep -q "^$name: .*${case#*|}" "$work/err" || fail "$name $folder said: $(cat "$work/err")"
  done
done

# No Qt library, asked for directly or through the core library.
needed=$(readelf -d "$core_host" | grep NEEDED)
if grep -qi qt <<<"$needed"; then fail "core-host links Qt"; fi
grep -q 'libKoQdDeConfigCore\.so' <<<"$needed" ||
  fail "core-host does not link the core library"
loads=$(ldd "$core_host")
if grep -qi 'libQt' <<<"$loads"; then fail "core-host loads Qt: $loads"; fi
echo "examples: all checks passed"
