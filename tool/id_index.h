// SPDX-License-Identifier: Apache-2.0
// A hash table from ids to small numbers: one probe, nearly always, and no memory per entry.
#pragma once

#include <cstdint>
#include <vector>

namespace tidemark::tool {

class IdIndex {
public:
    static constexpr uint32_t none = 0xffffffffu;

    /// `none` for an id that is not there. 0 is no id.
    uint32_t find(int32_t id) const {
        for (uint32_t place = placeOf(id);; place = (place + 1) & mask_) {
            if (slots_[place].id == id) return slots_[place].number;
            if (slots_[place].id == 0) return none;
        }
    }

    /// For an id that is not there.
    void insert(int32_t id, uint32_t number) {
        if (2 * (count_ + 1) > slots_.size()) grow();
        place(id, number);
        ++count_;
    }

    std::size_t size() const { return count_; }
    void clear() { *this = IdIndex(); }

private:
    struct Slot {
        int32_t id = 0;
        uint32_t number = 0;
    };

    // Ids often lie a power of two apart; the upper bits of the product differ nevertheless.
    uint32_t placeOf(int32_t id) const {
        return (static_cast<uint32_t>(id) * 0x9e3779b1u) >> shift_;
    }

    void place(int32_t id, uint32_t number) {
        uint32_t place = placeOf(id);
        while (slots_[place].id != 0) place = (place + 1) & mask_;
        slots_[place] = {id, number};
    }

    void grow() {
        std::vector<Slot> old(2 * slots_.size());
        old.swap(slots_);
        mask_ = static_cast<uint32_t>(slots_.size() - 1);
        --shift_;
        for (const Slot& slot : old) {
            if (slot.id != 0) place(slot.id, slot.number);
        }
    }

    static constexpr uint32_t firstBits = 6;

    std::vector<Slot> slots_ = std::vector<Slot>(std::size_t(1) << firstBits);
    uint32_t mask_ = (1u << firstBits) - 1;
    uint32_t shift_ = 32 - firstBits;
    std::size_t count_ = 0;
};

} // namespace tidemark::tool
