#!/usr/bin/env bash
# The desktop program on a current configuration that does not load: it keeps a dated copy
# before the workbench opens, and while it is open the tool refuses to edit the file (its save
# on close would overwrite the edit) unless forced. Run on an X server (run-under-xvfb.sh).
# usage: workbench-holds-file.sh KOQDDE SOURCE_DIR KOQDDE_WORKBENCH
source "$(dirname "$0")/common.sh"
workbench=$3
KC() { "$koqdde" --data "$work/pack" "$@"; }
current="$work/pack/profile/自动套配置/DefaultConfig.xml"
KC tree >/dev/null
printf '<自动套清单定额配置信息><给排水 name="给排水">' >"$current" # cut off
broken=$(sha256sum "$current" | cut -d' ' -f1)

"$workbench" --data "$work/pack" >"$work/wb.out" 2>"$work/wb.err" &
wb=$!
trap 'kill "$wb" 2>/dev/null || true; rm -rf "$work"' EXIT
# The copy is made before the program says so: wait for its words, then look for the copy.
for ((i = 0; i < 200; i++)); do
  ! grep -q "a copy is kept as" "$work/wb.err" || break
  sleep 0.1
done
grep -q "a copy is kept as" "$work/wb.err" ||
  fail "the program did not say where the copy is: $(cat "$work/wb.err")"
backup=$(ls "$current".*.bak 2>/dev/null | head -n 1 || true)
[ -n "$backup" ] || fail "no backup beside the file: $(cat "$work/wb.err")"
[ "$(sha256sum "$backup" | cut -d' ' -f1)" = "$broken" ] || fail "the backup differs from the file"

status=0
KC config add "$category" >/dev/null 2>"$work/edit.err" || status=$?
[ "$status" -eq 4 ] || fail "an edit while the workbench is open gave status $status"
grep -q "open in the workbench" "$work/edit.err" || fail "unclear refusal: $(cat "$work/edit.err")"
[ "$(sha256sum "$current" | cut -d' ' -f1)" = "$broken" ] || fail "the refused edit changed the file"

kill "$wb"
wait "$wb" 2>/dev/null || true
# Closed: the lock is gone, and what is left is the file that does not load.
status=0
KC config add "$category" >/dev/null 2>"$work/edit.err" || status=$?
[ "$status" -eq 4 ] && grep -q -- "--force" "$work/edit.err" || fail "an unloadable file was edited: $(cat "$work/edit.err")"
KC --force config add "$category" >/dev/null 2>&1 || fail "--force did not edit"
echo "backup kept, edit refused while open, accepted with --force after"
