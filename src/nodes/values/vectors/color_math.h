// SPDX-License-Identifier: Apache-2.0
// Colours as red, green, blue, alpha and as hue, saturation, value. After A. R. Smith, "Color Gamut
// Transform Pairs", Computer Graphics 12(3), 1978 (the hexcone model). Hue is in degrees, 0 to 360,
// red at 0; the other numbers are 0 to 1 in usual colours, and any number is taken.
#pragma once

#include "core/export.h"
#include "core/types.h"

namespace tidemark::sluice::graph::vectors {

inline Color4<float> colorOf(float red, float green, float blue, float alpha) {
    return {red, green, blue, alpha};
}
inline float redOf(const Color4<float>& color) { return color.r; }
inline float greenOf(const Color4<float>& color) { return color.g; }
inline float blueOf(const Color4<float>& color) { return color.b; }
inline float alphaOf(const Color4<float>& color) { return color.a; }

/// Alpha is 1.
inline Color4<float> colorOfVector(const Vector3<float>& v) { return {v.x, v.y, v.z, 1.0f}; }
/// Without alpha.
inline Vector3<float> vectorOfColor(const Color4<float>& c) { return {c.r, c.g, c.b}; }

/// 0 of greys.
SLUICE_API float hueOf(const Color4<float>& color);
/// 0 of black.
SLUICE_API float saturationOf(const Color4<float>& color);
SLUICE_API float valueOf(const Color4<float>& color);
/// Hue, saturation, value.
SLUICE_API Vector3<float> hsvOf(const Color4<float>& color);

/// Hues repeat every 360 degrees; one that is not finite counts as 0. A value of 0 or less is
/// black, a saturation of 0 or less the grey of the value. Alpha is 1.
SLUICE_API Color4<float> colorOfHsv(float hue, float saturation, float value);

} // namespace tidemark::sluice::graph::vectors
