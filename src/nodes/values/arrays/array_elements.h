// SPDX-License-Identifier: Apache-2.0
// How the array operations see the values of different element types: as spans and arrays of `T`.
//
// A port class joins by a specialization of `ArrayPort`; see those below. All ports of pointers
// share one: their elements are `void*`.
#pragma once

#include <algorithm>
#include <array>
#include <initializer_list>
#include <new>
#include <span>

#include "core/pointer_value.h"
#include "core/string_value.h"
#include "nodes/values/element_map.h"
#include "nodes/values/value_tools.h"

namespace tidemark::sluice::graph {

/// Gives for a port class: `Value`, the class of its values; `read`, what a reader sees; `target`,
/// where an output writes, or null.
template <typename Port>
struct ArrayPort;

template <>
struct ArrayPort<weft::NumericAttribute> {
    using Value = weft::Numeric;
    static const Value& read(const weft::NumericAttribute& port) { return port.numeric(); }
    static Value* target(const weft::NumericAttribute& port) { return port.numericTarget(); }
};

template <>
struct ArrayPort<weft::StringAttribute> {
    using Value = weft::StringValue;
    static const Value& read(const weft::StringAttribute& port) { return port.strings(); }
    static Value* target(const weft::StringAttribute& port) { return port.stringsTarget(); }
};

template <>
struct ArrayPort<weft::PointerAttribute> {
    using Value = weft::PointerValueBase;
    static const Value& read(const weft::PointerAttribute& port) { return port.pointers(); }
    static Value* target(const weft::PointerAttribute& port) { return port.pointersTarget(); }
};

template <>
struct ArrayPort<weft::BitArrayAttribute> {
    using Value = weft::BitArrayValue;
    static const Value& read(const weft::BitArrayAttribute& port) { return port.bits(); }
    static Value* target(const weft::BitArrayAttribute& port) { return port.bitsTarget(); }
};

/// The port class whose operations a port of class `Attr` shares.
template <typename Attr>
using ArrayPortOf = std::conditional_t<std::is_base_of_v<weft::PointerAttribute, Attr>,
                                       weft::PointerAttribute, Attr>;

// Elements. `elementsOf<T>` of numbers stands in element_map.h.

template <typename T>
std::span<const T> elementsOf(const weft::StoredValue<T>& value) {
    return {value.values().data(), value.values().size()};
}
template <typename T>
Array<T>& refElements(weft::Numeric& value) {
    return value.refValues<T>();
}
template <typename T>
Array<T>& refElements(weft::StoredValue<T>& value) {
    return value.refValues();
}

/// Calls `visit.template operator()<T>()` with the element type of `value`; nothing for numbers
/// whose type is open.
template <typename Visit>
void withElementsOf(const weft::Numeric& value, Visit visit) {
    weft::withElementType(value.type(), visit);
}
template <typename T, typename Visit>
void withElementsOf(const weft::StoredValue<T>&, Visit visit) {
    visit.template operator()<T>();
}

/// The value takes its size over from its array of `T`.
template <typename T>
void elementsWritten(weft::Numeric& value) {
    value.setSize(value.values<T>().size());
}
template <typename T>
void elementsWritten(weft::StoredValue<T>&) {}

// Writing.

/// Makes room for `count` elements, against the process limits. What stood there stays; new
/// elements of trivial types are not set.
template <typename T>
void sizeForWriting(Array<T>& array, uint64_t count, WorkMeter& meter) {
    if (count > array.capacity()) {
        constexpr uint64_t most = 0x7fffffff;
        if (count > most) throw std::bad_alloc();
        limits::checkElements(count, sizeof(T));
    }
    if constexpr (std::is_trivially_copyable_v<T>) {
        array.resizeForOverwrite(static_cast<uint32_t>(count));
    } else {
        array.reserve(static_cast<uint32_t>(count));
        const uint64_t old = array.size();
        if (count < old) array.resize(static_cast<uint32_t>(count));
        if (count > old) {
            inPieces(count - old, meter, [&](uint64_t, uint64_t end) {
                array.resize(static_cast<uint32_t>(old + end));
            });
        }
    }
}

/// Copies `in` to `out` and answers its end there. `out` may lie in front of `in` in one array.
template <typename T>
T* copyElements(std::span<const T> in, T* out, WorkMeter& meter) {
    inPieces(in.size(), meter, [&](uint64_t first, uint64_t end) {
        std::copy(in.begin() + first, in.begin() + end, out + first);
        if constexpr (std::is_same_v<T, TM_String>) {
            for (uint64_t i = first; i < end; ++i) meter.add(workOf(in[i]));
        }
    });
    return out + in.size();
}

/// Copies `in` to `out` from its end to its beginning. The two do not overlap.
template <typename T>
void reverseElements(std::span<const T> in, T* out) {
    const T* last = in.data() + in.size();
    if constexpr (std::is_trivially_copyable_v<T>) {
        // Runs of a fixed length, apart from both arrays, become vector instructions.
        constexpr std::size_t run = 16;
        std::array<T, run> turned;
        for (std::size_t left = in.size(); left >= run; left -= run) {
            for (std::size_t k = 0; k < run; ++k) turned[k] = *(last - 1 - k);
            out = std::copy(turned.begin(), turned.end(), out);
            last -= run;
        }
    }
    std::reverse_copy(in.data(), last, out);
}

template <typename T>
void fillElements(T* begin, T* end, const T& element, WorkMeter& meter) {
    inPieces(static_cast<uint64_t>(end - begin), meter, [&](uint64_t first, uint64_t last) {
        std::fill(begin + first, begin + last, element);
    });
}

/// Lets `write` fill the array of `target`: its own array, or a fresh one that then takes the own
/// one's place when `target` is among the values that `write` reads. What `write` leaves by an
/// exception holds no elements.
template <typename T, typename Value, typename Write>
void writeElements(Value& target, std::initializer_list<const weft::Value*> read, Write write) {
    Array<T>& own = refElements<T>(target);
    bool isRead = false;
    for (const weft::Value* value : read) isRead = isRead || value == &target;
    if (!isRead) {
        try {
            write(own);
        } catch (...) {
            own.clear();
            elementsWritten<T>(target);
            throw;
        }
    } else {
        Array<T> made;
        write(made);
        if (own.isPinned()) {
            own = made;
        } else {
            own = std::move(made);
        }
    }
    elementsWritten<T>(target);
}

} // namespace tidemark::sluice::graph
