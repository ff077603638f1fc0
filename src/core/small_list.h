// SPDX-License-Identifier: Apache-2.0
// A list of plain records that holds its first entry without a heap block. Most lists of the
// network have none or one entry, and a graph has many millions of lists.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <new>
#include <type_traits>

namespace tidemark {

/// Ordered list of trivially copyable records, 8 bytes plus the larger of one record and a pointer.
/// Removing keeps the order and looks from the end, so that tearing down in reverse is linear.
template <typename T>
class SmallList {
    static_assert(std::is_trivially_copyable_v<T>);

public:
    SmallList() : capacity_(1) {}
    SmallList(const SmallList& other) : capacity_(1) { append(other.begin(), other.size()); }
    SmallList(SmallList&& other) noexcept : capacity_(1) { swap(other); }
    SmallList& operator=(SmallList other) noexcept {
        swap(other);
        return *this;
    }
    ~SmallList() {
        if (onHeap()) delete[] many_;
    }

    uint32_t size() const { return count_; }
    bool empty() const { return count_ == 0; }
    T* begin() { return onHeap() ? many_ : &one_; }
    T* end() { return begin() + count_; }
    const T* begin() const { return onHeap() ? many_ : &one_; }
    const T* end() const { return begin() + count_; }
    T& operator[](std::size_t index) { return begin()[index]; }
    const T& operator[](std::size_t index) const { return begin()[index]; }
    const T& back() const { return begin()[count_ - 1]; }

    void append(T item) {
        if (count_ == capacity_) grow(capacity_ * 2);
        begin()[count_++] = item;
    }
    void insert(uint32_t index, T item) {
        append(item);
        std::rotate(begin() + index, end() - 1, end());
    }
    void removeAt(uint32_t index) {
        T* items = begin();
        std::memmove(static_cast<void*>(items + index), items + index + 1,
                     (count_ - index - 1) * sizeof(T));
        --count_;
    }
    /// Removes the last entry equal to `item`; false when there is none.
    bool remove(const T& item) {
        const int64_t index = indexOf(item);
        if (index < 0) return false;
        removeAt(static_cast<uint32_t>(index));
        return true;
    }
    /// Position of the last entry equal to `item`, or -1.
    int64_t indexOf(const T& item) const {
        const T* items = begin();
        for (uint32_t i = count_; i > 0; --i) {
            if (items[i - 1] == item) return i - 1;
        }
        return -1;
    }
    bool contains(const T& item) const { return indexOf(item) >= 0; }

    /// Drops the entries from `count` on.
    void truncate(uint32_t count) { count_ = count; }
    void clear() {
        if (onHeap()) delete[] many_;
        capacity_ = 1;
        count_ = 0;
    }
    void swap(SmallList& other) noexcept {
        unsigned char kept[sizeof(SmallList)];
        std::memcpy(kept, static_cast<void*>(this), sizeof(SmallList));
        std::memcpy(static_cast<void*>(this), static_cast<void*>(&other), sizeof(SmallList));
        std::memcpy(static_cast<void*>(&other), kept, sizeof(SmallList));
    }

private:
    bool onHeap() const { return capacity_ > 1; }
    void append(const T* items, uint32_t count) {
        if (count > capacity_) grow(count);
        std::copy_n(items, count, begin() + count_);
        count_ += count;
    }
    void grow(uint32_t capacity) {
        T* fresh = new T[capacity];
        std::copy_n(begin(), count_, fresh);
        if (onHeap()) delete[] many_;
        many_ = fresh;
        capacity_ = capacity;
    }

    union {
        T one_;
        T* many_;
    };
    uint32_t count_ = 0;
    uint32_t capacity_;
};

} // namespace tidemark
