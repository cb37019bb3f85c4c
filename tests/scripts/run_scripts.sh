#!/usr/bin/env bash
# Runs one script in the program and compares what it prints with the expected lines beside it.
#
#   run_scripts.sh VOREL SCRIPT.tcl
#
# The script runs without windows in an empty folder that is removed afterwards. It finds the program in
# the variable env(VOREL). Both output streams are compared, followed by a line "exit CODE"; the path of
# the scripts' folder shows as SCRIPTS. With UPDATE=1 in the environment the expected lines are written
# instead, to be read with care before they are kept.
set -euo pipefail

if [ $# -ne 2 ]; then
  echo "usage: run_scripts.sh VOREL SCRIPT.tcl" >&2
  exit 2
fi
vorel=$(realpath "$1")
script=$(realpath "$2")
expected="${script%.tcl}.expected"
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

cd "$folder"
export VOREL="$vorel"
code=0
"$vorel" --headless "$script" >"$folder.out" 2>&1 </dev/null || code=$?
trap 'rm -rf "$folder" "$folder.out" "$folder.seen"' EXIT
{
  sed -e "s|$(dirname "$script")|SCRIPTS|g" -e "s|$folder|WORK|g" "$folder.out"
  echo "exit $code"
} >"$folder.seen"

if [ "${UPDATE:-0}" = 1 ]; then
  cp "$folder.seen" "$expected"
elif ! diff -u --label expected "$expected" --label seen "$folder.seen"; then
  echo "$(basename "$script"): the output differs from $(basename "$expected")."
  exit 1
fi
