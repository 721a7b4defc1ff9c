#!/usr/bin/env bash
# Times `koqdde apply` of a component list on the workload W: 100,000 components (N in the
# environment changes it) made by scripts/make-component-list.py from W's catalog, written as
# a CSV bill. The time includes opening W's 52 MB configuration. Writes nothing into the
# sources; W is generated into BUILD/bench-data when missing, as bench/xml-layer.sh does.
#
#   bench/apply.sh [BUILD]    (default: build)
set -euo pipefail
ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD=$(cd "${1:-$ROOT/build}" && pwd)
ROWS=${N:-100000}
KOQDDE=$BUILD/apps/koqdde
DATA=$BUILD/bench-data
W=$DATA/W-1
WORK=$(mktemp -d)
trap 'rm -rf "$WORK"' EXIT

command -v hyperfine >/dev/null || { echo "hyperfine is needed (apt-get install hyperfine)" >&2; exit 1; }
ninja -C "$BUILD" koqdde >/dev/null
if [ ! -f "$W/generated.txt" ]; then
    rm -rf "$W.tmp"
    python3 "$ROOT/bench/workload/generate.py" "$W.tmp" --scale 1 >"$WORK/generated.txt"
    head -1 "$WORK/generated.txt" >"$W.tmp/generated.txt"
    mv "$W.tmp" "$W"
fi
cp "$W/profile/自动套配置/DefaultConfig.xml" "$WORK/W.xml"
python3 "$ROOT/scripts/make-component-list.py" "$W" "$ROWS" "$WORK/components.csv"

# Check the run before timing it: every row counted, none refused.
"$KOQDDE" --data "$W" --file "$WORK/W.xml" apply "$WORK/components.csv" -o "$WORK/check.csv" |
    tee "$WORK/summary.txt"
grep -q "from $ROWS component(s)" "$WORK/summary.txt"
grep -q " 0 problem(s)" "$WORK/summary.txt"

hyperfine --warmup 1 --runs 10 --prepare "rm -f '$WORK/bill.csv'" \
    --export-json "$DATA/hyperfine-apply.json" \
    "'$KOQDDE' --data '$W' --file '$WORK/W.xml' apply '$WORK/components.csv' -o '$WORK/bill.csv'"
