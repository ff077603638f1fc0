// SPDX-License-Identifier: Apache-2.0
// Hues, and the choice of new ones.
#include "graph/color_table.h"

#include <algorithm>
#include <cmath>

namespace tidemark::sluice::graph {

namespace {

constexpr float degreesPerBucket = 360.0f / HueBuckets::count;

// Multiply-with-carry beside a multiplicative lagged sequence. Fixed seeds: the same table always
// gets the same colours.
class HueGenerator {
public:
    uint32_t next() {
        const uint32_t product = a_ * b_;
        b_ = a_;
        a_ = product;
        x_ = (x_ >> 16) + (x_ & 0xffffu) * 30903u;
        return x_ + a_;
    }

private:
    uint32_t x_ = 6211503u;
    uint32_t a_ = 642803u;
    uint32_t b_ = 401u;
};

float channel(const Hsv& hsv, float offset) {
    const float sector = std::fmod(hsv.hue / 60.0f + offset, 6.0f);
    const float ramp = std::clamp(std::min(sector, 4.0f - sector), 0.0f, 1.0f);
    return hsv.value * (1.0f - hsv.saturation * ramp);
}

} // namespace

Hsv toHsv(const Color4<float>& color) {
    const float high = std::max({color.r, color.g, color.b});
    const float low = std::min({color.r, color.g, color.b});
    const float range = high - low;
    Hsv hsv{0.0f, high > 0.0f ? range / high : 0.0f, high};
    if (range <= 0.0f) return hsv;
    if (high == color.r) {
        hsv.hue = 60.0f * (color.g - color.b) / range;
    } else if (high == color.g) {
        hsv.hue = 60.0f * (color.b - color.r) / range + 120.0f;
    } else {
        hsv.hue = 60.0f * (color.r - color.g) / range + 240.0f;
    }
    if (hsv.hue < 0.0f) hsv.hue += 360.0f;
    return hsv;
}

Color4<float> fromHsv(const Hsv& hsv) {
    Hsv wrapped = hsv;
    wrapped.hue = std::fmod(std::fmod(hsv.hue, 360.0f) + 360.0f, 360.0f);
    return Color4<float>(channel(wrapped, 5.0f), channel(wrapped, 3.0f), channel(wrapped, 1.0f),
                         1.0f);
}

Color4<float> recolored(const Color4<float>& color, float saturation, float value) {
    constexpr float greyBelow = 0.05f;
    const Hsv hsv = toHsv(color);
    if (hsv.saturation < greyBelow) return fromHsv({hsv.hue, 0.0f, (saturation + value) / 2.0f});
    return fromHsv({hsv.hue, saturation, value});
}

void HueBuckets::enter(const Color4<float>& color) {
    const auto bucket = static_cast<uint32_t>(toHsv(color).hue / 360.0f * count);
    used_.set(std::min(bucket, count - 1));
}

Color4<float> HueBuckets::take(uint32_t steps, float saturation, float value) {
    constexpr uint32_t evenRange = UINT32_MAX / count * count;
    HueGenerator generator;
    for (uint32_t i = 0; i < steps; ++i) generator.next();
    uint32_t drawn = generator.next();
    while (drawn >= evenRange || used_.test(drawn % count)) drawn = generator.next();
    const uint32_t bucket = drawn % count;
    used_.set(bucket);
    const double fraction = generator.next() / 4294967295.0;
    const double hue = fraction * 5.0 + bucket * degreesPerBucket - 2.5;
    return fromHsv({static_cast<float>(hue), saturation, value});
}

} // namespace tidemark::sluice::graph
