// SPDX-License-Identifier: Apache-2.0
// Finding the named items of a list by name: a hash over pointers to the items, which keep their
// own names. Items may share a name; the first in list order is the one that is found.
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "core/array.h"
#include "core/text.h"

namespace tidemark {

/// Hash from names to the items of one list, which it does not own. `Traits` tells about an item:
///
///     static std::string_view name(const T& item);
///     static uint32_t order(const T& item);   // rises along the list
///
/// The name and the order stamp of an item must not change while the index holds it: erase it,
/// change it, insert it (`rename` does all three).
template <typename T, typename Traits>
class NameIndex {
public:
    NameIndex() = default;
    NameIndex(const NameIndex&) = delete;
    NameIndex& operator=(const NameIndex&) = delete;
    ~NameIndex() { clear(); }

    /// `item` must not be null nor in the index.
    void insert(T* item) {
        if ((uint64_t(used_) + 1) * 4 > uint64_t(slots_.size()) * 3) grow();
        const std::string_view name = Traits::name(*item);
        const uint32_t hash = hashOf(name);
        Slot& slot = slots_[slotFor(name, hash)];
        if (slot.word) {
            addEqual(slot, item);
        } else {
            slot = Slot{hash, wordOf(item)};
            ++used_;
        }
    }

    /// The first in list order of the items with that name; null when there is none.
    T* find(std::string_view name) const {
        if (used_ == 0) return nullptr;
        const Slot& slot = slots_[slotFor(name, hashOf(name))];
        return slot.word ? firstOf(slot.word) : nullptr;
    }

    /// False when the index does not hold `item`.
    bool erase(T* item) {
        if (used_ == 0) return false;
        const std::string_view name = Traits::name(*item);
        const uint32_t at = slotFor(name, hashOf(name));
        Slot& slot = slots_[at];
        if (!slot.word) return false;
        if (isGroup(slot.word)) return removeEqual(slot, item);
        if (firstOf(slot.word) != item) return false;
        closeGap(at);
        --used_;
        return true;
    }

    /// Calls `change()`, which may give the item another name or order stamp.
    template <typename Change>
    void rename(T* item, Change&& change) {
        const bool held = erase(item);
        change();
        if (held) insert(item);
    }

    /// Number of different names.
    uint32_t countOfNames() const { return used_; }

    void clear() {
        for (const Slot& slot : slots_) {
            if (isGroup(slot.word)) delete groupOf(slot.word);
        }
        slots_.reset();
        used_ = 0;
    }

private:
    // A word is 0, or a pointer to the only item of a name, or, with bit 0 set, a pointer to the
    // group of items that share a name, in list order and two at least.
    using Group = Array<T*>;
    struct __attribute__((packed, aligned(4))) Slot {
        uint32_t hash = 0;
        uintptr_t word = 0;
    };

    static uint32_t hashOf(std::string_view name) {
        const uint64_t hash = std::hash<std::string_view>()(name);
        return static_cast<uint32_t>(hash ^ (hash >> 32));
    }
    static bool isGroup(uintptr_t word) { return (word & 1) != 0; }
    static Group* groupOf(uintptr_t word) { return reinterpret_cast<Group*>(word - 1); }
    static T* firstOf(uintptr_t word) {
        return isGroup(word) ? (*groupOf(word))[0] : reinterpret_cast<T*>(word);
    }
    static uintptr_t wordOf(T* item) {
        static_assert(alignof(T) > 1, "bit 0 of a pointer tells groups apart");
        return reinterpret_cast<uintptr_t>(item);
    }

    uint32_t next(uint32_t at) const { return (at + 1) & (slots_.size() - 1); }

    // The slot that holds `name`, or the free one where it belongs. There is always a free one.
    uint32_t slotFor(std::string_view name, uint32_t hash) const {
        uint32_t at = hash & (slots_.size() - 1);
        while (slots_[at].word) {
            if (slots_[at].hash == hash && Traits::name(*firstOf(slots_[at].word)) == name) break;
            at = next(at);
        }
        return at;
    }

    void grow() {
        constexpr uint32_t smallest = 32;
        Array<Slot> old(slots_.empty() ? smallest : slots_.size() * 2);
        old.swap(slots_);
        for (const Slot& slot : old) {
            if (!slot.word) continue;
            uint32_t at = slot.hash & (slots_.size() - 1);
            while (slots_[at].word) at = next(at);
            slots_[at] = slot;
        }
    }

    // Entries behind the freed slot move up when the walk from their own place to them passes it.
    void closeGap(uint32_t gap) {
        const uint32_t mask = slots_.size() - 1;
        for (uint32_t at = next(gap); slots_[at].word; at = next(at)) {
            const uint32_t home = slots_[at].hash & mask;
            if (((at - home) & mask) < ((at - gap) & mask)) continue;
            slots_[gap] = slots_[at];
            gap = at;
        }
        slots_[gap] = Slot();
    }

    static bool standsBefore(const T* a, const T* b) {
        return Traits::order(*a) < Traits::order(*b);
    }

    static void addEqual(Slot& slot, T* item) {
        if (!isGroup(slot.word)) {
            auto fresh = std::make_unique<Group>();
            fresh->append(firstOf(slot.word));
            slot.word = reinterpret_cast<uintptr_t>(fresh.release()) | 1;
        }
        Group& group = *groupOf(slot.word);
        T** place = std::upper_bound(group.begin(), group.end(), item, standsBefore);
        group.insert(static_cast<uint32_t>(place - group.begin()), item);
    }

    static bool removeEqual(Slot& slot, T* item) {
        Group& group = *groupOf(slot.word);
        T** place = std::lower_bound(group.begin(), group.end(), item, standsBefore);
        if (place == group.end() || *place != item) return false;
        group.removeAt(static_cast<uint32_t>(place - group.begin()));
        if (group.size() == 1) {
            T* last = group[0];
            delete &group;
            slot.word = wordOf(last);
        }
        return true;
    }

    Array<Slot> slots_; // none, or a power of two
    uint32_t used_ = 0;
};

/// A `NameIndex` that comes into being when a list grows long and a name is asked for: short lists
/// are searched. One pointer while there is no index. The list itself is the caller's and is passed
/// in, in order; tell of every change to it.
template <typename T, typename Traits>
class LazyNameIndex {
public:
    /// Lists of this many items are searched.
    static constexpr uint32_t longestSearchedList = 16;

    /// The first item of that name in `items`; null when there is none.
    T* find(std::string_view name, const ArrayOfPtr<T>& items) {
        if (!built_ && items.size() <= longestSearchedList) return search(name, items);
        if (!built_) build(items);
        return built_->index.find(name);
    }

    /// After `item` has entered the list, with its order stamp set.
    void added(T* item) {
        if (built_) built_->index.insert(item);
    }

    /// Before `item` leaves the list, with its name and stamp as they were.
    void removing(T* item) {
        if (!built_) return;
        built_->index.erase(item);
        built_->forgetHint();
    }

    /// Calls `change()`, which may give an item of the list another name.
    template <typename Change>
    void rename(T* item, Change&& change) {
        if (!built_) return change();
        built_->forgetHint();
        built_->index.rename(item, change);
    }

    /// Drops the index: the list was emptied or put in another order.
    void forget() { built_.reset(); }

    /// How a number is put behind a name: "name1".
    static TM_String withNumber(std::string_view stem, uint64_t number) {
        return TM_String(stem) + std::to_string(number);
    }

    /// `name` when no item bears it, otherwise the first free one of name1, name2, ... as
    /// `numbered` writes them, which must be the same for every call on one list.
    TM_String freeName(std::string_view name, const ArrayOfPtr<T>& items,
                       TM_String (*numbered)(std::string_view, uint64_t) = withNumber) {
        if (!find(name, items)) return TM_String(name);
        uint64_t number = built_ && built_->stem == name ? built_->number : 1;
        TM_String candidate = numbered(name, number);
        while (find(candidate, items)) candidate = numbered(name, ++number);
        if (built_) {
            built_->stem = name;
            built_->number = number;
        }
        return candidate;
    }

private:
    // The hint: stem1, stem2, ... below `number` are known to be taken.
    struct Built {
        NameIndex<T, Traits> index;
        TM_String stem;
        uint64_t number = 1;

        void forgetHint() {
            stem.clear();
            number = 1;
        }
    };

    static T* search(std::string_view name, const ArrayOfPtr<T>& items) {
        for (T* item : items) {
            if (Traits::name(*item) == name) return item;
        }
        return nullptr;
    }

    void build(const ArrayOfPtr<T>& items) {
        auto fresh = std::make_unique<Built>();
        for (T* item : items) fresh->index.insert(item);
        built_ = std::move(fresh);
    }

    std::unique_ptr<Built> built_;
};

} // namespace tidemark
