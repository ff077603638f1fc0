// SPDX-License-Identifier: Apache-2.0
// Pins and updates of the array operations that look for elements; part of array_nodes_impl.h.
#pragma once

#include "nodes/values/arrays/array_nodes.h"
#include "nodes/values/arrays/array_selection.h"
#include "nodes/values/arrays/element_sets.h"

namespace tidemark::sluice::graph {

// Searching.

template <typename Port>
ArrayFindElement<Port>::ArrayFindElement(weft::NetworkManager* manager, const TM_String& name,
                                         weft::Node* parent,
                                         typename ArrayOperation<Port>::MakePort makePort)
    : ArrayOperation<Port>(manager, name, parent, makePort) {
    this->describe("This node returns the first position of appearance of the input 'element' "
                   "within the input 'array'. If the array does not contain the element, -1 is "
                   "returned.");
    array_ = this->addArrayInput("array", "The array to search.");
    element_ = this->addArrayInput("element", "The value to find in the input array");
    startIndex_ =
        this->addIntegerInput("start index", "The first index to search the element from", 0);
    index_ = this->addIntegerOutput("index", "The position of each value, or -1.");
    this->setAttributeAffectAllOutputsByAllInputs();
}

template <typename Port>
void ArrayFindElement<Port>::update(weft::Attribute*) {
    array_->pull();
    element_->pull();
    startIndex_->pull();
    const auto& array = this->read(array_);
    const auto& element = this->read(element_);
    const std::span<const int32_t> starts = this->integers(startIndex_);
    WorkMeter meter(*this->networkManager());
    withElementsOf(array, [&]<typename T>() {
        const std::span<const T> wanted = elementsOf<T>(element);
        ElementFinder<T> finder(elementsOf<T>(array), wanted.size(), meter);
        this->writeIntegers(index_, wanted.size(), [&](uint32_t i) {
            const int32_t start =
                starts.empty() ? 0 : starts[std::min<std::size_t>(i, starts.size() - 1)];
            meter.add(workOf(wanted[i]));
            return static_cast<int32_t>(finder.find(wanted[i], static_cast<uint32_t>(start)));
        });
    });
}

template <typename Port>
ArrayFindAllElementIndices<Port>::ArrayFindAllElementIndices(
    weft::NetworkManager* manager, const TM_String& name, weft::Node* parent,
    typename ArrayOperation<Port>::MakePort makePort)
    : ArrayOperation<Port>(manager, name, parent, makePort) {
    this->describe("This node returns all positions in the input 'array', which fit to the input "
                   "'element' values. ");
    array_ = this->addArrayInput("array", "The array to search.");
    element_ = this->addArrayInput("element", "The value to find in the input array");
    index_ = this->addIntegerOutput("index", "The positions, in ascending order.");
    mask_ = this->template addOutput<BitArrayAttribute>(
        "mask", "A bit for each element of the array, set where it fits.");
    this->setAttributeAffectAllOutputsByAllInputs();
}

namespace array_nodes {

/// A bit for each element, set when it is one of `members`.
template <typename T>
Array<uint32_t> membersIn(std::span<const T> elements, std::span<const T> members,
                          WorkMeter& meter) {
    const Membership<T> set(members, meter);
    Array<uint32_t> words;
    words.resize(wordsFor(elements.size()), 0);
    for (std::size_t i = 0; i < elements.size(); ++i) {
        words[i / bitsPerWord] |= uint32_t(set.contains(elements[i])) << i % bitsPerWord;
        meter.add(workOf(elements[i]));
    }
    return words;
}

} // namespace array_nodes

template <typename Port>
void ArrayFindAllElementIndices<Port>::update(weft::Attribute* asked) {
    array_->pull();
    element_->pull();
    const auto& array = this->read(array_);
    const auto& element = this->read(element_);
    WorkMeter meter(*this->networkManager());
    withElementsOf(array, [&]<typename T>() {
        const std::span<const T> from = elementsOf<T>(array);
        const auto count = static_cast<uint32_t>(from.size());
        const Array<uint32_t> found = array_nodes::membersIn(from, elementsOf<T>(element), meter);
        if (isNeeded(*index_, asked)) {
            uint32_t next = 0;
            this->writeIntegers(index_, countSetBits(found.data(), count), [&](uint32_t) {
                while (!array_nodes::isKept(found, next)) ++next;
                return static_cast<int32_t>(next++);
            });
        }
        if (isNeeded(*mask_, asked)) {
            array_nodes::writeMask(*mask_, found, count);
            this->written(mask_);
        }
    });
}

// Removing.

template <typename Port>
void ArrayRemoval<Port>::addArray() {
    array_ = this->addArrayInput("array", "The array to remove from.");
}

template <typename Port>
void ArrayRemoval<Port>::addOutArray(const char* help) {
    outArray_ = this->addArrayOutput("out array", help);
    this->addAttributeAllowedPassThrough(array_, outArray_);
}

template <typename Port>
void ArrayRemoval<Port>::addMask() {
    mask_ = this->template addOutput<BitArrayAttribute>(
        "mask", "A bit for each element of the input array, 0 for a removed one.");
}

template <typename Port>
template <typename T>
void ArrayRemoval<Port>::writeRemaining(std::span<const T> from, const Array<uint32_t>& kept,
                                        std::initializer_list<const weft::Value*> read,
                                        bool wantsMask, WorkMeter& meter) {
    const auto count = static_cast<uint32_t>(from.size());
    writeElements<T>(*this->target(outArray_), read,
                     [&](Array<T>& out) { array_nodes::writeKept(from, kept.data(), out, meter); });
    this->written(outArray_);
    if (!wantsMask) return;
    array_nodes::writeMask(*mask_, kept, count);
    this->written(mask_);
}

template <typename Port>
ArrayRemoveElement<Port>::ArrayRemoveElement(weft::NetworkManager* manager, const TM_String& name,
                                             weft::Node* parent,
                                             typename ArrayOperation<Port>::MakePort makePort)
    : ArrayRemoval<Port>(manager, name, parent, makePort) {
    this->describe("This node removes all elements of the 'by_value' from the input 'array'. The "
                   "returned mask has the same size as the input 'array' and is set to 0 at "
                   "removed positions.");
    this->addArray();
    element_ = this->addArrayInput("element",
                                   "The value to remove all its instances from the input array");
    this->addOutArray("The elements that are left, in order.");
    this->addMask();
    this->setAttributeAffectAllOutputsByAllInputs();
}

template <typename Port>
void ArrayRemoveElement<Port>::update(weft::Attribute* asked) {
    array_->pull();
    element_->pull();
    const auto& array = this->read(array_);
    const auto& element = this->read(element_);
    if (!this->target(outArray_)) return;
    const bool wantsMask = this->isWanted(mask_, asked, this->isInPlace(array_, outArray_));
    WorkMeter meter(*this->networkManager());
    withElementsOf(array, [&]<typename T>() {
        const std::span<const T> from = elementsOf<T>(array);
        Array<uint32_t> kept = array_nodes::membersIn(from, elementsOf<T>(element), meter);
        for (uint32_t& word : kept) word = ~word;
        this->writeRemaining(from, kept, {&array, &element}, wantsMask, meter);
    });
}

template <typename Port>
ArrayRemoveIndex<Port>::ArrayRemoveIndex(weft::NetworkManager* manager, const TM_String& name,
                                         weft::Node* parent,
                                         typename ArrayOperation<Port>::MakePort makePort)
    : ArrayRemoval<Port>(manager, name, parent, makePort) {
    this->describe("This node removes all input array positions by the 'index' input. ");
    this->addArray();
    index_ = this->addIntegerInput("index", "The positions of the input array to remove", 0);
    this->addOutArray("The elements that are left, in order.");
    this->addMask();
    this->setAttributeAffectAllOutputsByAllInputs();
}

template <typename Port>
void ArrayRemoveIndex<Port>::update(weft::Attribute* asked) {
    array_->pull();
    index_->pull();
    const auto& array = this->read(array_);
    if (!this->target(outArray_)) return;
    const bool wantsMask = this->isWanted(mask_, asked, this->isInPlace(array_, outArray_));
    WorkMeter meter(*this->networkManager());
    withElementsOf(array, [&]<typename T>() {
        const std::span<const T> from = elementsOf<T>(array);
        const auto count = static_cast<uint32_t>(from.size());
        Array<uint32_t> kept = array_nodes::allKept(count);
        for (const int32_t index : this->integers(index_)) {
            if (static_cast<uint32_t>(index) < count) {
                array_nodes::drop(kept, static_cast<uint32_t>(index));
            } else {
                this->reportIndex(index);
            }
            meter.add(0);
        }
        this->writeRemaining(from, kept, {&array}, wantsMask, meter);
    });
}

template <typename Port>
ArrayRemoveRepeatedElements<Port>::ArrayRemoveRepeatedElements(
    weft::NetworkManager* manager, const TM_String& name, weft::Node* parent,
    typename ArrayOperation<Port>::MakePort makePort)
    : ArrayRemoval<Port>(manager, name, parent, makePort) {
    this->describe(
        "This node removes all repetitions of elements from the input 'array'. The 'new_to_old' "
        "array can be used as an 'index' input for a GetArrayElement-Node to restore the original "
        "array. The returned mask has the same size as the input 'array' and is set to 0 at "
        "removed positions.");
    this->addArray();
    newToOld_ = this->addIntegerOutput(
        "new to old", "For each element of the input array, its position in the output array.");
    this->addMask();
    this->addOutArray("The first of each of the elements, in order.");
    this->setAttributeAffectAllOutputsByAllInputs();
}

template <typename Port>
void ArrayRemoveRepeatedElements<Port>::update(weft::Attribute* asked) {
    array_->pull();
    const auto& array = this->read(array_);
    if (!this->target(outArray_)) return;
    const bool inPlace = this->isInPlace(array_, outArray_);
    const bool wantsMask = this->isWanted(mask_, asked, inPlace);
    const bool wantsPlaces = this->isWanted(newToOld_, asked, inPlace);
    WorkMeter meter(*this->networkManager());
    withElementsOf(array, [&]<typename T>() {
        const std::span<const T> from = elementsOf<T>(array);
        const auto count = static_cast<uint32_t>(from.size());
        Array<uint32_t> kept = array_nodes::allKept(count);
        Array<int32_t> places; // of the kept elements, by old position
        places.resizeForOverwrite(count);
        ElementSet<T> set(from.data(), count);
        int32_t next = 0;
        for (uint32_t i = 0; i < count; ++i) {
            const uint32_t first = set.add(i);
            if (first == i) {
                places[i] = next++;
            } else {
                places[i] = places[first];
                array_nodes::drop(kept, i);
            }
            meter.add(workOf(from[i]));
        }
        this->writeRemaining(from, kept, {&array}, wantsMask, meter);
        if (!wantsPlaces) return;
        this->writeIntegers(newToOld_, count, [&](uint32_t i) { return places[i]; });
    });
}

} // namespace tidemark::sluice::graph
