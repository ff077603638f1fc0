// SPDX-License-Identifier: Apache-2.0
// One bit node under test, its arrays spoken to as texts of digits:
//
//     BitNode n("ArrayBitReverse");
//     n.set("array", "1100");
//     EXPECT_EQ("0011", n.get("out array"));
#pragma once

#include <random>
#include <vector>

#include "nodes/values/logic_net.h"

namespace sluice_tests {

/// The node is called "n". With `in`, a source "b" of the type "Bit" feeds that input and is what
/// `set` sets; with `out` as well, that output writes the source's value.
class BitNode : public LogicNet {
public:
    explicit BitNode(const TM_String& type) { add(type, "n"); }
    BitNode(const TM_String& type, const TM_String& in) : BitNode(type) {
        add("Bit", "b");
        link("b.bit", "n." + in);
        fed_ = in;
    }
    BitNode(const TM_String& type, const TM_String& in, const TM_String& out) : BitNode(type, in) {
        pin("n." + in).addAllowedPassThrough(&pin("n." + out));
        pin("n." + in).addPassThrough(&pin("n." + out));
    }

    /// Sets a bit input; what lies beyond the elements in the last word is set too.
    void set(const TM_String& name, const TM_String& digits) {
        auto& attribute = as<weft::BitArrayAttribute>(name == fed_ ? "b.in" : "n." + name);
        weft::BitArrayValue& bits = attribute.ownBits();
        const auto size = static_cast<uint32_t>(digits.size());
        bits.resize(size, false);
        for (uint32_t i = 0; i < bits.words().size(); ++i) bits.wordData()[i] = ~uint32_t(0);
        for (uint32_t i = 0; i < size; ++i) bits.setBit(i, digits[i] == '1');
        attribute.valueChanged();
    }
    void integers(const TM_String& name, const std::vector<int32_t>& values) {
        auto& attribute = as<weft::NumericAttribute>("n." + name);
        tidemark::Array<int32_t> array;
        for (const int32_t value : values) array.append(value);
        attribute.ownNumeric().setValues(array);
        attribute.valueChanged();
    }
    void integer(const TM_String& name, int32_t value) { integers(name, {value}); }

    TM_String get(const TM_String& name) { return text("n." + name); }
    int32_t number(const TM_String& name) {
        refresh("n." + name);
        return as<weft::NumericAttribute>("n." + name).numeric().value<int32_t>();
    }
    TM_String messages() { return LogicNet::messages("n"); }

private:
    TM_String fed_;
};

/// `size` random digits of which about `percent` in a hundred are 1.
inline TM_String randomDigits(std::mt19937& random, uint32_t size, uint32_t percent = 50) {
    TM_String digits(size, '0');
    for (char& digit : digits) digit = random() % 100 < percent ? '1' : '0';
    return digits;
}

/// Sizes around the ends of words, and one of many words.
inline const std::vector<uint32_t>& telltaleSizes() {
    static const std::vector<uint32_t> sizes{0,  1,  2,  7,  8,   31,  32,  33,  63,  64,
                                             65, 95, 96, 97, 127, 128, 129, 500, 512, 5003};
    return sizes;
}

} // namespace sluice_tests
