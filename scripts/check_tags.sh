#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Checks that every source file begins with its licence tag and says below what it is, and that no
# marker of unfinished work is left.
#   check_tags.sh [ROOT]
set -euo pipefail
export LC_ALL=C

root=${1:-$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)}
cd "$root"
fail=0

while IFS= read -r file; do
    if ! head -n 1 "$file" | grep -qx '// SPDX-License-Identifier: Apache-2.0'; then
        echo "$file: does not begin with the licence tag"
        fail=1
    elif ! sed -n 2p "$file" | grep -q '^// .'; then
        echo "$file: does not say what it is"
        fail=1
    fi
    if grep -nHwE 'TODO|FIXME|XXX|HACK' "$file"; then fail=1; fi
done < <(find src tool tests bench fuzz examples -type f \
    \( -name '*.h' -o -name '*.cpp' -o -name '*.def' \) 2>/dev/null | sort)
exit "$fail"
