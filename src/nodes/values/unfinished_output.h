// SPDX-License-Identifier: Apache-2.0
// What an output shows after an update that an exception ended: nothing, rather than elements that
// were not computed.
//
//     const UnfinishedOutput unfinished(target, {&array, &mask});
//     ... writes to `target` and answers interrupts ...
#pragma once

#include <algorithm>
#include <exception>
#include <initializer_list>

#include "core/bit_array.h"
#include "core/numeric.h"
#include "core/string_value.h"

namespace tidemark::sluice::graph {

/// Empties a value when an exception leaves the scope that this stands in. `Value` is Numeric,
/// BitArrayValue or StringValue.
template <typename Value>
class UnfinishedOutput {
public:
    /// Null stands for nothing to empty. Neither is a value emptied that is one of those `read`: it
    /// is a source's, which would not compute it anew.
    UnfinishedOutput(Value* value, std::initializer_list<const weft::Value*> read)
        : value_(std::find(read.begin(), read.end(), value) == read.end() ? value : nullptr) {}
    ~UnfinishedOutput() {
        if (value_ && std::uncaught_exceptions() > exceptions_) empty(*value_);
    }
    UnfinishedOutput(const UnfinishedOutput&) = delete;
    UnfinishedOutput& operator=(const UnfinishedOutput&) = delete;

private:
    static void empty(weft::Numeric& number) {
        // The array of the selected type, which may have grown without the size.
        number.resize(0);
    }
    static void empty(weft::BitArrayValue& bits) { bits.resize(0, false); }
    static void empty(weft::StringValue& strings) { strings.setSize(0); }

    Value* value_;
    int exceptions_ = std::uncaught_exceptions();
};

} // namespace tidemark::sluice::graph
