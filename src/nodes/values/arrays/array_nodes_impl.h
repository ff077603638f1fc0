// SPDX-License-Identifier: Apache-2.0
// Pins and updates of the array operations. Included by one source for each class of ports, which
// ends with `SLUICE_INSTANTIATE_ARRAY_NODES`.
#pragma once

#include <algorithm>
#include <bit>
#include <new>

#include "nodes/values/arrays/array_nodes.h"
#include "nodes/values/arrays/array_search_impl.h"
#include "nodes/values/arrays/array_selection.h"

namespace tidemark::sluice::graph {

// Elements by index.

template <typename Port>
GetArrayElement<Port>::GetArrayElement(weft::NetworkManager* manager, const TM_String& name,
                                       weft::Node* parent,
                                       typename ArrayOperation<Port>::MakePort makePort)
    : ArrayOperation<Port>(manager, name, parent, makePort) {
    this->describe("This node returns the elements of the input 'array' at positions specified by "
                   "the 'index' parameter.");
    array_ = this->addArrayInput("array", "The array to take the elements from.");
    index_ = this->addIntegerInput("index", "The positions of the elements.", 0);
    result_ = this->addArrayOutput("result", "The elements, one for each position.");
    this->setAttributeAffectAllOutputsByAllInputs();
    this->addAttributeAllowedPassThrough(array_, result_);
}

template <typename Port>
void GetArrayElement<Port>::update(weft::Attribute*) {
    array_->pull();
    index_->pull();
    const auto& array = this->read(array_);
    auto* target = this->target(result_);
    if (!target) return;
    const std::span<const int32_t> index = this->integers(index_);
    WorkMeter meter(*this->networkManager());
    withElementsOf(array, [&]<typename T>() {
        const std::span<const T> from = elementsOf<T>(array);
        writeElements<T>(*target, {&array}, [&](Array<T>& out) {
            if (out.capacity() < index.size()) limits::checkElements(index.size(), sizeof(T));
            // What is not set keeps what the output held, also when that is the array itself.
            if (&array == target) out = refElements<T>(*target);
            out.resize(static_cast<uint32_t>(index.size()));
            for (uint32_t i = 0; i < out.size(); ++i) {
                const auto position = static_cast<uint32_t>(index[i]);
                if (position < from.size()) {
                    out[i] = from[position];
                    meter.add(workOf(out[i]));
                } else {
                    this->reportIndex(index[i]);
                    meter.add(1);
                }
            }
        });
    });
    this->written(result_);
}

template <typename Port>
SetArrayElement<Port>::SetArrayElement(weft::NetworkManager* manager, const TM_String& name,
                                       weft::Node* parent,
                                       typename ArrayOperation<Port>::MakePort makePort)
    : ArrayOperation<Port>(manager, name, parent, makePort) {
    this->describe("This node returns an array equal to the input 'array' but with the elements at "
                   "positions specified by the 'index' parameter changed to those of 'element'.");
    array_ = this->addArrayInput("array", "The array to change.");
    index_ = this->addIntegerInput("index", "The positions of the elements to change.", 0);
    element_ = this->addArrayInput("element", "The new elements, one for each position.");
    outArray_ = this->addArrayOutput("out array", "The array with the new elements.");
    this->setAttributeAffectAllOutputsByAllInputs();
    this->addAttributeAllowedPassThrough(array_, outArray_);
}

template <typename Port>
void SetArrayElement<Port>::update(weft::Attribute*) {
    array_->pull();
    index_->pull();
    element_->pull();
    const auto& array = this->read(array_);
    const auto& element = this->read(element_);
    auto* target = this->target(outArray_);
    if (!target) return;
    const std::span<const int32_t> index = this->integers(index_);
    WorkMeter meter(*this->networkManager());
    withElementsOf(array, [&]<typename T>() {
        // A copy only where it would change under the loop.
        Array<T> kept;
        std::span<const T> elements = elementsOf<T>(element);
        if (&element == target) {
            kept = refElements<T>(*target);
            elements = {kept.data(), kept.size()};
        }
        if (&array != target) {
            const std::span<const T> from = elementsOf<T>(array);
            writeElements<T>(*target, {}, [&](Array<T>& out) {
                sizeForWriting(out, from.size(), meter);
                copyElements(from, out.data(), meter);
            });
        }
        checkSizes(index.size(), elements.size());
        Array<T>& out = refElements<T>(*target);
        const std::size_t pairs = std::min(index.size(), elements.size());
        for (std::size_t i = 0; i < pairs; ++i) {
            const auto position = static_cast<uint32_t>(index[i]);
            if (position < out.size()) {
                out[position] = elements[i];
                meter.add(workOf(elements[i]));
            } else {
                this->reportIndex(index[i]);
                meter.add(1);
            }
        }
    });
    this->written(outArray_);
}

template <typename Port>
void SetArrayElement<Port>::checkSizes(std::size_t indexCount, std::size_t elementCount) {
    if (indexCount == elementCount) return;
    if (!this->isVerbosityLevelAllowed(tidemark::graph::messageLevelError)) return;
    this->pushError(text::format("Attributes '%s' and '%s' size differs. (%d, %d)",
                                 index_->name().c_str(), element_->name().c_str(),
                                 static_cast<int>(indexCount), static_cast<int>(elementCount)));
}

// Elements by mask.

template <typename Port>
ArrayFilterByMask<Port>::ArrayFilterByMask(weft::NetworkManager* manager, const TM_String& name,
                                           weft::Node* parent,
                                           typename ArrayOperation<Port>::MakePort makePort)
    : ArrayOperation<Port>(manager, name, parent, makePort) {
    this->describe("This node returns the elements of the input 'array' at positions specified by "
                   "the 'mask' parameter.");
    array_ = this->addArrayInput("array", "The array to take the elements from.");
    mask_ = this->template addInput<BitArrayAttribute>("mask",
                                                       "A bit for each element, set to keep it.");
    result_ = this->addArrayOutput("result", "The kept elements, in order.");
    this->setAttributeAffectAllOutputsByAllInputs();
    this->addAttributeAllowedPassThrough(array_, result_);
}

template <typename Port>
void ArrayFilterByMask<Port>::update(weft::Attribute*) {
    array_->pull();
    mask_->pull();
    const auto& array = this->read(array_);
    const weft::BitArrayValue& mask = mask_->bits();
    auto* target = this->target(result_);
    if (!target) return;
    WorkMeter meter(*this->networkManager());
    withElementsOf(array, [&]<typename T>() {
        const std::span<const T> from = elementsOf<T>(array);
        if (mask.size() != from.size()) {
            this->pushError(text::format("input attributes size differs: (%d, %d)",
                                         static_cast<int>(from.size()),
                                         static_cast<int>(mask.size())));
        }
        const std::size_t count = std::min<std::size_t>(from.size(), mask.size());
        writeElements<T>(*target, {&array}, [&](Array<T>& out) {
            array_nodes::writeKept(from.first(count), mask.words().data(), out, meter);
        });
    });
    this->written(result_);
}

template <typename Port>
ArrayMix<Port>::ArrayMix(weft::NetworkManager* manager, const TM_String& name, weft::Node* parent,
                         typename ArrayOperation<Port>::MakePort makePort)
    : ArrayOperation<Port>(manager, name, parent, makePort) {
    this->describe(
        "This node creates an output array based on the two inputs 'array0' and 'array1' and the "
        "input mask. If the mask value equals 0 then the value of 'array0' is used, if the mask "
        "value is 1 the value of 'array1' is used.\nThe size of the output is the same as mask's "
        "size.");
    array0_ = this->addArrayInput("array0", "The elements where the mask is 0.");
    array1_ = this->addArrayInput("array1", "The elements where the mask is 1.");
    mask_ = this->template addInput<BitArrayAttribute>("mask", "Which array each element is from.");
    outArray_ = this->addArrayOutput("out array", "The mixed array.");
    this->setAttributeAffectAllOutputsByAllInputs();
    this->addAttributeAllowedPassThrough(array0_, outArray_);
    this->addAttributeAllowedPassThrough(array1_, outArray_);
}

template <typename Port>
void ArrayMix<Port>::update(weft::Attribute*) {
    array0_->pull();
    array1_->pull();
    mask_->pull();
    const auto& array0 = this->read(array0_);
    const auto& array1 = this->read(array1_);
    const weft::BitArrayValue& mask = mask_->bits();
    auto* target = this->target(outArray_);
    if (!target) return;
    WorkMeter meter(*this->networkManager());
    withElementsOf(array0, [&]<typename T>() {
        const T neutral = ElementDefault<T>::value();
        const auto orNeutral = [&](std::span<const T> elements) {
            return elements.empty() ? std::span<const T>(&neutral, 1) : elements;
        };
        const std::span<const T> from[] = {orNeutral(elementsOf<T>(array0)),
                                           orNeutral(elementsOf<T>(array1))};
        const auto both = static_cast<uint32_t>(std::min(from[0].size(), from[1].size()));
        writeElements<T>(*target, {&array0, &array1}, [&](Array<T>& out) {
            sizeForWriting(out, mask.size(), meter);
            const uint32_t inside = std::min(both, mask.size());
            for (uint32_t i = 0; i < inside; ++i) {
                out[i] = from[mask.testBit(i)][i];
                meter.add(workOf(out[i]));
            }
            for (uint32_t i = inside; i < mask.size(); ++i) {
                const std::span<const T>& side = from[mask.testBit(i)];
                out[i] = side[std::min<std::size_t>(i, side.size() - 1)];
                meter.add(workOf(out[i]));
            }
        });
    });
    this->written(outArray_);
}

// Sizes.

template <typename Port>
ArrayConstant<Port>::ArrayConstant(weft::NetworkManager* manager, const TM_String& name,
                                   weft::Node* parent,
                                   typename ArrayOperation<Port>::MakePort makePort)
    : ArrayOperation<Port>(manager, name, parent, makePort) {
    this->describe("This node returns a constant array.");
    constant_ = this->addArrayInput("constant", "The value of every element.");
    constant_->setElementCountRule(1);
    size_ = this->addIntegerInput("size", "The number of elements.", 1);
    size_->setElementCountRule(1);
    outArray_ = this->addArrayOutput("out array", "The array.");
    this->setAttributeAffectAllOutputsByAllInputs();
}

template <typename Port>
void ArrayConstant<Port>::update(weft::Attribute*) {
    constant_->pull();
    size_->pull();
    const auto& constant = this->read(constant_);
    auto* target = this->target(outArray_);
    if (!target) return;
    const int32_t size = this->firstInteger(size_);
    if (size < 0) {
        this->pushError("Input size is lower than 0");
        return;
    }
    WorkMeter meter(*this->networkManager());
    withElementsOf(constant, [&]<typename T>() {
        const std::span<const T> elements = elementsOf<T>(constant);
        const T element = elements.empty() ? ElementDefault<T>::value() : elements[0];
        writeElements<T>(*target, {&constant}, [&](Array<T>& out) {
            sizeForWriting(out, static_cast<uint32_t>(size), meter);
            fillElements(out.begin(), out.end(), element, meter);
        });
    });
    this->written(outArray_);
}

template <typename Port>
ArrayResize<Port>::ArrayResize(weft::NetworkManager* manager, const TM_String& name,
                               weft::Node* parent, typename ArrayOperation<Port>::MakePort makePort)
    : ArrayOperation<Port>(manager, name, parent, makePort) {
    this->describe("This node resizes the input 'array'. If the result is bigger than the input "
                   "array, the last value is repeated accordingly.");
    array_ = this->addArrayInput("array", "The array to resize.");
    size_ = this->addIntegerInput("size", "The new number of elements.", 1);
    size_->setElementCountRule(1);
    outArray_ = this->addArrayOutput("out array", "The array of the new size.");
    this->setAttributeAffectAllOutputsByAllInputs();
    this->addAttributeAllowedPassThrough(array_, outArray_);
}

template <typename Port>
void ArrayResize<Port>::update(weft::Attribute*) {
    array_->pull();
    size_->pull();
    const auto& array = this->read(array_);
    auto* target = this->target(outArray_);
    if (!target) return;
    const int32_t size = this->firstInteger(size_);
    if (size < 0) {
        this->pushError("Input size is lower than 0");
        return;
    }
    WorkMeter meter(*this->networkManager());
    withElementsOf(array, [&]<typename T>() {
        const std::span<const T> from = elementsOf<T>(array);
        const auto count = static_cast<std::size_t>(size);
        writeElements<T>(*target, {&array}, [&](Array<T>& out) {
            sizeForWriting(out, count, meter);
            T* end = copyElements(from.first(std::min(from.size(), count)), out.data(), meter);
            fillElements(end, out.data() + count,
                         from.empty() ? ElementDefault<T>::value() : from.back(), meter);
        });
    });
    this->written(outArray_);
}

template <typename Port>
ArraySlice<Port>::ArraySlice(weft::NetworkManager* manager, const TM_String& name,
                             weft::Node* parent, typename ArrayOperation<Port>::MakePort makePort)
    : ArrayOperation<Port>(manager, name, parent, makePort) {
    this->describe("This node returns an array containing the range of the input 'array' from the "
                   "'first' position with the given input 'size'.Thus, the output array is a "
                   "subarray or slice of the input.");
    array_ = this->addArrayInput("array", "The array to cut.");
    first_ = this->addIntegerInput(
        "first", "The position of the element that will be the first of the output array", 0);
    first_->setElementCountRule(1);
    size_ = this->addIntegerInput("size",
                                  "The total number of elements to copy from the input array. If "
                                  "value is negative, all the elements from 'first' are copied to "
                                  "the output array.",
                                  -1);
    size_->setElementCountRule(1);
    outArray_ = this->addArrayOutput("out array", "The range of the array.");
    this->setAttributeAffectAllOutputsByAllInputs();
    this->addAttributeAllowedPassThrough(array_, outArray_);
}

template <typename Port>
void ArraySlice<Port>::update(weft::Attribute*) {
    array_->pull();
    first_->pull();
    size_->pull();
    const auto& array = this->read(array_);
    auto* target = this->target(outArray_);
    if (!target) return;
    WorkMeter meter(*this->networkManager());
    withElementsOf(array, [&]<typename T>() {
        const std::span<const T> from = elementsOf<T>(array);
        uint64_t first = 0;
        uint64_t length = 0;
        if (!this->findSlice(static_cast<int64_t>(from.size()), first_, size_, first, length)) {
            return;
        }
        writeElements<T>(*target, {&array}, [&](Array<T>& out) {
            sizeForWriting(out, length, meter);
            copyElements(from.subspan(first, length), out.data(), meter);
        });
        this->written(outArray_);
    });
}

// Joining.

template <typename Port>
ArrayConcat<Port>::ArrayConcat(weft::NetworkManager* manager, const TM_String& name,
                               weft::Node* parent, typename ArrayOperation<Port>::MakePort makePort)
    : ArrayOperation<Port>(manager, name, parent, makePort) {
    this->describe("This node concatenates the inputs 'array0' and 'array1' into a single 'out' "
                   "array.");
    array0_ = this->addArrayInput("array0", "The first array.");
    array1_ = this->addArrayInput("array1", "The array to append.");
    outArray_ = this->addArrayOutput("out array", "Both arrays in one.");
    this->setAttributeAffectAllOutputsByAllInputs();
    this->addAttributeAllowedPassThrough(array0_, outArray_);
    this->addAttributeAllowedPassThrough(array1_, outArray_);
}

namespace array_nodes {

/// Writes `added` into `array` before `position`.
template <typename Value>
void insert(const Value& array, const Value& added, int64_t position, Value& target,
            WorkMeter meter) {
    withElementsOf(array, [&]<typename T>() {
        const std::span<const T> old = elementsOf<T>(array);
        const std::span<const T> more = elementsOf<T>(added);
        const auto at = static_cast<std::size_t>(
            std::clamp(position, int64_t(0), static_cast<int64_t>(old.size())));
        writeElements<T>(target, {&array, &added}, [&](Array<T>& out) {
            sizeForWriting(out, uint64_t(old.size()) + more.size(), meter);
            T* next = copyElements(old.first(at), out.data(), meter);
            next = copyElements(more, next, meter);
            copyElements(old.subspan(at), next, meter);
        });
    });
}

constexpr int64_t atEnd = INT64_MAX;

} // namespace array_nodes

template <typename Port>
void ArrayConcat<Port>::update(weft::Attribute*) {
    array0_->pull();
    array1_->pull();
    auto* target = this->target(outArray_);
    if (!target) return;
    array_nodes::insert(this->read(array0_), this->read(array1_), array_nodes::atEnd, *target,
                        WorkMeter(*this->networkManager()));
    this->written(outArray_);
}

template <typename Port>
ArrayInsertElement<Port>::ArrayInsertElement(weft::NetworkManager* manager, const TM_String& name,
                                             weft::Node* parent,
                                             typename ArrayOperation<Port>::MakePort makePort)
    : ArrayOperation<Port>(manager, name, parent, makePort) {
    this->describe(
        "This node inserts all elements from the 'element' input into the input 'array' at the "
        "position specified by 'position'. If 'position' is equal or lower than 0 then the "
        "elements are inserted at the beginning of the array. If 'position' is greater or equal "
        "than the inputs 'array' size, elements are appended at the end.");
    array_ = this->addArrayInput("array", "The array to insert into.");
    element_ = this->addArrayInput("element", "The value to insert");
    index_ = this->addIntegerInput("index", "The position to insert the input element on", 0);
    index_->setElementCountRule(1);
    outArray_ = this->addArrayOutput("out array", "The array with the inserted elements.");
    this->setAttributeAffectAllOutputsByAllInputs();
    this->addAttributeAllowedPassThrough(array_, outArray_);
}

template <typename Port>
void ArrayInsertElement<Port>::update(weft::Attribute*) {
    array_->pull();
    element_->pull();
    index_->pull();
    auto* target = this->target(outArray_);
    if (!target) return;
    array_nodes::insert(this->read(array_), this->read(element_), this->firstInteger(index_),
                        *target, WorkMeter(*this->networkManager()));
    this->written(outArray_);
}

template <typename Port>
ArrayPushElement<Port>::ArrayPushElement(weft::NetworkManager* manager, const TM_String& name,
                                         weft::Node* parent,
                                         typename ArrayOperation<Port>::MakePort makePort)
    : ArrayOperation<Port>(manager, name, parent, makePort) {
    this->describe("This node appends all the elements from the 'element' at the end of the input "
                   "'array'");
    array_ = this->addArrayInput("array", "The array to append to.");
    element_ = this->addArrayInput("element", "The value to append at the end");
    outArray_ = this->addArrayOutput("out array", "The array with the appended elements.");
    this->setAttributeAffectAllOutputsByAllInputs();
    this->addAttributeAllowedPassThrough(array_, outArray_);
}

template <typename Port>
void ArrayPushElement<Port>::update(weft::Attribute*) {
    array_->pull();
    element_->pull();
    auto* target = this->target(outArray_);
    if (!target) return;
    array_nodes::insert(this->read(array_), this->read(element_), array_nodes::atEnd, *target,
                        WorkMeter(*this->networkManager()));
    this->written(outArray_);
}

template <typename Port>
ArrayReverse<Port>::ArrayReverse(weft::NetworkManager* manager, const TM_String& name,
                                 weft::Node* parent,
                                 typename ArrayOperation<Port>::MakePort makePort)
    : ArrayOperation<Port>(manager, name, parent, makePort) {
    this->describe("This node reverses the order of the input 'array'.");
    array_ = this->addArrayInput("array", "The array to reverse.");
    outArray_ = this->addArrayOutput("out array", "The array from its end to its beginning.");
    this->setAttributeAffectAllOutputsByAllInputs();
    this->addAttributeAllowedPassThrough(array_, outArray_);
}

template <typename Port>
void ArrayReverse<Port>::update(weft::Attribute*) {
    array_->pull();
    const auto& array = this->read(array_);
    auto* target = this->target(outArray_);
    if (!target) return;
    WorkMeter meter(*this->networkManager());
    withElementsOf(array, [&]<typename T>() {
        const std::span<const T> from = elementsOf<T>(array);
        const std::size_t count = from.size();
        if (&array == target) {
            T* const own = refElements<T>(*target).data();
            inPieces(count / 2, meter, [&](uint64_t first, uint64_t end) {
                for (uint64_t i = first; i < end; ++i) std::swap(own[i], own[count - 1 - i]);
            });
            return;
        }
        writeElements<T>(*target, {}, [&](Array<T>& out) {
            sizeForWriting(out, count, meter);
            inPieces(count, meter, [&](uint64_t first, uint64_t end) {
                reverseElements(from.subspan(count - end, end - first), out.data() + first);
            });
        });
    });
    this->written(outArray_);
}

} // namespace tidemark::sluice::graph

/// Makes the code of one operation for ports of class `Port`.
#define SLUICE_INSTANTIATE_ARRAY_NODE(Operation, Port) template class SLUICE_API Operation<Port>;

/// Makes the code of the operations of `SLUICE_DEFINE_COMMON_ARRAY_NODES`; inside namespace
/// tidemark::sluice::graph.
#define SLUICE_INSTANTIATE_COMMON_ARRAY_NODES(Port)                                                \
    SLUICE_INSTANTIATE_ARRAY_NODE(ArrayFilterByMask, Port)                                         \
    SLUICE_INSTANTIATE_ARRAY_NODE(ArrayResize, Port)                                               \
    SLUICE_INSTANTIATE_ARRAY_NODE(ArrayConcat, Port)                                               \
    SLUICE_INSTANTIATE_ARRAY_NODE(ArraySlice, Port)                                                \
    SLUICE_INSTANTIATE_ARRAY_NODE(ArrayMix, Port)                                                  \
    SLUICE_INSTANTIATE_ARRAY_NODE(ArrayReverse, Port)                                              \
    SLUICE_INSTANTIATE_ARRAY_NODE(ArrayFindElement, Port)                                          \
    SLUICE_INSTANTIATE_ARRAY_NODE(ArrayFindAllElementIndices, Port)                                \
    SLUICE_INSTANTIATE_ARRAY_NODE(ArrayInsertElement, Port)                                        \
    SLUICE_INSTANTIATE_ARRAY_NODE(ArrayPushElement, Port)                                          \
    SLUICE_INSTANTIATE_ARRAY_NODE(ArrayRemoveElement, Port)                                        \
    SLUICE_INSTANTIATE_ARRAY_NODE(ArrayRemoveIndex, Port)                                          \
    SLUICE_INSTANTIATE_ARRAY_NODE(ArrayRemoveRepeatedElements, Port)

/// The same for `SLUICE_DEFINE_ARRAY_NODES`.
#define SLUICE_INSTANTIATE_ARRAY_NODES(Port)                                                       \
    SLUICE_INSTANTIATE_ARRAY_NODE(GetArrayElement, Port)                                           \
    SLUICE_INSTANTIATE_ARRAY_NODE(SetArrayElement, Port)                                           \
    SLUICE_INSTANTIATE_ARRAY_NODE(ArrayConstant, Port)                                             \
    SLUICE_INSTANTIATE_COMMON_ARRAY_NODES(Port)
