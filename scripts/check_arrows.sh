#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Checks that includes point down the layers, and that third-party headers stay where they belong.
#   check_arrows.sh [ROOT]   prints one line per include that does not, and fails when there is one
set -euo pipefail
export LC_ALL=C

root=${1:-$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)}
cd "$root"

folders=()
for folder in src tool python; do
    if [[ -d $folder ]]; then folders+=("$folder"); fi
done
((${#folders[@]} > 0)) || { echo "check_arrows: nothing to check below $root" >&2; exit 2; }

grep -rnE '^[[:space:]]*#[[:space:]]*include[[:space:]]*["<]' "${folders[@]}" \
    --include='*.h' --include='*.cpp' --include='*.def' | awk '
BEGIN {
    # What a layer may include from the source tree, besides its own folder. Plain headers are
    # those that know no object of the system.
    plain = "core/export.h core/array.h core/text.h core/limits.h core/types.h"
    allowed["platform"]    = plain " bridge/host.h"
    allowed["host.h"]      = plain
    allowed["core"]        = "platform/ bridge/host.h"
    allowed["graph"]       = "platform/ bridge/host.h core/"
    allowed["persistence"] = "platform/ bridge/host.h core/ graph/"
    allowed["nodes"]       = "platform/ bridge/host.h core/ graph/ persistence/"
    allowed["bridge"]      = "platform/ core/ graph/ persistence/"
    allowed["host"]        = "platform/ bridge/ core/ graph/ persistence/ nodes/"
    allowed["tool"]        = "platform/ bridge/ core/ graph/ persistence/ nodes/ host/"
    allowed["python"]      = allowed["tool"]

    # Third-party headers by layer; "system" is the operating system and the compiler.
    system_headers = "^(unistd|fcntl|errno|signal|pthread|dlfcn|dirent|ucontext|cxxabi|poll|spawn|" \
        "termios|execinfo|malloc|langinfo|locale|xlocale|sched|immintrin|x86intrin|arm_neon)[.]h$|" \
        "^(sys|linux|sanitizer)/"
    third["persistence"] = "^boost/(property_tree|optional)"
    third["tool"]        = "^(CLI|nlohmann)/"
    third["python"]      = "^pybind11/"
}

function fits(target, list,    count, parts, i) {
    count = split(list, parts, " ")
    for (i = 1; i <= count; ++i) {
        if (parts[i] ~ /\/$/ ? index(target, parts[i]) == 1 : target == parts[i]) return 1
    }
    return 0
}

function complain(why) {
    print file ":" line ": " why ": " target
    ++findings
}

{
    file = $0; sub(/:.*/, "", file)
    rest = substr($0, length(file) + 2)
    line = rest; sub(/:.*/, "", line)
    statement = substr(rest, length(line) + 2)
    quoted = statement ~ /include[ \t]*"/
    target = statement
    sub(/^[^"<]*["<]/, "", target); sub(/[">].*/, "", target)

    layer = file; sub(/^src\//, "", layer)
    own = layer
    if (own == "bridge/host.h") layer = "host.h"
    else sub(/\/.*/, "", layer)

    if (!(layer in allowed)) { complain("no layer known for this file"); next }

    if (quoted) {
        if (target !~ /\//) { complain("include paths start at src/"); next }
        if (layer != "host.h" && index(target, layer "/") == 1) next
        if (!fits(target, allowed[layer])) complain(layer " may not include")
        next
    }
    if (target !~ /[.\/]/) next                          # the standard library
    if (target ~ /^Imath\// || target ~ system_headers) next
    if ((layer in third) && target ~ third[layer]) next
    if ((layer == "platform" || layer == "host") && file ~ /[.]cpp$/) next
    complain("third-party header out of its place")
}

END {
    if (findings > 0) { print findings " includes against the layers" > "/dev/stderr"; exit 1 }
}'
