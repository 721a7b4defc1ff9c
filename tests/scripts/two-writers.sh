#!/usr/bin/env bash
# Two koqdde edits of one configuration at the same moment: both are kept, round after round.
# usage: two-writers.sh KOQDDE SOURCE_DIR [ROUNDS]
source "$(dirname "$0")/common.sh"
rounds=${3:-50}
make_large_config

for ((round = 1; round <= rounds; round++)); do
  count=$(configs)
  K config add "$category" >/dev/null 2>"$work/a.err" &
  a=$!
  K config add "$category" >/dev/null 2>"$work/b.err" &
  b=$!
  wait "$a" || fail "round $round: the first edit failed: $(cat "$work/a.err")"
  wait "$b" || fail "round $round: the second edit failed: $(cat "$work/b.err")"
  [ "$(configs)" -eq $((count + 2)) ] || fail "round $round: $(configs) configurations, not $((count + 2))"
done
echo "$rounds rounds of two writers: nothing lost"
