// SPDX-License-Identifier: Apache-2.0
// The growable array of the whole system: a pointer, a 32-bit count and a 32-bit capacity.
#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <initializer_list>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

#include "core/export.h"
#include "core/limits.h"

namespace tidemark {

/// What a new element holds when an array grows by `resize`. Specialized for types whose default
/// constructor leaves them unset or whose neutral element is not zero.
template <typename T>
struct ElementDefault {
    static T value() { return T(); }
};

/// Thrown by an array that would have to leave its memory while several threads use it.
class SLUICE_API PinnedArray : public std::exception {
public:
    const char* what() const noexcept override;
};

/// Memory for the elements of an array, aligned to `alignment` or more. Large blocks lie on large
/// pages where the system has them, which makes walking through them a quarter faster.
SLUICE_API void* allocateElements(std::size_t bytes, std::size_t alignment);
/// Takes the same numbers as the call that it undoes.
SLUICE_API void freeElements(void* block, std::size_t bytes, std::size_t alignment) noexcept;

/// True for the types that values are made of, whose arrays are held against the process limits
/// (`core/limits.h`). The system's own lists, of pointers and names, are not.
template <typename T>
constexpr bool isPayloadElement = std::is_arithmetic_v<T>;

/// Growable array. Appending to a full array grows the capacity from `c` to `c + c/8 + 4`;
/// `resize` and `reserve` allocate exactly what is asked for. Removing keeps the order of the rest.
/// Reading by index has no bounds test. A request beyond the process limits or beyond memory throws
/// `std::bad_alloc` and leaves the array as it was.
///
/// While an array is pinned (see `pin`), what would move its elements to other memory throws
/// `PinnedArray` instead.
///
/// An array may start on a borrowed buffer that it does not free (see `borrow`); it moves to memory
/// of its own as soon as it needs more room. Copies never borrow.
template <typename T>
class Array {
public:
    using value_type = T;

    Array() = default;
    explicit Array(uint32_t count) { resize(count); }
    Array(std::initializer_list<T> items) {
        reserve(static_cast<uint32_t>(items.size()));
        for (const T& item : items) append(item);
    }
    Array(const Array& other) { assign(other.data_, other.count_); }
    Array(Array&& other) noexcept(true) { take(other); }
    Array& operator=(const Array& other) {
        if (this != &other) assign(other.data_, other.count_);
        return *this;
    }
    Array& operator=(Array&& other) {
        if (this != &other) {
            checkMovable();
            release();
            take(other);
        }
        return *this;
    }
    ~Array() { release(); }

    uint32_t size() const { return count_; }
    uint32_t capacity() const { return capacity_; }
    bool empty() const { return count_ == 0; }

    T* data() { return data_; }
    const T* data() const { return data_; }
    T* begin() { return data_; }
    T* end() { return data_ + count_; }
    const T* begin() const { return data_; }
    const T* end() const { return data_ + count_; }
    T& operator[](std::size_t index) { return data_[index]; }
    const T& operator[](std::size_t index) const { return data_[index]; }
    T& back() { return data_[count_ - 1]; }
    const T& back() const { return data_[count_ - 1]; }

    /// Adds at the end. `item` may be an element of this array.
    void append(const T& item) {
        if (count_ < capacity_) {
            new (data_ + count_) T(item);
        } else {
            T copy(item);
            reallocate(grownCapacity());
            new (data_ + count_) T(std::move(copy));
        }
        ++count_;
    }
    void append(T&& item) {
        if (count_ == capacity_) {
            T kept(std::move(item));
            reallocate(grownCapacity());
            new (data_ + count_) T(std::move(kept));
        } else {
            new (data_ + count_) T(std::move(item));
        }
        ++count_;
    }
    void push_back(const T& item) { append(item); }
    void push_back(T&& item) { append(std::move(item)); }

    /// Inserts before `index`, which must not exceed `size()`.
    void insert(uint32_t index, const T& item) {
        append(item);
        for (uint32_t i = count_ - 1; i > index; --i) std::swap(data_[i], data_[i - 1]);
    }

    /// Removes one element; the rest keep their order. `index` must be below `size()`.
    void removeAt(uint32_t index) {
        for (uint32_t i = index + 1; i < count_; ++i) data_[i - 1] = std::move(data_[i]);
        data_[--count_].~T();
    }

    /// Removes the first element equal to `item`; false when there is none.
    bool remove(const T& item) {
        const int64_t index = indexOf(item);
        if (index < 0) return false;
        removeAt(static_cast<uint32_t>(index));
        return true;
    }

    /// Position of the first element equal to `item`, or -1.
    int64_t indexOf(const T& item) const {
        for (uint32_t i = 0; i < count_; ++i) {
            if (data_[i] == item) return i;
        }
        return -1;
    }
    bool contains(const T& item) const { return indexOf(item) >= 0; }

    /// Makes the count `count`; new elements hold `ElementDefault<T>::value()`. The capacity
    /// becomes `count` exactly when it was smaller, and stays otherwise.
    void resize(uint32_t count) {
        if (count <= count_) return shrink(count);
        resize(count, ElementDefault<T>::value());
    }
    void resize(uint32_t count, const T& fill) {
        if (count <= count_) return shrink(count);
        if (count > capacity_) {
            const T kept(fill);
            reallocate(count);
            std::uninitialized_fill(data_ + count_, data_ + count, kept);
        } else {
            std::uninitialized_fill(data_ + count_, data_ + count, fill);
        }
        count_ = count;
    }

    /// Makes the count `count` without setting the new elements of a trivial type: the caller
    /// writes every one of them. Existing elements stay.
    void resizeForOverwrite(uint32_t count) requires std::is_trivially_copyable_v<T> {
        if (count > capacity_) reallocate(count);
        count_ = count;
    }

    /// Room for `capacity` elements in all, exactly; never shrinks.
    void reserve(uint32_t capacity) {
        if (capacity > capacity_) reallocate(capacity);
    }

    /// No elements; the capacity stays.
    void clear() { shrink(0); }

    /// No elements and no memory.
    void reset() {
        checkMovable();
        release();
        data_ = nullptr;
        count_ = capacity_ = borrowed_ = 0;
    }

    /// Pinned: threads that write different elements at the same time do no harm to each other.
    /// Copies are never pinned.
    void pin(bool pinned) { pinned_ = pinned; }
    bool isPinned() const { return pinned_ != 0; }

    /// Gives up what it holds and starts on `buffer`, which the caller owns, which holds `count`
    /// live elements and room for `capacity`, and which outlives this use of it.
    void borrow(T* buffer, uint32_t count, uint32_t capacity) {
        checkMovable();
        release();
        data_ = buffer;
        count_ = count;
        capacity_ = capacity;
        borrowed_ = 1;
    }
    bool isBorrowed() const { return borrowed_ != 0; }

    void swap(Array& other) {
        Array kept(std::move(other));
        other = std::move(*this);
        *this = std::move(kept);
    }

    friend bool operator==(const Array& a, const Array& b) {
        if (a.count_ != b.count_) return false;
        for (uint32_t i = 0; i < a.count_; ++i) {
            if (!(a.data_[i] == b.data_[i])) return false;
        }
        return true;
    }

private:
    uint32_t grownCapacity() const {
        const uint64_t grown = uint64_t(capacity_) + capacity_ / 8 + 4;
        constexpr uint64_t most = 0x7fffffff;
        if (capacity_ >= most) throw std::bad_alloc();
        return static_cast<uint32_t>(grown < most ? grown : most);
    }

    void shrink(uint32_t count) {
        std::destroy(data_ + count, data_ + count_);
        count_ = count;
    }

    void assign(const T* items, uint32_t count) {
        if (count > capacity_) {
            checkMovable();
            Array fresh;
            fresh.reallocate(count);
            std::uninitialized_copy_n(items, count, fresh.data_);
            fresh.count_ = count;
            release();
            take(fresh);
            return;
        }
        const uint32_t common = count < count_ ? count : count_;
        for (uint32_t i = 0; i < common; ++i) data_[i] = items[i];
        if (count > count_)
            std::uninitialized_copy_n(items + count_, count - count_, data_ + count_);
        if (count < count_) std::destroy(data_ + count, data_ + count_);
        count_ = count;
    }

    // A borrowed buffer belongs to the other array's owner, so its elements are moved one by one.
    void take(Array& other) {
        data_ = nullptr;
        count_ = capacity_ = borrowed_ = 0;
        if (other.borrowed_ || other.pinned_) {
            if (other.count_ == 0) return;
            reallocate(other.count_);
            std::uninitialized_move_n(other.data_, other.count_, data_);
            count_ = other.count_;
            return;
        }
        std::swap(data_, other.data_);
        count_ = other.count_;
        capacity_ = other.capacity_;
        other.count_ = other.capacity_ = 0;
    }

    void checkMovable() const {
        if (pinned_) [[unlikely]]
            throw PinnedArray();
    }

    void reallocate(uint32_t capacity) {
        checkMovable();
        if constexpr (isPayloadElement<T>) limits::checkElements(capacity, sizeof(T));
        T* fresh = static_cast<T*>(allocateElements(sizeof(T) * capacity, alignment));
        std::uninitialized_move_n(data_, count_, fresh);
        std::destroy_n(data_, count_);
        freeBuffer();
        data_ = fresh;
        capacity_ = capacity;
        borrowed_ = 0;
    }

    void release() {
        std::destroy_n(data_, count_);
        freeBuffer();
    }
    void freeBuffer() {
        if (!borrowed_ && data_) freeElements(data_, sizeof(T) * capacity_, alignment);
    }

    static constexpr std::size_t alignment = alignof(T) > alignof(std::max_align_t)
                                                 ? alignof(T)
                                                 : alignof(std::max_align_t);

    T* data_ = nullptr;
    uint32_t count_ : 31 = 0;
    uint32_t pinned_ : 1 = 0;
    uint32_t capacity_ : 31 = 0;
    uint32_t borrowed_ : 1 = 0;
};

/// The same over pointers that it does not own.
template <typename T>
using ArrayOfPtr = Array<T*>;

} // namespace tidemark

namespace weft {
using tidemark::Array;
using tidemark::ArrayOfPtr;
} // namespace weft
