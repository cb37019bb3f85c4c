#!/usr/bin/env bash
# Reads every include of both houses and fails on an arrow that points the wrong way.
#
#   check_includes.sh REPOSITORY
#
# Each layer may include itself and the layers listed behind it; the editor may also include the host,
# the host never the editor.
set -euo pipefail
cd "$1"

declare -A may=(
  [host/mc]="mc"
  [host/hx]="mc hx"
  [host/io]="mc hx io"
  [host/num]="mc hx num"
  [host/qx]="mc hx qx"
  [host/modules]="mc hx modules"
  [host/app]="mc hx io num qx modules app"
  [host/view3d]="mc hx io num qx modules app view3d"
  [host/main]="mc hx io num qx modules app view3d main"
)
everyHostLayer="mc hx io num qx modules app view3d"
declare -A mayEditor=(
  [editor/core]="core"
  [editor/display]="core display"
  [editor/tools]="core display modules tools"
  [editor/filters]="core display modules filters"
  [editor/modules]="core display modules"
  [editor/app]="core display tools filters modules app"
  [editor/plugins]="core display modules tools filters plugins"
)

failures=0
complain() {
  echo "$1"
  failures=$((failures + 1))
}

# check FOLDER ALLOWED ALL: in FOLDER, an include of a folder of ALL must be one of ALLOWED.
check() {
  local folder=$1 allowed=" $2 " all=" $3 " line file target
  [ -d "$folder" ] || return 0
  while IFS=: read -r file line; do
    target=$(sed -E 's/.*#include "([A-Za-z0-9]+)\/.*/\1/' <<<"$line")
    if [[ "$all" == *" $target "* && "$allowed" != *" $target "* ]]; then
      complain "$file includes $target: $(sed -E 's/^[0-9]+://' <<<"$line")"
    fi
  done < <(grep -rHE '^#include "[A-Za-z0-9]+/' "$folder" --include='*.h' --include='*.cpp' || true)
}

for folder in "${!may[@]}"; do
  # "app" and "modules" are folders of both houses; in the host they are the host's own.
  check "$folder" "${may[$folder]}" "$everyHostLayer main core display tools filters plugins"
done
for folder in "${!mayEditor[@]}"; do
  # "app" is a folder of both houses: the editor's own windows may use the host's.
  check "$folder" "${mayEditor[$folder]} mc hx io num qx view3d" "$everyHostLayer main core display tools filters plugins"
done

# What the host includes by folder must be a file of the host: the search path would also find the editor's.
while IFS=: read -r file line; do
  target=$(sed -E 's/.*#include "([^"]+)".*/\1/' <<<"$line")
  [ -e "host/$target" ] || complain "$file includes $target, which is not the host's"
done < <(grep -rHE '^#include "[A-Za-z0-9]+/' host --include='*.h' --include='*.cpp')

# The core is plain C++: no Qt, and nothing that draws.
for folder in host/mc editor/core; do
  while IFS= read -r line; do complain "$line: $folder has no Qt"; done \
    < <(grep -rnE '#include <Q[A-Za-z]' "$folder" --include='*.h' --include='*.cpp' || true)
done
for folder in host/mc host/hx host/io host/num editor/core editor/display; do
  while IFS= read -r line; do complain "$line: $folder has no widgets"; done \
    < <(grep -rnE '#include <Q(Widget|Application|MainWindow|Dialog|PushButton|CheckBox|Label|Menu)>' "$folder" \
          --include='*.h' --include='*.cpp' || true)
done

if [ "$failures" -gt 0 ]; then
  echo "$failures includes point the wrong way"
  exit 1
fi
echo "All includes point the right way."
