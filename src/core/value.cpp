// SPDX-License-Identifier: Apache-2.0
// What values of every class do alike.
#include "core/value.h"

#include "core/bit_array.h"

namespace weft {

void Value::nullMask(BitArrayValue& mask) const {
    mask.resize(size(), false);
    mask.set(false);
}

} // namespace weft
