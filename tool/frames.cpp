// SPDX-License-Identifier: Apache-2.0
// Parsing of frame numbers and ranges.
#include "tool/frames.h"

#include <charconv>
#include <string>

#include "tool/exit_status.h"

namespace tidemark::tool {

namespace {

/// Takes a number off the front of `text`.
bool takeNumber(std::string_view& text, int& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc()) return false;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return true;
}

bool takeLetter(std::string_view& text, char letter) {
    if (text.empty() || text.front() != letter) return false;
    text.remove_prefix(1);
    return true;
}

FrameRange parseRange(std::string_view part) {
    std::string_view rest = part;
    FrameRange range{0, 0, 1};
    bool good = takeNumber(rest, range.first);
    range.last = range.first;
    if (good && takeLetter(rest, '-')) {
        good = takeNumber(rest, range.last);
        if (good && takeLetter(rest, 'x')) good = takeNumber(rest, range.step) && range.step > 0;
    }
    if (!good || !rest.empty()) {
        throw UsageError("no frame or range of frames: \"" + std::string(part) +
                         "\" (write 7, 1-100, 1-100x10, or several with commas)");
    }
    return range;
}

} // namespace

uint64_t FrameRange::count() const {
    const int64_t distance = int64_t(last) - first;
    return static_cast<uint64_t>(distance < 0 ? -distance : distance) / step + 1;
}

int FrameRange::at(uint64_t index) const {
    const int64_t offset = static_cast<int64_t>(index) * step;
    return static_cast<int>(last < first ? first - offset : first + offset);
}

Frames::Frames(std::string_view text) {
    while (true) {
        const std::size_t comma = text.find(',');
        ranges_.push_back(parseRange(text.substr(0, comma)));
        if (comma == std::string_view::npos) return;
        text.remove_prefix(comma + 1);
    }
}

uint64_t Frames::count() const {
    uint64_t sum = 0;
    for (const FrameRange& range : ranges_) sum += range.count();
    return sum;
}

} // namespace tidemark::tool
