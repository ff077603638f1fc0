// SPDX-License-Identifier: Apache-2.0
// A table from ids to objects, ordered by id, made for ids that are handed out in rising order:
// adding a new highest id and finding an id cost a constant as long as few were erased.
#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "core/array.h"

namespace tidemark {

/// Maps ids to pointers that it does not own; 12 bytes per entry. Erasing leaves a hole; holes at
/// the end go at once, the rest when they are half of the table.
///
/// Neither insert nor erase while iterating with `begin` and `end`. A walk that changes the table
/// uses `firstFrom`:
///
///     for (auto e = table.firstFrom(0); e.value; e = table.firstFrom(e.id + 1)) ...
///
/// (as long as the highest 32-bit number is not an id).
template <typename T>
class IdTable {
public:
    struct Entry {
        uint32_t id = 0;
        T* value = nullptr;
    };

    class Iterator {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = Entry;
        using difference_type = std::ptrdiff_t;
        using pointer = const Entry*;
        using reference = Entry;

        Iterator(const IdTable* table, uint32_t index) : table_(table), index_(index) { skip(); }
        Entry operator*() const { return table_->entryAt(index_); }
        Iterator& operator++() {
            ++index_;
            skip();
            return *this;
        }
        Iterator operator++(int) {
            Iterator kept = *this;
            ++*this;
            return kept;
        }
        bool operator==(const Iterator& other) const { return index_ == other.index_; }

    private:
        void skip() { index_ = table_->skipHoles(index_); }

        const IdTable* table_;
        uint32_t index_;
    };

    /// Enters `value`, which must not be null, in place of what the id meant before. An id above
    /// all others costs a constant, any other new id moves what lies above it.
    void insert(uint32_t id, T* value) {
        if (slots_.empty() || id > slots_.back().id) {
            slots_.append(Slot{id, value});
            ++live_;
            return;
        }
        const uint32_t index = lowerBound(id);
        if (slots_[index].id != id) {
            slots_.insert(index, Slot{id, value});
            ++live_;
            return;
        }
        if (!slots_[index].value) ++live_;
        slots_[index].value = value;
    }

    /// Null when the id is unknown.
    T* find(uint32_t id) const {
        const uint32_t index = lowerBound(id);
        return holds(index, id) ? slots_[index].value : nullptr;
    }
    bool contains(uint32_t id) const { return find(id) != nullptr; }

    /// False when the id is unknown.
    bool erase(uint32_t id) {
        const uint32_t index = lowerBound(id);
        if (!holds(index, id) || !slots_[index].value) return false;
        slots_[index].value = nullptr;
        if (--live_ == 0) {
            slots_.reset();
            return true;
        }
        uint32_t kept = slots_.size();
        while (!slots_[kept - 1].value) --kept;
        slots_.resize(kept);
        if (live_ < kept / 2) compact();
        return true;
    }

    /// Number of entries.
    uint32_t size() const { return live_; }
    bool empty() const { return live_ == 0; }

    /// The highest id in the table; 0 when it is empty.
    uint32_t lastId() const { return slots_.empty() ? 0 : slots_.back().id; }

    /// No entries and no memory.
    void clear() {
        slots_.reset();
        live_ = 0;
    }

    /// The entry with the lowest id that is not below `id`; its value is null when there is none.
    Entry firstFrom(uint32_t id) const {
        const uint32_t index = skipHoles(lowerBound(id));
        return index < slots_.size() ? entryAt(index) : Entry{};
    }

    Iterator begin() const { return Iterator(this, 0); }
    Iterator end() const { return Iterator(this, slots_.size()); }

private:
    // Packed: a large graph has ten million of these.
    struct __attribute__((packed, aligned(4))) Slot {
        uint32_t id = 0;
        T* value = nullptr; // null is a hole
    };

    bool holds(uint32_t index, uint32_t id) const {
        return index < slots_.size() && slots_[index].id == id;
    }
    Entry entryAt(uint32_t index) const { return {slots_[index].id, slots_[index].value}; }

    // Ids are distinct and rising, so an id never stands further from the front than its distance
    // from the first id; as long as none is missing it stands exactly there.
    uint32_t lowerBound(uint32_t id) const {
        if (slots_.empty() || id <= slots_[0].id) return 0;
        const uint32_t distance = id - slots_[0].id;
        if (holds(distance, id)) return distance;
        const Slot* end = slots_.data() + std::min(distance, slots_.size());
        const auto below = [](const Slot& slot, uint32_t wanted) { return slot.id < wanted; };
        const Slot* found = std::lower_bound(slots_.data(), end, id, below);
        return static_cast<uint32_t>(found - slots_.data());
    }

    uint32_t skipHoles(uint32_t index) const {
        while (index < slots_.size() && !slots_[index].value) ++index;
        return index;
    }

    void compact() {
        uint32_t kept = 0;
        for (uint32_t i = 0; i < slots_.size(); ++i) {
            if (slots_[i].value) slots_[kept++] = slots_[i];
        }
        slots_.resize(kept);
    }

    Array<Slot> slots_;
    uint32_t live_ = 0;
};

} // namespace tidemark
