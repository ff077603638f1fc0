// SPDX-License-Identifier: Apache-2.0
// Types and defaults of polymorphic pins, and handing values on.
#include "nodes/values/value_tools.h"

#include <type_traits>

#include "core/conversion.h"

namespace tidemark::sluice::graph {

using weft::NumericType;

NumericType selectorOf(const weft::Attribute& attribute) {
    const weft::SpecializationList& list = attribute.specializations();
    return list.size() == 1 ? weft::numericTypeOf(list[0]) : NumericType::none;
}

void setDefault(weft::NumericAttribute& pin, double number) {
    weft::Numeric& value = pin.ownNumeric();
    for (const TM_String& name : pin.allowedSpecializations().names()) {
        weft::withElementType(weft::numericTypeOf(name), [&]<typename T>() {
            if constexpr (std::is_integral_v<T>) {
                value.refValues<T>()[0] = truncateTo<T>(number);
            } else {
                const auto real = static_cast<float>(number);
                if constexpr (std::is_same_v<T, float>) value.refValues<T>()[0] = real;
                if constexpr (std::is_same_v<T, Vector3<float>>) value.refValues<T>()[0] = T(real);
                if constexpr (std::is_same_v<T, Color4<float>>) {
                    value.refValues<T>()[0] = T(real, real, real, real);
                }
            }
        });
    }
}

void copyUnlessPassedThrough(const weft::Attribute& in, const weft::Attribute& out) {
    if (out.isPassThrough() || !out.writeTarget()) return;
    out.writeTarget()->copyFrom(in.currentValue());
}

} // namespace tidemark::sluice::graph
