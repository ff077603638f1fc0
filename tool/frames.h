// SPDX-License-Identifier: Apache-2.0
// Frame numbers as a user writes them: "1-100", "1-100x10", "1,5,9", "-5--1".
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace tidemark::tool {

/// From `first` towards `last`, both included, every `step`-th; `step` is positive and `first` may
/// be the larger one.
struct FrameRange {
    int first;
    int last;
    int step;

    uint64_t count() const;
    int at(uint64_t index) const;
};

/// Frames in the order written. Ranges are kept as such: a long one costs nothing.
class Frames {
public:
    /// Throws `UsageError`, which quotes the part that is no frame or range.
    explicit Frames(std::string_view text);

    uint64_t count() const;

    /// Calls `visit(frame)` for each frame until it answers false.
    template <typename Visit>
    void forEach(Visit visit) const {
        for (const FrameRange& range : ranges_) {
            const uint64_t count = range.count();
            for (uint64_t i = 0; i < count; ++i) {
                if (!visit(range.at(i))) return;
            }
        }
    }

private:
    std::vector<FrameRange> ranges_;
};

} // namespace tidemark::tool
