#!/usr/bin/env bash
# The Chinese catalogue is complete: every text the programs mark for translation has a
# translation that is not fuzzy and keeps each {N} placeholder of its original.
set -euo pipefail
source_dir=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

xgettext --language=C++ --from-code=UTF-8 --keyword=Tr --keyword=TrNoop --no-location \
  -o "$work/koqdde.pot" "$source_dir"/apps/cli/*.cpp "$source_dir"/apps/common/*.cpp \
  "$source_dir"/apps/workbench/*.cpp
msgmerge --quiet --no-fuzzy-matching -o "$work/zh_CN.po" "$source_dir/po/zh_CN.po" "$work/koqdde.pot"

missing=$(msgattrib --untranslated --no-obsolete "$work/zh_CN.po" | grep -A3 '^msgid' || true)
fuzzy=$(msgattrib --only-fuzzy --no-obsolete "$work/zh_CN.po" | grep -A3 '^msgid' || true)
if [ -n "$missing$fuzzy" ]; then
  echo "FAIL: po/zh_CN.po lacks these (ninja koqdde-pot, then msgmerge and translate):" >&2
  printf '%s\n%s\n' "$missing" "$fuzzy" >&2
  exit 1
fi

# A translation that drops or invents a placeholder prints the wrong value.
msgattrib --no-obsolete --no-wrap "$work/zh_CN.po" | awk '
  function holders(text, set,   n) {
    n = 0
    while (match(text, /\{[0-9]+\}/)) {
      set[substr(text, RSTART, RLENGTH)] = 1
      text = substr(text, RSTART + RLENGTH)
      n++
    }
    return n
  }
  function check(   a, b, k) {
    if (id == "") return
    split("", a); split("", b)
    holders(id, a); holders(str, b)
    for (k in a) if (!(k in b)) { print "FAIL: " k " dropped from: " id; bad = 1 }
    for (k in b) if (!(k in a)) { print "FAIL: " k " invented in: " id; bad = 1 }
  }
  /^msgid / { check(); id = substr($0, 7); str = ""; mode = "id"; next }
  /^msgstr / { str = substr($0, 8); mode = "str"; next }
  /^"/ { if (mode == "id") id = id $0; else if (mode == "str") str = str $0; next }
  END { check(); exit bad }
' >&2
echo "po/zh_CN.po: complete"
