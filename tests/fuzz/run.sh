#!/usr/bin/env bash
# Runs every harness: first each file of its corpus and of its reproducers once, then
# fuzzing for a bounded time from them. Usage: run.sh BUILD_DIR [SECONDS]
#
# New inputs go to BUILD_DIR/fuzz/<harness>/corpus (the committed corpus is never written),
# failing inputs to BUILD_DIR/fuzz/<harness>/crash-*, each harness's logs beside them.
set -uo pipefail

build=${1:?usage: run.sh BUILD_DIR [SECONDS]}
seconds=${2:-15}
here=$(cd "$(dirname "$0")" && pwd)

declare -A dicts=([config_xml]=xml [attr_config]=xml [profile_ini]=ini [file_head]=head)

passed=0
failed=0
for harness in config_xml profile_ini attr_config file_head; do
    bin=$build/tests/fuzz/fuzz_$harness
    work=$build/fuzz/$harness
    rm -rf "$work"
    mkdir -p "$work/corpus"
    seeds=()
    for dir in "$here/corpus/$harness" "$here/reproducers/$harness"; do
        [ -d "$dir" ] && seeds+=("$dir")
    done

    # Every committed input once, by name, so a failure says which file it was.
    files=()
    for dir in "${seeds[@]}"; do
        while IFS= read -r -d '' f; do files+=("$f"); done < <(find "$dir" -type f -print0 | sort -z)
    done
    log=$work/fuzz.log
    if ! "$bin" "${files[@]}" >"$work/inputs.log" 2>&1; then
        echo "fuzz_$harness: a committed input fails:"
        tail -n 40 "$work/inputs.log"
    elif ! "$bin" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -max_len=8192 \
        -dict="$here/dict/${dicts[$harness]}.dict" -artifact_prefix="$work/" \
        -print_final_stats=1 "$work/corpus" "${seeds[@]}" >"$log" 2>&1; then
        echo "fuzz_$harness: fuzzing found a failing input:" \
            "$(sed -n 's/.*Test unit written to //p' "$log" | tail -n 1)"
        grep -A20 "property broken" "$log" | head -n 30
        tail -n 30 "$log"
    else
        passed=$((passed + 1))
        runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
        echo "fuzz_$harness: ${#files[@]} committed inputs pass; $runs runs in ${seconds}s" \
            "($((runs / seconds))/s), no new fault"
        continue
    fi
    failed=$((failed + 1))
done
echo "fuzz: $passed passed, $failed failed"
[ $failed = 0 ]
