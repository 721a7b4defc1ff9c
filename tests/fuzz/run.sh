#!/usr/bin/env bash
# Runs every harness: first each file of its corpus and of its reproducers once, then
# fuzzing for a bounded time from them. Usage: run.sh BUILD_DIR [SECONDS]
#
# Faults found but not fixed yet have their reproducers in reproducers/pending/<harness>/.
# Those files are not run; the properties they break are "known": fuzzing that breaks one of
# them again is reported and goes on for the rest of the time, anything else fails the run.
#
# New inputs go to BUILD_DIR/fuzz/<harness>/corpus (the committed corpus is never written),
# failing inputs to BUILD_DIR/fuzz/<harness>/crash-*, each harness's logs beside them.
set -uo pipefail

build=${1:?usage: run.sh BUILD_DIR [SECONDS]}
seconds=${2:-15}
here=$(cd "$(dirname "$0")" && pwd)

declare -A dicts=([config_xml]=xml [attr_config]=xml [profile_ini]=ini [file_head]=head)

# The "property broken" line an input makes the harness print, or nothing.
broken() {
    "$1" "$2" 2>&1 | sed -n 's/^\*\*\* property broken: //p' | head -n 1
}

stat_of() {
    sed -n "s/^stat::$1: *//p" "$2"
}

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
    ok=1
    if ! "$bin" "${files[@]}" >"$work/inputs.log" 2>&1; then
        ok=0
        echo "fuzz_$harness: a committed input fails:"
        tail -n 40 "$work/inputs.log"
    fi

    known=()
    if [ -d "$here/reproducers/pending/$harness" ]; then
        while IFS= read -r -d '' f; do
            line=$(broken "$bin" "$f")
            [ -n "$line" ] && known+=("$line")
        done < <(find "$here/reproducers/pending/$harness" -type f -print0 | sort -z)
    fi

    runs=0
    rounds=0
    again=0
    start=$SECONDS
    while [ $ok = 1 ]; do
        left=$((seconds - (SECONDS - start)))
        [ $left -lt 1 ] && break
        rounds=$((rounds + 1))
        log=$work/fuzz-$rounds.log
        if "$bin" -max_total_time=$left -timeout=10 -rss_limit_mb=2048 -max_len=8192 \
            -dict="$here/dict/${dicts[$harness]}.dict" -artifact_prefix="$work/" \
            -print_final_stats=1 "$work/corpus" "${seeds[@]}" >"$log" 2>&1; then
            runs=$((runs + $(stat_of number_of_executed_units "$log")))
            break
        fi
        runs=$((runs + $(stat_of number_of_executed_units "$log")))
        crash=$(sed -n 's/.*Test unit written to //p' "$log" | tail -n 1)
        line=$(sed -n 's/^\*\*\* property broken: //p' "$log" | head -n 1)
        is_known=0
        for k in "${known[@]}"; do
            [ -n "$line" ] && [ "$line" = "$k" ] && is_known=1
        done
        if [ $is_known = 1 ]; then
            again=$((again + 1))
            rm -f "$crash"
            continue
        fi
        ok=0
        echo "fuzz_$harness: fuzzing found a failing input: ${crash:-(none written)}"
        grep -A20 "property broken" "$log" | head -n 30
        tail -n 30 "$log"
    done

    if [ $ok = 1 ]; then
        passed=$((passed + 1))
        echo "fuzz_$harness: ${#files[@]} committed inputs pass; $runs runs in ${seconds}s" \
            "($((runs / seconds))/s), no new fault"
        [ $again -gt 0 ] && echo "fuzz_$harness: a known open fault came back $again times" \
            "(see reproducers/pending/$harness)"
    else
        failed=$((failed + 1))
    fi
done
echo "fuzz: $passed passed, $failed failed"
[ $failed = 0 ]
