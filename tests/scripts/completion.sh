#!/usr/bin/env bash
# The completion scripts as each shell loads them: commands, subcommands, options, categories
# from the project's catalog, and file names where a FILE goes. zsh and fish are checked where
# they are installed (install-deps installs them).
source "$(dirname "$0")/common.sh"

# bash: the function the script registers, on the words of a line.
bash_complete() {
  bash -c 'source <("$1" completion bash); shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1));
           _koqdde; printf "%s\n" "${COMPREPLY[@]}"' _ "$koqdde" "$koqdde" --data "$work/pack" "$@"
}
expect() { # expect NAME OUTPUT WANTED... : every WANTED is a line of OUTPUT
  local name=$1 output=$2
  shift 2
  for wanted in "$@"; do
    grep -qxF -- "$wanted" <<<"$output" || fail "$name: no \"$wanted\" in: $(tr '\n' ' ' <<<"$output")"
  done
}
refuse() { # refuse NAME OUTPUT UNWANTED
  ! grep -qxF -- "$3" <<<"$2" || fail "$1: \"$3\" offered"
}

out=$(bash_complete con)
expect "bash commands" "$out" config condition
refuse "bash commands" "$out" tree
expect "bash subcommands" "$(bash_complete config "")" add copy delete up down
expect "bash categories" "$(bash_complete show 管道/给)" 管道/给水管
refuse "bash categories" "$(bash_complete show 管道/给)" 管道/排水管
expect "bash categories after the subcommand" "$(bash_complete qd add 阀门)" 阀门法兰/阀门
expect "bash options" "$(bash_complete condition add 管道/给水管 1 --a)" --attr
expect "bash global options" "$(bash_complete --dry)" --dry-run
mkdir -p "$work/files" && touch "$work/files/a.xml"
expect "bash files" "$(bash_complete head write "$work/files/")" "$work/files/a.xml"
# --spec switches the catalog the categories come from.
expect "bash --spec" "$(bash_complete --spec 电气 show "")" 配电箱柜/配电箱柜
[ -z "$(bash_complete condition add 管道/给水管 1 --attr "")" ] || fail "bash: an option's value completed"

if command -v zsh >/dev/null; then
  out=$(zsh -c 'compdef() { :; }; source <("$1" completion zsh)
                compadd() { print -l -- "$@"; }; _files() { print FILES; }
                words=("$1" --data "$2" show 管道/给); CURRENT=5; _koqdde
                words=("$1" head write ""); CURRENT=4; _koqdde' _ "$koqdde" "$work/pack")
  expect zsh "$out" 管道/给水管 FILES
else
  echo "zsh: not installed, skipped"
fi
if command -v fish >/dev/null; then
  out=$(fish -c 'source ($argv[1] completion fish | psub)
                 complete -C "$argv[1] --data $argv[2] show 管道/给"
                 complete -C "$argv[1] head "' "$koqdde" "$work/pack")
  expect fish "$out" 管道/给水管 write read strip
else
  echo "fish: not installed, skipped"
fi
echo "completion: passed"
