#!/usr/bin/env bash
# Fails if the code or the user's guide names a picture that is not among the built resources: the program would
# show an empty button there.
#
#   check_pictures.sh REPOSITORY RESOURCES
set -euo pipefail
cd "$1"
resources=$2
missing=0

need() {
  if [ ! -s "$resources/$1" ]; then
    echo "$2 is named in $3, but $resources has no $1"
    missing=$((missing + 1))
  fi
}

count=0
while IFS=: read -r file name; do
  name=${name//\"/}
  need "$name" "$name" "$file"
  need "${name%.png}@2x.png" "$name" "$file"
  count=$((count + 1))
done < <(grep -roE '"[A-Za-z0-9]+\.png"' host editor --include='*.cpp' --include='*.h')

while IFS=: read -r file name; do
  name=$(sed -E 's/^src="(.*)"$/\1/' <<<"$name")
  need "kelvane/$name" "$name" "$file"
  count=$((count + 1))
done < <(grep -oHE 'src="[^"]+"' editor/resources/GI.html)

if [ "$count" -lt 20 ]; then
  echo "only $count pictures were found in the code: the search has lost its way"
  exit 1
fi
[ "$missing" -eq 0 ] || exit 1
echo "All $count pictures are there."
