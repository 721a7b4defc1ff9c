#!/usr/bin/env bash
# Kills koqdde at random moments of an edit of a large configuration. After every kill the
# file is the one before the edit or the one the edit wrote, never a third; the next save
# removes the temporary files killed saves left.
# usage: kill-during-save.sh KOQDDE SOURCE_DIR [ROUNDS]
source "$(dirname "$0")/common.sh"
rounds=${3:-200}
make_large_config

landed=0 leftovers=0
for ((round = 1; round <= rounds; round++)); do
  before=$(digest)
  count=$(configs)
  # The tool itself in the background, so that the kill reaches it and not a subshell.
  "$koqdde" --data "$work/pack" --file "$file" config add "$category" >/dev/null 2>&1 &
  pid=$!
  sleep "$(printf '0.%03d' $((RANDOM % 150)))"
  kill -9 "$pid" 2>/dev/null || true
  wait "$pid" 2>/dev/null || true
  if [ "$(digest)" = "$before" ]; then
    landed=$((landed + 1))
  else
    K tree >/dev/null 2>&1 || fail "round $round: the configuration no longer loads"
    [ "$(configs)" -eq $((count + 1)) ] || fail "round $round: $(configs) configurations, not $((count + 1))"
  fi
  if compgen -G "$work/.*.tmp-*" >/dev/null; then leftovers=$((leftovers + 1)); fi
done
K config add "$category" >/dev/null
if compgen -G "$work/.*.tmp-*" >/dev/null; then fail "temporary files left after a completed save"; fi
grep -a -q '<电气 id="3" name="电气">' "$file" || fail "the other specialty was lost"
echo "$rounds kills: $landed before the save finished, $leftovers left a temporary file; all clean"
