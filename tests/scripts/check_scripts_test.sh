#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# The check scripts on made-up trees: each must pass a good tree and name the fault of a bad one.
set -euo pipefail

scripts=$(cd "$(dirname "${BASH_SOURCE[0]}")/../../scripts" && pwd)
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
failures=0

fail() {
    printf 'FAILED: %s\n' "$*" >&2
    failures=$((failures + 1))
}

# passes NAME SCRIPT ARG: the script is content.
passes() {
    local output
    output=$("$scripts/$2" "$3" 2>&1) || fail "$1: $output"
}

# refuses NAME WORDS SCRIPT ARG: the script fails and its output holds the words.
refuses() {
    local output
    if output=$("$scripts/$3" "$4" 2>&1); then
        fail "$1: passed"
    elif [[ $output != *"$2"* ]]; then
        fail "$1: no '$2' in: $output"
    fi
}

# include FILE STATEMENT: a tree with this one file.
include() {
    rm -rf "${tree:?}"/*
    mkdir -p "$tree/$(dirname "$1")"
    printf '%s\n' "$2" >"$tree/$1"
}

arrow_passes() { include "$1" "$2" && passes "arrow $1 $2" check_arrows.sh "$tree"; }
arrow_refuses() { include "$1" "$2" && refuses "arrow $1 $2" "$1:1:" check_arrows.sh "$tree"; }

arrow_passes src/graph/pin.cpp '#include "core/attribute.h"'
arrow_passes src/core/object.cpp '#include "bridge/host.h"'
arrow_passes src/core/object.cpp '#include <vector>'
arrow_passes src/core/object.cpp '#include <Imath/ImathVec.h>'
arrow_passes src/platform/image.cpp '#include <OpenImageIO/imageio.h>'
arrow_passes src/platform/curve.cpp '#include <muParser.h>'
arrow_passes src/persistence/reader.cpp '#include <boost/property_tree/ptree.hpp>'
arrow_passes tool/run.cpp '#include <CLI/CLI.hpp>'
arrow_refuses src/core/object.cpp '#include "graph/pin.h"'
arrow_refuses src/core/object.cpp '#include "object.h"'
arrow_refuses src/core/object.h '#include <boost/optional.hpp>'
arrow_refuses src/graph/pin.cpp '  #  include "nodes/values/math.h"'
arrow_refuses src/bridge/host.h '#include "core/attribute.h"'
arrow_refuses src/platform/image.h '#include <OpenImageIO/imageio.h>'
arrow_refuses src/platform/curve.h '#include <muParser.h>'
arrow_refuses src/nodes/values/curve.cpp '#include <muParser.h>'
arrow_refuses src/platform/image.cpp '#include "core/object.h"'
arrow_refuses src/persistence/reader.cpp '#include <nlohmann/json.hpp>'
arrow_refuses src/nodes/values/add.cpp '#include "host/scene.h"'
arrow_refuses src/unknown/a.cpp '#include "core/object.h"'

# rows TEXT...: the rows of one .def file beside a full list of types T1 .. T725.
rows() {
    rm -rf "${tree:?}"/*
    seq -f 'T%.0f' 725 >"$tree/types.txt"
    echo '#include "graph/node_types/math.def"' >"$tree/all.def"
    printf '%s\n' "$@" >"$tree/math.def"
}

rows 'NODE(T1, T1, "Math")' 'NODE(T7, T7, "Math")' && passes "rows in order" check_rows.sh "$tree"
rows 'NODE(T7, T7, "Math")' 'NODE(T1, T1, "Math")' &&
    refuses "rows out of order" "T1 must come before T7" check_rows.sh "$tree"
rows 'NODE(T7, T7, "Math")' 'NODE(T7, T7, "Math")' &&
    refuses "a row twice" "T7 has two rows" check_rows.sh "$tree"
rows 'NODE(Other, Other, "Math")' &&
    refuses "a row of an unknown type" "Other is not in types.txt" check_rows.sh "$tree"
rows '// nothing' && refuses "no rows" "no row found" check_rows.sh "$tree"
rows 'NODE(T1, T1, "Math")' && sed -i 725d "$tree/types.txt" &&
    refuses "a short list" "types.txt lists 724 types" check_rows.sh "$tree"
rows 'NODE(T1, T1, "Math")' && touch "$tree/extra.def" &&
    refuses "a forgotten file" "extra.def is not included" check_rows.sh "$tree"

include src/core/a.h '// SPDX-License-Identifier: Apache-2.0'
echo '// What a file may say of itself.' >>"$tree/src/core/a.h"
passes "a tagged file" check_tags.sh "$tree"
mark=TO""DO
echo "int a; // $mark" >>"$tree/src/core/a.h"
refuses "unfinished work" "$mark" check_tags.sh "$tree"
include src/core/a.h '// Some file'
refuses "no licence tag" "src/core/a.h" check_tags.sh "$tree"

if ((failures > 0)); then exit 1; fi
echo "all as expected"
