// SPDX-License-Identifier: Apache-2.0
// From red, green, blue to hue, saturation, value, and back.
#include "nodes/values/vectors/color_math.h"

#include <algorithm>
#include <cmath>

namespace tidemark::sluice::graph::vectors {

namespace {

constexpr double fullCircle = 360;
constexpr double degreesPerSector = 60;

struct Range {
    double most;
    double width;
};

Range rangeOf(const Color4<float>& color) {
    const double most = std::max({color.r, color.g, color.b});
    const double least = std::min({color.r, color.g, color.b});
    return {most, most - least};
}

// 0 up to 360; what rounds to 360 is left, being the same hue.
double wrapped(double hue) {
    if (!std::isfinite(hue)) return 0;
    const double rest = std::fmod(hue, fullCircle);
    return rest < 0 ? rest + fullCircle : rest;
}

} // namespace

float hueOf(const Color4<float>& color) {
    const auto [most, width] = rangeOf(color);
    if (width == 0) return 0.0f;
    const double red = color.r;
    const double green = color.g;
    const double blue = color.b;
    double sector = (red - green) / width + 4;
    if (most == red) {
        sector = (green - blue) / width;
    } else if (most == green) {
        sector = (blue - red) / width + 2;
    }
    const double hue = sector * degreesPerSector;
    return static_cast<float>(hue < 0 ? hue + fullCircle : hue);
}

float saturationOf(const Color4<float>& color) {
    const auto [most, width] = rangeOf(color);
    return most == 0 ? 0.0f : static_cast<float>(width / most);
}

float valueOf(const Color4<float>& color) { return static_cast<float>(rangeOf(color).most); }

Vector3<float> hsvOf(const Color4<float>& color) {
    return {hueOf(color), saturationOf(color), valueOf(color)};
}

Color4<float> colorOfHsv(float hue, float saturation, float value) {
    if (value <= 0) return {0, 0, 0, 1};
    if (saturation <= 0) return {value, value, value, 1};
    const double x = wrapped(hue) / degreesPerSector;
    const double sector = std::floor(x);
    const double f = x - sector;
    const double s = saturation;
    const double v = value;
    const auto p = static_cast<float>((1 - s) * v);
    const auto q = static_cast<float>((1 - f * s) * v);
    const auto t = static_cast<float>((1 - (1 - f) * s) * v);
    switch (static_cast<int>(sector)) {
    case 1:
        return {q, value, p, 1};
    case 2:
        return {p, value, t, 1};
    case 3:
        return {p, q, value, 1};
    case 4:
        return {t, p, value, 1};
    case 5:
        return {value, p, q, 1};
    default:
        return {value, t, p, 1};
    }
}

} // namespace tidemark::sluice::graph::vectors
