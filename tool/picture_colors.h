// SPDX-License-Identifier: Apache-2.0
// Colours of pictures as text.
#pragma once

#include <string>

#include "core/types.h"

namespace tidemark::tool {

/// "#rrggbb"
std::string hex(const Color4<float>& color);

/// Whether white text reads better on it than black.
bool isDark(const Color4<float>& color);

} // namespace tidemark::tool
