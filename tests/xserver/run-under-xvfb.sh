#!/usr/bin/env bash
# Runs a test program on the xcb platform under a private Xvfb server of laptop size. Exits 77
# (skipped) with a clear line when no Xvfb can start here.
set -uo pipefail
program=$1
shift
if ! command -v Xvfb >/dev/null; then
  echo "SKIPPED: Xvfb is not installed; the real-pointer tests did not run"
  exit 77
fi
log=$(mktemp)
trap 'rm -f "$log"; [ -n "${server:-}" ] && kill "$server" 2>/dev/null' EXIT
# -displayfd lets the server choose a free display and tell it.
exec 3< <(Xvfb -displayfd 1 -screen 0 1366x768x24 -nolisten tcp 2>"$log")
server=$!
if ! read -r -t 10 display <&3 || [ -z "$display" ]; then
  echo "SKIPPED: Xvfb did not start: $(head -c 300 "$log")"
  exit 77
fi
DISPLAY=":$display" QT_QPA_PLATFORM=xcb "$program" "$@"
# Said explicitly: otherwise the status of the clean-up trap would be the script's.
exit $?
