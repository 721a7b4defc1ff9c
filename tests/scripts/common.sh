# Shared by the scripts that run koqdde on a copy of the bundled pack: a work folder removed at
# the end, a large configuration (a bulky second specialty the edits must keep), and `K` to
# run the tool on it.
set -euo pipefail
koqdde=$1
source_dir=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp -r "$source_dir/data/sample" "$work/pack"
file="$work/config.xml"
category='管道\给水管'

K() { "$koqdde" --data "$work/pack" --file "$file" "$@"; }
fail() {
  echo "FAIL: $*" >&2
  exit 1
}
configs() { grep -a -c -E '<[Cc]onfig id=' "$file" || true; }
digest() { sha256sum "$file" | cut -d' ' -f1; }

# About 4 MB: a save then takes long enough for a kill to land in it.
make_large_config() {
  K tree >/dev/null
  local root_close='</自动套清单定额配置信息>' note i
  note=$(printf '说明%.0s' $(seq 1 20))
  {
    head -n -1 "$file"
    printf '  <电气 id="3" name="电气">\n'
    for ((i = 1; i <= 20000; i++)); do
      printf '    <LMember id="%d" name="大类%d"><SMember name="小类%d" note="%s"/></LMember>\n' \
        "$i" "$i" "$i" "$note"
    done
    printf '  </电气>\n%s\n' "$root_close"
  } >"$work/large.xml"
  mv "$work/large.xml" "$file"
  K tree >/dev/null || fail "the large configuration does not load"
}
