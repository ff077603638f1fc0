// SPDX-License-Identifier: Apache-2.0
// Values of options that are more than a number or a text.
#include "tool/run_options.h"

#include <charconv>
#include <limits>

#include "tool/exit_status.h"

namespace tidemark::tool {

namespace {

unsigned shiftOf(std::string_view suffix) {
    if (suffix.empty()) return 0;
    const TM_String unit = text::toUpper(suffix);
    if (unit == "K" || unit == "KB") return 10;
    if (unit == "M" || unit == "MB") return 20;
    if (unit == "G" || unit == "GB") return 30;
    return std::numeric_limits<unsigned>::max();
}

[[noreturn]] void refuse(const std::string& text, const Array<TM_String>& known) {
    std::string list;
    for (const TM_String& word : known) list += (list.empty() ? "" : ", ") + word;
    const TM_String nearest = text::nearest(text, known);
    throw UsageError("\"" + text + "\" is none of " + list +
                     (nearest.empty() ? "" : " (did you mean \"" + nearest + "\"?)"));
}

} // namespace

uint64_t parseBytes(const std::string& text) {
    uint64_t number = 0;
    const char* end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    const unsigned shift = shiftOf(std::string_view(rest, static_cast<std::size_t>(end - rest)));
    constexpr uint64_t most = std::numeric_limits<uint64_t>::max();
    if (error != std::errc() || number == 0 || shift > 30 || number > most >> shift) {
        throw UsageError("\"" + text + "\" is no size of memory (write 500M, 2G, or bytes)");
    }
    return number << shift;
}

FailLevel parseFailLevel(const std::string& text) {
    const Array<TM_String> known{"critical", "error", "warning"};
    const int64_t index = known.indexOf(text);
    if (index < 0) refuse(text, known);
    return FailLevel{static_cast<int>(index) + tidemark::graph::messageLevelCritical};
}

ProgressMode parseProgress(const std::string& text) {
    const Array<TM_String> known{"auto", "plain", "json", "none"};
    const int64_t index = known.indexOf(text);
    if (index < 0) refuse(text, known);
    return static_cast<ProgressMode>(index);
}

} // namespace tidemark::tool
