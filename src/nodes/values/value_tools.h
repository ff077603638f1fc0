// SPDX-License-Identifier: Apache-2.0
// What the nodes over values share: declaring polymorphic pins, reading types and needs, polling.
#pragma once

#include "core/network_manager.h"
#include "core/numeric.h"

namespace tidemark::sluice::graph {

/// The selector that an attribute's own list settles on, or `none`: the value that it reads may not
/// have settled yet.
weft::NumericType selectorOf(const weft::Attribute& attribute);

/// What the pin shows until it is connected or set: `number` in every component of every type that
/// the pin may have now, so call it after the allowed types were set. Integers take the integer
/// part; quaternions and matrices stay the identity.
void setDefault(weft::NumericAttribute& pin, double number);

/// True when an update for `asked` has to compute `output`: it is the one asked for, or it is
/// wanted in this run.
inline bool isNeeded(const weft::Attribute& output, const weft::Attribute* asked) {
    return &output == asked || output.toBeEvaluated();
}

/// The larger of two element counts.
inline uint32_t largerSize(const weft::Value& a, const weft::Value& b) {
    return a.size() > b.size() ? a.size() : b.size();
}

/// Copies what `in` shows to `out`, unless `out` shows it already.
void copyUnlessPassedThrough(const weft::Attribute& in, const weft::Attribute& out);

/// Lets long work answer interrupts: counts characters and elements, and asks now and then.
class WorkMeter {
public:
    explicit WorkMeter(const weft::NetworkManager& manager) : manager_(manager) {}
    /// Throws when the run was interrupted.
    void add(uint64_t work) {
        done_ += work + 1;
        if (done_ < workBetweenPolls) return;
        done_ = 0;
        manager_.pollInterrupt();
    }

private:
    static constexpr uint64_t workBetweenPolls = uint64_t(1) << 20;

    const weft::NetworkManager& manager_;
    uint64_t done_ = 0;
};

} // namespace tidemark::sluice::graph
