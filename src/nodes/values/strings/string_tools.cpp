// SPDX-License-Identifier: Apache-2.0
// Searching and limits for the string nodes.
#include "nodes/values/strings/string_tools.h"

#include <algorithm>
#include <cstring>

namespace tidemark::sluice::graph {

std::size_t findText(std::string_view text, std::string_view wanted, std::size_t from,
                     WorkMeter& meter) {
    if (from > text.size()) return std::string_view::npos;
    if (wanted.empty()) return from;
    // Windows of this many starts, each as long as the last of them needs. No shorter than what is
    // wanted, which is looked at for each window.
    const std::size_t starts = std::max(wanted.size(), std::size_t(1) << 16);
    for (; text.size() - from >= wanted.size(); from += starts) {
        const std::string_view window = text.substr(from, starts + wanted.size() - 1);
        const void* found = memmem(window.data(), window.size(), wanted.data(), wanted.size());
        if (found) return static_cast<std::size_t>(static_cast<const char*>(found) - text.data());
        if (window.size() < starts) break;
        meter.add(window.size());
    }
    return std::string_view::npos;
}

void checkTextLength(uint64_t bytes) {
    // One element of that size: the limit on the number of elements is not meant for characters.
    if (bytes >= limits::largeRequest) limits::checkRequest(1, bytes);
}

} // namespace tidemark::sluice::graph
