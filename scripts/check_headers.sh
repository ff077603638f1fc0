#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Checks that every header of the library and the program compiles alone.
#   check_headers.sh [ROOT]
set -euo pipefail
export LC_ALL=C

root=${1:-$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)}
cd "$root"
read -ra imath <<<"$(pkg-config --cflags Imath)"

find src tool -name '*.h' | sort |
    xargs -P "${JOBS:-$(nproc)}" -I '{}' \
        "${CXX:-g++}" -std=c++20 -fsyntax-only -Wall -Wextra -Werror -Isrc -I. "${imath[@]}" \
        -include '{}' -x c++ /dev/null
