// SPDX-License-Identifier: Apache-2.0
// Colours of pictures.
#include "tool/picture_colors.h"

#include <algorithm>
#include <cmath>

#include "core/text.h"

namespace tidemark::tool {

std::string hex(const Color4<float>& color) {
    const auto part = [](float value) {
        return static_cast<int>(std::lround(std::min(std::max(value, 0.0f), 1.0f) * 255.0f));
    };
    return text::format("#%02x%02x%02x", part(color.r), part(color.g), part(color.b));
}

bool isDark(const Color4<float>& color) {
    return 0.299f * color.r + 0.587f * color.g + 0.114f * color.b < 0.55f;
}

} // namespace tidemark::tool
