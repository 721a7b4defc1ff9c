#!/usr/bin/env bash
# The configuration file's open and edit through koqdde on workload W, timed side by side with
# XML baselines that do less: expat's well-formedness check, pugixml's parse, pugixml's parse,
# set and save, and lxml's parse, set and write. Prints medians, the ratios between them and
# peak memory against the file's size; writes the numbers to BUILD/bench-data/results.json.
# The commands on W run in rounds, each round all of them three times over, and each ratio is
# the median of the ratios within rounds: a machine that slows down for a while (another
# program's disk writes, a neighbour on the host) then slows both sides of a ratio alike.
#
#   bench/xml-layer.sh [--scaling] [--rounds N] [--no-build] [BUILD]
#
# --scaling  also times open and edit on W/4, W/2 and 2W, to show how they grow with the file.
# --rounds N rounds on W (at least 5; 10 by default).
# --no-build use the programs already in BUILD.
# BUILD      the CMake build folder (default: build); NINJA in the environment replaces the
#            ninja command.
#
# W and its scaled siblings are written once into BUILD/bench-data (again when the generator
# changes). Installs hyperfine, python3-lxml and time with apt-get when they are missing.
set -euo pipefail

ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
SCALING=0
ROUNDS=10
BUILD_PROGRAMS=1
BUILD=""
while [ $# -gt 0 ]; do
    case "$1" in
    --scaling) SCALING=1 ;;
    --rounds)
        ROUNDS=${2:?--rounds needs a number}
        shift
        ;;
    --no-build) BUILD_PROGRAMS=0 ;;
    -h | --help)
        sed -n '2,20p' "$0" | sed 's/^# \{0,1\}//'
        exit 0
        ;;
    -*)
        echo "xml-layer.sh: unknown option $1" >&2
        exit 2
        ;;
    *) BUILD=$1 ;;
    esac
    shift
done
if ! [[ $ROUNDS =~ ^[0-9]+$ ]] || [ "$ROUNDS" -lt 5 ]; then
    echo "xml-layer.sh: --rounds takes a number of at least 5" >&2
    exit 2
fi
BUILD=${BUILD:-$ROOT/build}
mkdir -p "$BUILD"
BUILD=$(cd "$BUILD" && pwd)
DATA=$BUILD/bench-data
WORK=$DATA/work
NINJA=${NINJA:-ninja}
PYTHON=/usr/bin/python3

say() { printf '\n== %s\n' "$*"; }

# --- Tools -----------------------------------------------------------------------------------
missing=()
command -v hyperfine >/dev/null || missing+=(hyperfine)
"$PYTHON" -c 'import lxml' 2>/dev/null || missing+=(python3-lxml)
[ -x /usr/bin/time ] || missing+=(time)
if [ ${#missing[@]} -gt 0 ]; then
    if [ "$(id -u)" -ne 0 ]; then
        echo "xml-layer.sh: missing ${missing[*]}; run: sudo apt-get install ${missing[*]}" >&2
        exit 1
    fi
    say "installing ${missing[*]}"
    apt-get update -qq
    DEBIAN_FRONTEND=noninteractive apt-get install -y -qq "${missing[@]}" >/dev/null
fi

# --- Programs --------------------------------------------------------------------------------
KOQDDE=$BUILD/apps/koqdde
BASELINES=$BUILD/bench
if [ $BUILD_PROGRAMS -eq 1 ]; then
    say "building koqdde and the baselines in $BUILD"
    if [ ! -f "$BUILD/build.ninja" ]; then
        cmake -S "$ROOT" -B "$BUILD" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
    fi
    $NINJA -C "$BUILD" koqdde bench-pugixml-parse bench-pugixml-edit bench-expat-check
fi
for program in "$KOQDDE" "$BASELINES/bench-pugixml-parse" "$BASELINES/bench-pugixml-edit" \
    "$BASELINES/bench-expat-check"; do
    [ -x "$program" ] || {
        echo "xml-layer.sh: $program is missing (build it, or drop --no-build)" >&2
        exit 1
    }
done

# --- Workloads -------------------------------------------------------------------------------
SCALES=(1)
[ $SCALING -eq 1 ] && SCALES=(0.25 0.5 1 2)
GENERATOR=$ROOT/bench/workload/generate.py
pack() { echo "$DATA/W-$1"; }
config_file() { echo "$(pack "$1")/profile/自动套配置/DefaultConfig.xml"; }
for scale in "${SCALES[@]}"; do
    dir=$(pack "$scale")
    stamp=$dir/generated.txt
    if [ -f "$stamp" ] && [ "$stamp" -nt "$GENERATOR" ] &&
        [ "$stamp" -nt "$ROOT/bench/workload/domain.py" ]; then
        continue
    fi
    say "generating W at scale $scale into $dir"
    # Into a sibling first, so an interrupted run leaves no half workload behind.
    rm -rf "$dir.tmp" "$dir"
    summary=$("$PYTHON" "$GENERATOR" "$dir.tmp" --scale "$scale")
    printf '%s\n' "${summary%%$'\n'*}" | tee "$dir.tmp/generated.txt"
    mv "$dir.tmp" "$dir"
done
mkdir -p "$WORK"

# The edit every tool makes: the formula of bill item 2 in configuration 10 of 给排水\管道\给水管,
# a category every scale has.
CATEGORY='给排水\管道\给水管'
CONFIG_ID=10
QD_ID=2
FORMULA='L*1.05'

# Single-quoted for the shell hyperfine runs commands in.
q() { printf "'%s'" "${1//\'/\'\\\'\'}"; }
koqdde_cmd() { # SCALE FILE
    echo "$(q "$KOQDDE") --data $(q "$(pack "$1")") --file $(q "$2")"
}
open_cmd() { echo "$(koqdde_cmd "$1" "$(config_file "$1")") show $(q "$CATEGORY")"; }
edit_cmd() { # SCALE FILE
    echo "$(koqdde_cmd "$1" "$2") qd reset $(q "$CATEGORY") $CONFIG_ID $QD_ID" \
        "--formula $(q "$FORMULA")"
}
restore_cmd() { echo "cp $(q "$(config_file "$1")") $(q "$2")"; }

# An edit that is refused or lands elsewhere would be timed as fast as it is wrong. koqdde's
# edit must change exactly the line of that bill item and read back; each baseline's file must
# then hold that same line once (their XML declarations and empty-element spelling differ).
EXPECTED_LINE=""
fail() {
    echo "xml-layer.sh: $*" >&2
    exit 1
}
check_edits() { # SCALE
    local scale=$1 file=$WORK/check.xml original changed formula
    original=$(config_file "$scale")
    cp "$original" "$file"
    sh -c "$(edit_cmd "$scale" "$file")"
    changed=$(diff "$original" "$file" | grep '^[<>]' || true)
    EXPECTED_LINE=$(grep '^>' <<<"$changed" | sed 's/^> *//' || true)
    if [ "$(grep -c '^[<>]' <<<"$changed")" -ne 2 ] ||
        ! grep -qF "<qd id=\"$QD_ID\" " <<<"$EXPECTED_LINE" ||
        ! grep -qF "strFormula=\"$FORMULA\"" <<<"$EXPECTED_LINE"; then
        fail "koqdde's edit at scale $scale did not change just the one bill item:" $'\n'"$changed"
    fi
    formula=$("$KOQDDE" --json --data "$(pack "$scale")" --file "$file" show "$CATEGORY" |
        "$PYTHON" -c 'import json, sys
config, qd = int(sys.argv[1]), int(sys.argv[2])
print(*[q["strFormula"] for c in json.load(sys.stdin)["configs"] if c["id"] == config
        for q in c["qd"] if q["id"] == qd])' "$CONFIG_ID" "$QD_ID")
    [ "$formula" = "$FORMULA" ] || fail "koqdde reads its edit back as \"$formula\""
}
check_baseline() { # NAME FILE
    local lines
    lines=$(grep -F "strFormula=\"$FORMULA\"" "$2" | sed 's/^ *//' || true)
    [ "$lines" = "$EXPECTED_LINE" ] || fail "the $1 edit does not match koqdde's: $lines"
}

# Peak resident memory in KiB, the median of three runs, each after its preparation.
peak_kib() { # PREPARE COMMAND
    local i out=$WORK/rss samples=()
    for i in 1 2 3; do
        sh -c "$1"
        /usr/bin/time -f %M -o "$out" sh -c "exec $2" >/dev/null
        samples+=("$(tail -1 "$out")")
    done
    printf '%s\n' "${samples[@]}" | sort -n | sed -n 2p
}

HF=(hyperfine --style basic --warmup 2 --min-runs 10)
MEMORY=$WORK/memory.txt
: >"$MEMORY"

# --- W: koqdde beside the baselines ----------------------------------------------------------
say "checking the edits on W"
check_edits 1
W=$(config_file 1)
cp "$W" "$WORK/check.xml"
"$BASELINES/bench-pugixml-edit" "$WORK/check.xml"
check_baseline pugixml "$WORK/check.xml"
cp "$W" "$WORK/check.xml"
"$PYTHON" "$ROOT/bench/lxml_edit.py" "$WORK/check.xml"
check_baseline lxml "$WORK/check.xml"
"$BASELINES/bench-expat-check" "$W"

# The commands side by side: name, preparation before each run, command. The edits each get a
# fresh copy of W before every run, so each run makes the same change.
NAMES=(open edit expat-check pugixml-parse pugixml-edit lxml-edit)
PREPARES=(true "$(restore_cmd 1 "$WORK/edit-koqdde.xml")" true true
    "$(restore_cmd 1 "$WORK/edit-pugixml.xml")" "$(restore_cmd 1 "$WORK/edit-lxml.xml")")
COMMANDS=("$(open_cmd 1)" "$(edit_cmd 1 "$WORK/edit-koqdde.xml")"
    "$(q "$BASELINES/bench-expat-check") $(q "$W")"
    "$(q "$BASELINES/bench-pugixml-parse") $(q "$W")"
    "$(q "$BASELINES/bench-pugixml-edit") $(q "$WORK/edit-pugixml.xml")"
    "$PYTHON $(q "$ROOT/bench/lxml_edit.py") $(q "$WORK/edit-lxml.xml")")
args=()
for i in "${!NAMES[@]}"; do
    args+=(-n "${NAMES[$i]}" -p "${PREPARES[$i]}" "${COMMANDS[$i]}")
done
say "timing W in $ROUNDS rounds ($(cat "$(pack 1)/generated.txt"))"
rm -f "$DATA"/hyperfine-W-round-*.json
for round in $(seq "$ROUNDS"); do
    printf ' %s' "$round"
    # Quiet: three runs a round draw hyperfine's warning about outliers every time.
    hyperfine --style none --warmup 1 --runs 3 \
        --export-json "$DATA/hyperfine-W-round-$round.json" "${args[@]}" \
        >/dev/null 2>"$WORK/hyperfine.err" || {
        cat "$WORK/hyperfine.err" >&2
        exit 1
    }
done
echo

say "peak memory on W"
for i in "${!NAMES[@]}"; do
    echo "1 ${NAMES[$i]} $(peak_kib "${PREPARES[$i]}" "${COMMANDS[$i]}")" >>"$MEMORY"
done

# --- Scaling ---------------------------------------------------------------------------------
if [ $SCALING -eq 1 ]; then
    for scale in 0.25 0.5 2; do
        say "timing open and edit at scale $scale ($(cat "$(pack "$scale")/generated.txt"))"
        check_edits "$scale"
        E=$WORK/edit-$scale.xml
        "${HF[@]}" --export-json "$DATA/hyperfine-W-$scale.json" \
            -n open -p true "$(open_cmd "$scale")" \
            -n edit -p "$(restore_cmd "$scale" "$E")" "$(edit_cmd "$scale" "$E")"
        {
            echo "$scale open $(peak_kib true "$(open_cmd "$scale")")"
            echo "$scale edit" \
                "$(peak_kib "$(restore_cmd "$scale" "$E")" "$(edit_cmd "$scale" "$E")")"
        } >>"$MEMORY"
    done
fi

# --- Report ----------------------------------------------------------------------------------
say "results"
REVISION=$(git -C "$ROOT" rev-parse --short HEAD 2>/dev/null || echo unknown)
git -C "$ROOT" diff --quiet HEAD 2>/dev/null || REVISION="$REVISION+changes"
"$PYTHON" - "$DATA" "$MEMORY" "$REVISION" "${SCALES[@]}" <<'PY'
import json
import os
import re
import statistics
import sys

data, memory_file, revision, scales = sys.argv[1], sys.argv[2], sys.argv[3], sys.argv[4:]


def workload(scale):
    pack = os.path.join(data, f"W-{scale}")
    path = os.path.join(pack, "profile", "自动套配置", "DefaultConfig.xml")
    with open(os.path.join(pack, "generated.txt"), encoding="utf-8") as f:
        attributes = int(re.search(r"(\d+) attributes", f.read()).group(1))
    return {"file": path, "bytes": os.path.getsize(path), "attributes": attributes}


def medians(name):
    with open(os.path.join(data, name), encoding="utf-8") as f:
        results = json.load(f)["results"]
    return {r["command"]: {"median_s": r["median"], "mean_s": r["mean"], "stddev_s": r["stddev"],
                           "min_s": r["min"], "max_s": r["max"], "runs": len(r["times"])}
            for r in results}


memory = {}
with open(memory_file, encoding="utf-8") as f:
    for line in f:
        scale, command, kib = line.split()
        memory.setdefault(scale, {})[command] = int(kib) * 1024

def rounds():
    """Each round's times of each command, in the order of the rounds."""
    found = []
    for name in os.listdir(data):
        match = re.fullmatch(r"hyperfine-W-round-(\d+)\.json", name)
        if match:
            with open(os.path.join(data, name), encoding="utf-8") as f:
                found.append((int(match.group(1)),
                              {r["command"]: r["times"] for r in json.load(f)["results"]}))
    return [times for _, times in sorted(found)]


w = workload("1")
per_round = rounds()
timing = {}
for command in per_round[0]:
    times = [t for round_times in per_round for t in round_times[command]]
    timing[command] = {"median_s": statistics.median(times), "min_s": min(times),
                       "max_s": max(times), "runs": len(times),
                       "peak_rss_bytes": memory["1"][command]}


def paired(a, b):
    """The median over rounds of the ratio of the two commands' medians within a round."""
    return statistics.median(statistics.median(r[a]) / statistics.median(r[b])
                             for r in per_round)


ratios = {
    "open/expat-check": paired("open", "expat-check"),
    "open/pugixml-parse": paired("open", "pugixml-parse"),
    "edit/expat-check": paired("edit", "expat-check"),
    "edit/pugixml-edit": paired("edit", "pugixml-edit"),
    "edit/lxml-edit": paired("edit", "lxml-edit"),
    "open peak memory/file size": memory["1"]["open"] / w["bytes"],
    "edit peak memory/file size": memory["1"]["edit"] / w["bytes"],
}

mb = 1e6
mib = 1024 * 1024
# Other work on the machine slows every command alike; the load says how much there was.
load = os.getloadavg()[0]
print(f"W: {w['bytes'] / mb:.1f} MB, {w['attributes']} attributes, koqdde at {revision}; "
      f"{os.cpu_count()} cores, load {load:.2f}")
print()
print(f"{'command':<15}{'median':>10}{'min':>10}{'max':>10}{'runs':>6}{'peak RSS':>12}"
      f"{'RSS/size':>10}")
for command, row in timing.items():
    print(f"{command:<15}{row['median_s'] * 1000:>8.0f}ms{row['min_s'] * 1000:>8.0f}ms"
          f"{row['max_s'] * 1000:>8.0f}ms{row['runs']:>6}"
          f"{row['peak_rss_bytes'] / mib:>8.1f} MiB{row['peak_rss_bytes'] / w['bytes']:>10.2f}")
print()
for name, value in ratios.items():
    print(f"{name:<28}{value:>8.2f}")

result = {"revision": revision, "cores": os.cpu_count(), "load_average": load, "workload": w,
          "commands": timing, "ratios": ratios}

if len(scales) > 1:
    rows = []
    for scale in scales:
        ws = workload(scale)
        runs = timing if scale == "1" else medians(f"hyperfine-W-{scale}.json")
        rows.append({"scale": scale, "bytes": ws["bytes"], "attributes": ws["attributes"],
                     "open_median_s": runs["open"]["median_s"],
                     "edit_median_s": runs["edit"]["median_s"],
                     "open_peak_rss_bytes": memory[scale]["open"],
                     "edit_peak_rss_bytes": memory[scale]["edit"]})
    print()
    print("growth with the file (per MB constant = linear):")
    print(f"{'scale':<7}{'size':>9}{'attributes':>12}{'open':>9}{'edit':>9}{'open/MB':>10}"
          f"{'edit/MB':>10}{'open RSS':>11}{'edit RSS':>11}")
    for r in rows:
        size = r["bytes"] / mb
        open_ms, edit_ms = r["open_median_s"] * 1000, r["edit_median_s"] * 1000
        print(f"{r['scale']:<7}{size:>6.1f} MB{r['attributes']:>12}{open_ms:>7.0f}ms"
              f"{edit_ms:>7.0f}ms{open_ms / size:>8.2f}ms{edit_ms / size:>8.2f}ms"
              f"{r['open_peak_rss_bytes'] / mib:>7.0f} MiB"
              f"{r['edit_peak_rss_bytes'] / mib:>7.0f} MiB")
    result["scaling"] = rows

with open(os.path.join(data, "results.json"), "w", encoding="utf-8") as f:
    json.dump(result, f, ensure_ascii=False, indent=2)
    f.write("\n")
print()
print(f"written: {os.path.join(data, 'results.json')}")
PY
