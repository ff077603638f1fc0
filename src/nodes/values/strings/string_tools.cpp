// SPDX-License-Identifier: Apache-2.0
// Searching and limits for the string nodes.
#include "nodes/values/strings/string_tools.h"

#include <cstring>

namespace tidemark::sluice::graph {

std::size_t findText(std::string_view text, std::string_view wanted, std::size_t from) {
    if (from > text.size()) return std::string_view::npos;
    if (wanted.empty()) return from;
    // The text may have no memory at all, which memmem does not take.
    if (wanted.size() > text.size() - from) return std::string_view::npos;
    const void* found =
        memmem(text.data() + from, text.size() - from, wanted.data(), wanted.size());
    if (!found) return std::string_view::npos;
    return static_cast<std::size_t>(static_cast<const char*>(found) - text.data());
}

void checkTextLength(uint64_t bytes) {
    // One element of that size: the limit on the number of elements is not meant for characters.
    if (bytes >= limits::largeRequest) limits::checkRequest(1, bytes);
}

} // namespace tidemark::sluice::graph
