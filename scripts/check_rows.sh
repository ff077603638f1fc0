#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Checks the rows of src/graph/node_types/*.def, in the order in which all.def includes them,
# against the full list of types: every row is listed, none twice, and in the order of the list.
#   check_rows.sh [FOLDER]   the folder with types.txt and all.def
set -euo pipefail
export LC_ALL=C

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
folder=${1:-$root/src/graph/node_types}
types=725

for file in types.txt all.def; do
    [[ -f $folder/$file ]] || { echo "check_rows: no $folder/$file" >&2; exit 2; }
done

# Prints "file type" for each row, in order.
rows() {
    local name
    sed -nE 's/^[[:space:]]*#[[:space:]]*include[[:space:]]*"([^"]*\/)?([^"\/]+)".*/\2/p' \
        "$folder/all.def" | while read -r name; do
        sed -nE "s/^[[:space:]]*[A-Z_]*NODE[A-Z_]*\(([A-Za-z0-9_]+)[[:space:]]*,.*/$name \1/p" \
            "$folder/$name"
    done
}

fail=0
for path in "$folder"/*.def; do
    name=$(basename "$path")
    if [[ $name != all.def ]] && ! grep -qE "include[[:space:]]*\"([^\"]*/)?$name\"" "$folder/all.def"; then
        echo "$name is not included by all.def"
        fail=1
    fi
done

{
    sed -e 's/#.*//' "$folder/types.txt" | awk 'NF > 0 { print "types.txt", $1 }'
    rows
} | awk -v wanted="$types" '
$1 == "types.txt" {
    if ($2 in place) { print "types.txt: " $2 " is listed twice"; bad = 1 }
    place[$2] = ++listed
    next
}
{
    ++count
    if (!($2 in place)) { print $1 ": " $2 " is not in types.txt"; bad = 1; next }
    if ($2 in seen) { print $1 ": " $2 " has two rows"; bad = 1; next }
    seen[$2] = 1
    if (place[$2] < last) { print $1 ": " $2 " must come before " name; bad = 1; next }
    last = place[$2]; name = $2
}
END {
    if (listed != wanted) { print "types.txt lists " listed + 0 " types, not " wanted; bad = 1 }
    if (count == 0) { print "no row found"; bad = 1 }
    exit bad
}' || fail=1
exit "$fail"
