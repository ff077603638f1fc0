// SPDX-License-Identifier: Apache-2.0
// Sorting arrays of elements that have an order; for the sources of such ports.
#pragma once

#include "nodes/values/arrays/array_nodes.h"
#include "nodes/values/arrays/element_order.h"

namespace tidemark::sluice::graph {

template <typename Port>
ArraySort<Port>::ArraySort(weft::NetworkManager* manager, const TM_String& name, weft::Node* parent,
                           typename ArrayOperation<Port>::MakePort makePort)
    : ArrayOperation<Port>(manager, name, parent, makePort) {
    this->describe(
        "This node sorts the input 'array'. The 'old_to_new' array can be used as 'index' input of "
        "a GetArrayElement to sort a different array of the same size. The 'new_to_old' array can "
        "be used as 'index' input of a GetArrayElement to get the original array order if applied "
        "to the sorted one. to apply to other arrays of the same size.");
    array_ = this->addArrayInput("array", "The array to sort.");
    oldToNew_ = this->addIntegerOutput(
        "old to new", "For each element of the input array, its position in the sorted one.");
    newToOld_ = this->addIntegerOutput(
        "new to old", "For each element of the sorted array, its position in the input array.");
    outArray_ = this->addArrayOutput("out array", "The sorted array.");
    this->setAttributeAffectAllOutputsByAllInputs();
    this->addAttributeAllowedPassThrough(array_, outArray_);
}

template <typename Port>
void ArraySort<Port>::update(weft::Attribute* asked) {
    array_->pull();
    const auto& array = this->read(array_);
    auto* target = this->target(outArray_);
    if (!target) return;
    const bool inPlace = this->isInPlace(array_, outArray_);
    WorkMeter meter(*this->networkManager());
    withElementsOf(array, [&]<typename T>() {
        const std::span<const T> from = elementsOf<T>(array);
        Array<int32_t> order;
        orderElements(from, order, meter);
        writeElements<T>(*target, {&array}, [&](Array<T>& out) {
            sizeForWriting(out, from.size(), meter);
            for (uint32_t k = 0; k < order.size(); ++k) {
                out[k] = from[static_cast<uint32_t>(order[k])];
                meter.add(workOf(out[k]));
            }
        });
        this->written(outArray_);
        writeMaps(order, asked, inPlace);
    });
}

template <typename Port>
void ArraySort<Port>::writeMaps(const Array<int32_t>& order, const weft::Attribute* asked,
                                bool inPlace) {
    if (this->isWanted(newToOld_, asked, inPlace)) {
        this->writeIntegers(newToOld_, order.size(), [&](uint32_t k) { return order[k]; });
    }
    if (!this->isWanted(oldToNew_, asked, inPlace)) return;
    Array<int32_t> places;
    places.resizeForOverwrite(order.size());
    for (uint32_t k = 0; k < order.size(); ++k) {
        places[static_cast<uint32_t>(order[k])] = static_cast<int32_t>(k);
    }
    this->writeIntegers(oldToNew_, places.size(), [&](uint32_t i) { return places[i]; });
}

} // namespace tidemark::sluice::graph
