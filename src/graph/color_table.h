// SPDX-License-Identifier: Apache-2.0
// Tables of colours that find a new, distinct colour for what they do not hold.
#pragma once

#include <bitset>
#include <cstdint>
#include <map>

#include "core/export.h"
#include "core/types.h"

namespace tidemark::sluice::graph {

/// Hue in degrees, saturation and value from 0 to 1.
struct Hsv {
    float hue;
    float saturation;
    float value;
};

SLUICE_API Hsv toHsv(const Color4<float>& color);
/// Opaque. `hue` may be any number of degrees.
SLUICE_API Color4<float> fromHsv(const Hsv& hsv);

/// The colour's hue with another saturation and value. Grey stays grey, with the mean of the two as
/// its value.
SLUICE_API Color4<float> recolored(const Color4<float>& color, float saturation, float value);

/// Which of 36 hues, ten degrees each, are in use.
class SLUICE_API HueBuckets {
public:
    static constexpr uint32_t count = 36;

    bool isFilled() const { return isFilled_; }
    bool hasFree() const { return !used_.all(); }
    void clear() { used_.reset(); }
    void enter(const Color4<float>& color);
    void setFilled() { isFilled_ = true; }
    /// A colour of a hue that was free, which it takes. `steps` is how often the generator behind
    /// the choice is stepped first. One must be free.
    Color4<float> take(uint32_t steps, float saturation, float value);

private:
    std::bitset<count> used_;
    bool isFilled_ = false;
};

/// Colours by key.
template <typename Key>
class ColorTable {
public:
    bool empty() const { return colors_.empty(); }
    void set(const Key& key, const Color4<float>& color) { colors_[key] = color; }
    /// Null when there is none.
    const Color4<float>* find(const Key& key) const {
        const auto found = colors_.find(key);
        return found == colors_.end() ? nullptr : &found->second;
    }

    /// A colour of a hue that the table does not use, as long as one of the 36 is left; then the
    /// hues start over. It depends on the size of the table and is not entered.
    Color4<float> makeColor(float saturation, float value) {
        if (!buckets_.isFilled() || !buckets_.hasFree()) {
            buckets_.clear();
            for (const auto& [key, color] : colors_) buckets_.enter(color);
            buckets_.setFilled();
        }
        if (!buckets_.hasFree()) buckets_.clear();
        return buckets_.take(static_cast<uint32_t>(colors_.size()), saturation, value);
    }

private:
    std::map<Key, Color4<float>> colors_;
    HueBuckets buckets_;
};

} // namespace tidemark::sluice::graph
